#!/usr/bin/env python3
"""Checks that every test that SECURITY.md names exists: promises.py SECURITY.md ROOT"""
import pathlib
import re
import sys

page, root = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
sources = [*root.glob('tests/**/*.cc'), *root.glob('tests/**/CMakeLists.txt')]
text = '\n'.join(path.read_text() for path in sources)
tests = {'.'.join(pair) for pair in re.findall(r'^\w*TEST\w*\((\w+),\s*(\w+)\)', text, re.M)}
tests |= set(re.findall(r'NAME ([\w.]+)', text))

promises = faults = 0
for line in page.read_text().splitlines():
    cells = line.split(' | ')
    if not line.startswith('| ') or len(cells) != 2 or cells[0] == '| promise':
        continue
    promises += 1
    names = re.findall(r'`([^`]+)`', cells[1])
    missing = [name for name in names
               if name not in tests and not (root / name).is_file()]
    if missing or not names:
        faults += 1
        print(f'{page.name}: "{cells[0][2:60]}..." is held by no test: {missing or "none named"}')
print(f'{promises} promises')
sys.exit(faults != 0 or promises == 0)
