#!/usr/bin/env python3
"""Doxygen input filter for the headers.

The /// comments are plain text, so characters that Doxygen would read as commands or
HTML (\\t, <TT>, #include, ::name) are escaped outside `code` spans and quoted texts.
Two things are turned into Doxygen's own markup instead:

- a repository path to a source of an example program, examples/<file>.cpp or .h,
  becomes a link to that example's page (each has one, see docs/examples.md), and a path
  to a section of a documentation page, docs/<page>.md#<label>, a link to that section.
  The link text is the path, as the header's reader sees it.
- an explicit specialization of a class template's member declared at namespace scope
  (template <> followed by a declaration of Class<Args>::Member ending in ;) is blanked:
  it tells programs that the body lives in the library, and Doxygen cannot attach it to
  the member, which is documented in the class.

The line count is kept, so warnings point at the real lines."""
import re
import sys

SPECIAL = re.compile(r'([\\<>#@&%$]|::)')
LITERAL = re.compile(r'(`[^`]*`|"[^"]*")')
# A path written in a comment: examples/name.cpp or docs/page.md#label, not followed by
# more path characters (a full stop after it ends the sentence).
LINK = re.compile(r'\b(examples/([\w-]+\.(?:cpp|h))|docs/[\w-]+\.md#(\w+))(?![\w/#-])')
MEMBER_SPECIALIZATION = re.compile(r'[^;{}()]*\b\w+<[^;{}]*>::~?\w+\s*\([^;{}]*\)[^;{}]*;\s*$')


def link(m):
    path, example, label = m.group(1), m.group(2), m.group(3)
    # A path to a file or section that has no page fails the docs build (an unresolved
    # reference), so stale paths do not survive.
    return '\\ref %s "%s"' % (example or label, path)


def escape(text):
    # `code` and "quoted library texts" are taken literally by Doxygen already.
    parts = LITERAL.split(text)
    for i in range(0, len(parts), 2):
        out, pos = [], 0
        for m in LINK.finditer(parts[i]):
            out.append(SPECIAL.sub(r'\\\1', parts[i][pos:m.start()]))
            out.append(link(m))
            pos = m.end()
        out.append(SPECIAL.sub(r'\\\1', parts[i][pos:]))
        parts[i] = ''.join(out)
    return ''.join(parts)


with open(sys.argv[1], encoding='utf-8', errors='surrogateescape') as f:
    lines = f.readlines()

i = 0
while i < len(lines):
    line = lines[i]
    m = re.match(r'(\s*///)(.*)', line, re.S)
    if m and not m.group(2).lstrip().startswith('\\file'):
        line = m.group(1) + escape(m.group(2))
    elif (line.strip() == 'template <>' and i + 1 < len(lines)
          and MEMBER_SPECIALIZATION.match(lines[i + 1])):
        sys.stdout.write('\n\n')
        i += 2
        continue
    sys.stdout.write(line)
    i += 1
