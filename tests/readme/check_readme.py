#!/usr/bin/env python3
"""Checks that the README's example under each subsystem is the code that
readme_snippets_test.cpp compiles and runs.

Usage: check_readme.py README.md readme_snippets_test.cpp

Every "### <name>" section under "## Subsystems" holds exactly one ```cpp block, and it
must equal the test's "// [readme:<name>]" ... "// [end]" region with the test's
indentation removed; every region must have its section."""
import re
import sys


def regions(test_text):
    out = {}
    for m in re.finditer(r'^( *)// \[readme:(\w+)\]\n(.*?)^ *// \[end\]\n', test_text,
                         re.M | re.S):
        indent, name, body = m.group(1), m.group(2), m.group(3)
        lines = [l[len(indent):] if l.startswith(indent) else l.lstrip(' ')
                 for l in body.splitlines()]
        if name in out:
            sys.exit(f'region {name} appears twice in the test')
        out[name] = '\n'.join(lines)
    return out


def sections(readme_text):
    m = re.search(r'^## Subsystems\n(.*?)(?=^## |\Z)', readme_text, re.M | re.S)
    if not m:
        sys.exit('README has no "## Subsystems" section')
    out = {}
    for s in re.finditer(r'^### (\w+)\n(.*?)(?=^### |\Z)', m.group(1), re.M | re.S):
        blocks = re.findall(r'^```cpp\n(.*?)^```', s.group(2), re.M | re.S)
        if len(blocks) != 1:
            sys.exit(f'README section {s.group(1)} has {len(blocks)} cpp blocks, not one')
        out[s.group(1)] = blocks[0].rstrip('\n')
    return out


def main():
    readme = open(sys.argv[1], encoding='utf-8').read()
    test = open(sys.argv[2], encoding='utf-8').read()
    code, docs = regions(test), sections(readme)
    bad = sorted(set(code) ^ set(docs))
    if bad:
        sys.exit('sections and test regions differ: ' + ', '.join(bad))
    for name in sorted(code):
        if code[name] != docs[name]:
            print(f'README section {name} differs from the test:\n--- test\n{code[name]}\n'
                  f'--- README\n{docs[name]}')
            sys.exit(1)
    print(f'{len(code)} README examples match the test')


main()
