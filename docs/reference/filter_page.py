#!/usr/bin/env python3
"""Doxygen's input filter for the guide's pages: what GitHub reads and doxygen does not.

A fence's words behind the language (they steer the tests) go, and a heading gets the anchor that
links on other pages name.
"""
import re
import sys


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        text = file.read()
    text = re.sub(r"^(```)(\w+)[^\n]*$", r"\1{.\2}", text, flags=re.MULTILINE)
    fenced = False
    out = []
    for line in text.split("\n"):
        if line.startswith("```"):
            fenced = not fenced
        if not fenced:
            # Outside code doxygen takes these for its own commands.
            line = re.sub(r"(`[^`]*`)|(?<![\\\w])@(\w)",
                          lambda m: m[1] if m[1] else "\\\\@" + m[2], line)
        out.append(line)
    sys.stdout.write("\n".join(out))


if __name__ == "__main__":
    main()
