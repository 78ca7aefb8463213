#!/usr/bin/env python3
"""Checks the class pages of the reference documentation.

Usage: check_class_pages.py <docs output directory> [--list]

Reads Doxygen's XML (<dir>/xml) and counts the public class pages: those with a description
(a brief or a detailed text), and those whose description links an example (an example
program's page or a section of a documentation page). Prints the counts, and with --list
one line per class. Exits with 1 when a class page lacks either, naming it."""
import os
import sys
import xml.etree.ElementTree as ET


def text(node):
    return ''.join(node.itertext()).strip() if node is not None else ''


def links_example(node):
    # A \ref to an example page (refid "<file>-example") or to a section anchor of a page.
    for ref in node.iter('ref') if node is not None else ():
        refid = ref.get('refid', '')
        if refid.endswith('-example') or ('_1' in refid and ref.get('kindref') == 'member'
                                          and not refid.startswith(('class', 'struct'))):
            return True
    return False


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    xml_dir = os.path.join(sys.argv[1], 'xml')
    index = ET.parse(os.path.join(xml_dir, 'index.xml')).getroot()
    rows, hidden = [], 0
    for compound in index.findall('compound'):
        if compound.get('kind') not in ('class', 'struct'):
            continue
        page = ET.parse(os.path.join(xml_dir, compound.get('refid') + '.xml')).getroot()
        cls = page.find('compounddef')
        brief, detail = cls.find('briefdescription'), cls.find('detaileddescription')
        described = bool(text(brief) or text(detail))
        example = links_example(brief) or links_example(detail)
        if cls.get('prot', 'public') != 'public':
            hidden += 1  # a protected helper type, for derived classes only
            continue
        rows.append((compound.findtext('name'), described, example))

    described = sum(1 for r in rows if r[1])
    example = sum(1 for r in rows if r[2])
    print(f'{len(rows)} public class pages ({hidden} protected not counted): '
          f'{described} with a description, '
          f'{len(rows) - described} without; {example} link an example, '
          f'{len(rows) - example} do not')
    bad = [r for r in rows if not (r[1] and r[2])]
    for name, d, e in rows if '--list' in sys.argv else bad:
        print(f'  {name}: {"described" if d else "NO DESCRIPTION"}, '
              f'{"links an example" if e else "NO EXAMPLE LINK"}')
    return 1 if bad else 0


if __name__ == '__main__':
    sys.exit(main())
