#!/usr/bin/env python3
"""Writes section 3 manual pages from the public headers' comments.

One page for each comment that stands before functions, under the first one's name, with links for
the others; and one for each header, which holds what is said of the whole family.
"""
import argparse
import os
import re
import textwrap

import parse_header


def escape(text):
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("^", "\\(ha").replace("~", "\\(ti")
    return re.sub(r"^([.'])", r"\\&\1", text, flags=re.MULTILINE)


def inline(text):
    """Text with its `code` in italics."""
    out = []
    for index, piece in enumerate(re.split(r"`([^`]*)`", text)):
        out.append("\\fI%s\\fP" % escape(piece) if index % 2 else escape(piece))
    text = "".join(out)
    return re.sub(r"^([.'])", r"\\&\1", text, flags=re.MULTILINE)


def body(comment):
    out = []
    for kind, piece in parse_header.rows(comment):
        if kind == "rows":
            for code, meaning in piece:
                out.append(".TP\n.B %s\n%s" % (escape(code.strip("`")), inline(meaning)))
            continue
        lines = piece.split("\n")
        if any(re.match(r"^ {4,}\S", line) for line in lines):
            out.append(".PP\n.nf\n%s\n.fi" % escape(textwrap.dedent(piece)))
            continue
        out.append(".PP")
        for line in lines:
            item = re.match(r"^ {0,3}[-*] (.*)", line)
            if item:
                out.append(".IP \\(bu 2\n" + inline(item[1]))
            else:
                out.append(inline(line.strip()))
    while out and out[-1] == ".PP":
        out.pop()
    return "\n".join(out)


def summary(comment, name):
    """What stands on the page's first line: the comment's first clause without the name."""
    flat = re.sub(r"\s+", " ", comment.replace("`", ""))
    sentence = re.split(r"(?<=[a-z0-9)])[.:;] ", flat + " ")[0]
    sentence = re.sub(r"^%s(,? (and |or )?\w+)*? (?=\w+s )" % re.escape(name), "", sentence)
    sentence = sentence.strip().rstrip(".")
    if len(sentence) > 76:
        sentence = re.split(r", | \(", sentence)[0].strip()
    if len(sentence) > 76:
        sentence = textwrap.shorten(sentence, 76, placeholder="...")
    return sentence


def page(title, names, what, synopsis, description, related, version):
    out = ['.TH "%s" 3 "" "libplxutility %s" "libplxutility"' % (title, version),
           ".SH NAME", "%s \\- %s" % (", ".join(escape(n) for n in names), escape(what)),
           ".SH SYNOPSIS", ".nf", synopsis, ".fi",
           ".SH DESCRIPTION", description.removeprefix(".PP\n")]
    if related:
        out += [".SH SEE ALSO", ",\n".join(".BR %s (3)" % escape(n) for n in related)]
    return "\n".join(out) + "\n"


def write(folder, name, text):
    with open(os.path.join(folder, name + ".3"), "w", encoding="utf-8") as file:
        file.write(text)


def pages_of(header):
    """Yields (section, comment, declarations) for each comment before functions."""
    with open(header, encoding="utf-8") as file:
        blocks = parse_header.blocks(file.read())
    section = ""
    for block in blocks[1:]:
        if block.section():
            section = block.section()
            continue
        functions = [d for d in parse_header.declarations(block.code)
                     if parse_header.function_name(d)]
        if block.comment and functions and not block.outer:
            yield section, block.comment, functions


def classes_of(header):
    """Yields (name, comment, [(member comment, member declarations)]) for each class."""
    with open(header, encoding="utf-8") as file:
        blocks = parse_header.blocks(file.read())
    for block in blocks:
        found = re.search(r"^class (?:\w+ )?(\w+) \{", "\n".join(block.code), re.M)
        if not found or not block.comment or block.outer:
            continue
        members = []
        for inner in blocks:
            if inner.outer == "class " + found[1] and inner.comment:
                declarations = [d for d in parse_header.declarations(inner.code)
                                if parse_header.function_name(d)]
                if declarations:
                    members.append((inner.comment, declarations))
        yield found[1], block.comment, members


def wrapped(declaration):
    # Lines break between parameters alone.
    text = re.sub(r"(?<!,) ", "\0", parse_header.tidy(declaration))
    lines = textwrap.wrap(text, 74, subsequent_indent="    ", break_long_words=False)
    lines = [line.replace("\0", " ") for line in lines]
    return "\n".join(".B \"%s\"" % escape(line).replace('"', "") for line in lines)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--version", required=True)
    parser.add_argument("--out", required=True)
    parser.add_argument("headers", nargs="+")
    options = parser.parse_args()
    os.makedirs(options.out, exist_ok=True)
    for header in options.headers:
        short = "plx/" + os.path.basename(header)
        include = escape("#include <%s>" % short)
        header_page = "plx_" + os.path.basename(header).removesuffix(".h")
        entries = list(pages_of(header))
        if not entries:
            continue
        firsts = [parse_header.function_name(d[0]) for _, _, d in entries]
        with open(header, encoding="utf-8") as file:
            about = parse_header.blocks(file.read())[0].comment
        write(options.out, header_page, page(
            header_page, [header_page], summary(about, ""), ".B " + include, body(about), firsts,
            options.version))
        for (section, comment, functions), first in zip(entries, firsts):
            names = [parse_header.function_name(d) for d in functions]
            synopsis = ".B %s\n.PP\n%s" % (include, "\n".join(wrapped(d) for d in functions))
            near = [f for (s, _, _), f in zip(entries, firsts) if s == section and f != first][:12]
            write(options.out, first, page(
                first, names, summary(comment, first), synopsis, body(comment),
                [header_page] + near, options.version))
            for name in names[1:]:
                write(options.out, name, ".so man3/%s.3\n" % first)
        for name, comment, members in classes_of(header):
            parts = [body(comment)]
            for member, declarations in members:
                parts.append(".PP\n.nf\n%s\n.fi\n.RS 4" % "\n".join(
                    wrapped(d) for d in declarations))
                parts.append(body(member).removeprefix(".PP\n") + "\n.RE")
            write(options.out, name, page(
                name, [name], summary(comment, name), ".B %s\n.PP\n.B class %s" % (include, name),
                "\n".join(parts), [header_page], options.version))


if __name__ == "__main__":
    main()
