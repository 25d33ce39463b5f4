#!/usr/bin/env python3
"""Doxygen's input filter for the guide's pages: what GitHub reads and doxygen does not.

A fence's words behind the language (they steer the tests) go, what doxygen would take for its own
commands is escaped, and a link to a header leads to its page.
"""
import html
import re
import sys


def escaped(found):
    """A piece of code, or an @ outside code."""
    if found[1] is None:
        return "\\@"
    if not re.search(r"[\\<]", found[1]):
        return found[0]
    # Backslashes and angle brackets are not safe between backquotes, least of all in a table.
    return "<code>%s</code>" % html.escape(found[1], quote=False).replace("\\", "\\\\")


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
            line = re.sub(r"`([^`]*)`|(?<![\\\w])@(?=\w)", escaped, line)
            line = re.sub(r"\]\((?:\.\./)?include/plx/(\w+)\.h\)", r"](\1_8h.html)", line)
        out.append(line)
    sys.stdout.write("\n".join(out))


if __name__ == "__main__":
    main()
