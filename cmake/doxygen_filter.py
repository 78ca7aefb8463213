#!/usr/bin/env python3
"""Doxygen input filter: the /// comments are plain text, so characters that Doxygen
would read as commands or HTML (\\t, <TT>, #include, ::name) are escaped outside `code`
spans and quoted texts. The line count is kept, so warnings point at the real lines."""
import re
import sys

SPECIAL = re.compile(r'([\\<>#@&%$]|::)')


LITERAL = re.compile(r'(`[^`]*`|"[^"]*")')


def escape(text):
    # `code` and "quoted library texts" are taken literally by Doxygen already.
    parts = LITERAL.split(text)
    for i in range(0, len(parts), 2):
        parts[i] = SPECIAL.sub(r'\\\1', parts[i])
    return ''.join(parts)


with open(sys.argv[1], encoding='utf-8', errors='surrogateescape') as f:
    for line in f:
        m = re.match(r'(\s*///)(.*)', line, re.S)
        if m and not m.group(2).lstrip().startswith('\\file'):
            line = m.group(1) + escape(m.group(2))
        sys.stdout.write(line)
