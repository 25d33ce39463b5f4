#!/usr/bin/env python3
"""Holds the compilers' warnings about wrong_calls.c against the remarks in it, line by line.

  caller_checks.py SOURCE INCLUDE
"""
import re
import subprocess
import sys

SOURCE, INCLUDE = sys.argv[1:3]
COMPILERS = [(name, language) for name in ("gcc", "clang") for language in (
    ("-xc", "-std=c99"), ("-xc++", "-std=c++17"))]


def warned_lines(compiler, language, *options):
    command = [compiler, *language, "-O1", "-Wall", "-Wextra", "-Wpedantic", "-Wno-unknown-warning-option",
               "-c",
               SOURCE, "-I", INCLUDE, "-o", "/dev/null", "-fno-caret-diagnostics"
               if compiler == "clang" else "-fno-diagnostics-show-caret", *options]
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        sys.exit("\n".join(re.findall(r"^.*error.*$", done.stderr, re.M)))
    return {int(line) for line in
            re.findall(r"^%s:(\d+):\d+: warning" % re.escape(SOURCE), done.stderr, re.M)}


def main():
    with open(SOURCE, encoding="utf-8") as file:
        remarks = {number: found[1] for number, line in enumerate(file, 1)
                   if (found := re.search(r";.*/\* WARNS ?(\w*) \*/", line))}
    bad = 0
    for compiler, language in COMPILERS:
        labelled = (compiler, language[0]) == ("clang", "-xc")
        wanted = {line for line, only in remarks.items()
                  if only in ("", compiler) or (only == "typed" and not labelled)}
        seen = warned_lines(compiler, language)
        for line in sorted(wanted ^ seen):
            print("%s %s: line %d: %s" % (compiler, language[1], line, "no warning" if line in wanted
                                          else "an unexpected warning"))
            bad += 1
        off = warned_lines(compiler, language, "-DPLX_NO_CALLER_CHECKS")
        for line in sorted(off):
            print("%s %s: line %d: a warning, although switched off" % (compiler, language[1], line))
            bad += 1
    print("%d lines with a warning, %d differences" % (len(remarks), bad))
    return 1 if bad or not remarks else 0


if __name__ == "__main__":
    sys.exit(main())
