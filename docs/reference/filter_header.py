#!/usr/bin/env python3
"""Doxygen's input filter for the public headers: gives their plain comments doxygen's marks.

Sections become member groups, lists of codes become tables, and a comment that stands before several
declarations is repeated for each of them. Line numbers may shift; nothing links to them.
"""
import re
import sys

import parse_header


def escape(text):
    """Keeps what doxygen would take for a command or a tag."""
    text = re.sub(r"(?<!`)<([a-z_/]+\.h)>", r"`<\1>`", text)
    pieces = re.split(r"(`[^`]*`)", text)
    for index in range(0, len(pieces), 2):
        pieces[index] = re.sub(r"([\\@%])", r"\\\1", pieces[index])
        pieces[index] = re.sub(r"<(?=\S)", r"\\<", pieces[index])
        pieces[index] = pieces[index].replace('"', "&quot;").replace("#", r"\#")
    return "".join(pieces)


def document(comment):
    out = []
    for kind, piece in parse_header.rows(comment):
        if kind == "text":
            lines = piece.split("\n")
            drawn = any(re.match(r"^ {4,}\S", line) for line in lines)
            if drawn:
                out.append("@verbatim\n" + piece + "\n@endverbatim")
            else:
                out.append(escape("\n".join(re.sub(r"^ {1,3}- ", "- ", l) for l in lines)))
        else:
            table = "".join("<tr><td>%s</td><td>%s</td></tr>\n" % (escape(code), escape(meaning))
                            for code, meaning in piece)
            out.append('<table class="codes">\n' + table + "</table>")
    return "\n\n".join(out)


def mark_trailing(lines):
    """A comment behind a macro or a field belongs to it."""
    return [re.sub(r"^(\s*\S.*?)/\*(?!\*)(.*)$", r"\1/**<\2", line) for line in lines]


def repeat(text, code):
    """A comment before several macros in a row stands for each that has none of its own."""
    out = []
    macros = sum(line.startswith("#define") for line in code)
    for line in code:
        if macros > 1 and line.startswith("#define") and "/*" not in line:
            out.append(text)
        out.append(line)
    return out if out != code else [text] + code


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        blocks = parse_header.blocks(file.read())
    out = []
    open_group = False
    heading = -1  # where the last section's heading stands in `out`, while nothing follows it
    for index, block in enumerate(blocks):
        section = block.section()
        if index == 0:
            out.append("/** @file\n@brief %s\n*/" % document(block.comment))
            out.extend(block.code)
            continue
        if section:
            if open_group:
                out.append("/**@}*/")
            heading = len(out)
            out.append("/** @name %s */\n/**@{*/" % escape(section))
            open_group = True
            out.extend(mark_trailing(block.code))
            continue
        if not block.comment:
            out.extend(mark_trailing(block.code))
            continue
        if not "".join(block.code).strip():
            # A comment that stands for itself: what is said of a section, or nothing doxygen can use.
            if heading >= 0:
                out[heading] = out[heading].replace(" */", "\n" + document(block.comment) + " */", 1)
            out.extend(block.code)
            continue
        heading = -1
        text = "/** %s */" % document(block.comment)
        declarations = parse_header.declarations(block.code)
        if len(declarations) > 1 and not any("{" in line for line in block.code):
            for declaration in declarations:
                out.append(text)
                out.extend(declaration)
            out.append("")
        else:
            out.extend(repeat(text, mark_trailing(block.code)))
    text = "\n".join(out)
    if open_group:
        # Before the include guard's end.
        head, guard, tail = text.rpartition("#endif")
        text = head + "/**@}*/\n" + guard + tail
    print(text)


if __name__ == "__main__":
    main()
