"""Reads a public header into sections, comments and the declarations they stand before.

The headers use plain comments whose first sentence starts with the function's name. This is the one
reader of that form; the HTML reference and the manual pages are both made from what it returns.
"""
import dataclasses
import re

SECTION = re.compile(r"^-{4} (.*?) -{4,}$")
ROW = re.compile(r"^ {2,4}(`?-?[\w\-]+`?(?:,? (?:to|and|or) `?-?\w+`?)?|`[^`]+`) {2,}(\S.*)$")


@dataclasses.dataclass
class Block:
    """A comment with what follows it up to the next blank line or comment."""
    comment: str  # text without the comment's marks; empty where there is none
    code: list  # lines of code
    first_line: int
    outer: str = ""  # the class that the block stands in; empty at file scope

    def section(self):
        found = SECTION.match(self.comment) if "\n" not in self.comment else None
        return found[1] if found else None


def strip_marks(raw):
    """Takes the marks off a block comment and returns its text."""
    lines = raw[2:-2].split("\n")
    out = [lines[0].strip()]
    for line in lines[1:]:
        line = line.strip(" ") if line.strip() in ("", "*") else line
        out.append(re.sub(r"^\s*\* ?", "", line).rstrip())
    return "\n".join(out).strip("\n").rstrip()


def blocks(text):
    """Splits a header into blocks. Comments within declarations stay in the code."""
    lines = text.split("\n")
    result = []
    current = Block("", [], 1)
    index = 0
    depth = 0  # of parentheses
    braces = []  # what each open brace belongs to; namespaces and linkage count for nothing
    while index < len(lines):
        line = lines[index]
        outer = next((b for b in braces if b), "")
        if not current.code and not current.comment:
            current.outer = outer
        in_record = outer.startswith(("struct", "enum"))
        if depth == 0 and not in_record and line.lstrip().startswith("/*"):
            start = index
            raw = line
            while "*/" not in raw:
                index += 1
                raw += "\n" + lines[index]
            tail = raw[raw.index("*/") + 2:]
            if not tail.strip():
                result.append(current)
                current = Block(strip_marks(raw.strip()), [], start + 1, outer)
                index += 1
                continue
        current.code.append(line)
        code = re.sub(r"/\*.*?\*/|//.*", "", line)
        depth += code.count("(") - code.count(")")
        for mark in re.findall(r"[{}]", code):
            if mark == "{":
                kind = re.search(r"\b(class|struct|enum)\b(?: class)?[^{;()]*?(\w+)? *(?::[^{]*)?\{", code)
                name = re.search(r"(\w+)(?: final)?\s*(?::[^:{][^{]*)?\{", code)
                braces.append("%s %s" % (kind[1], name[1] if name else "") if kind else "")
            elif braces:
                braces.pop()
        if not line.strip() and depth == 0 and current.comment:
            # A blank line ends what a comment stands for.
            result.append(current)
            current = Block("", [], index + 2)
        index += 1
    result.append(current)
    return [block for block in result if block.comment or block.code]


def declarations(code):
    """Splits lines of code into declarations, each a list of lines that ends in ';' at depth 0."""
    result, current, depth = [], [], 0
    for line in code:
        if not current and (not line.strip() or line.lstrip().startswith("#")):
            continue
        current.append(line)
        bare = re.sub(r"/\*.*?\*/|//.*", "", line)
        depth += sum(bare.count(c) for c in "({") - sum(bare.count(c) for c in ")}")
        if depth == 0 and bare.rstrip().endswith(";"):
            result.append(current)
            current = []
    return result


def tidy(declaration):
    """One declaration as a reader wants it: without the library's macros."""
    text = " ".join(line.strip() for line in declaration)
    text = re.sub(r"/\*.*?\*/", "", text)
    text = re.sub(r'\bPLX_TYPED\("[^"]*"\)', "", text)
    text = re.sub(r"\bPLX_API\s+", "", text)
    text = re.sub(r"\bPLX_CHECK_[A-Z_]+(\((?:[^()]|\([^()]*\))*\))?", "", text)
    text = re.sub(r"\s+", " ", text)
    return re.sub(r"\s*;$", ";", text).strip()


def function_name(declaration):
    found = re.match(r"^[^(=]*?\b(\w+)\s*\(", tidy(declaration))
    return found[1] if found and not tidy(declaration).startswith("typedef") else None


def rows(comment):
    """Splits a comment into ('text', paragraph) and ('rows', [(code, meaning)]) pieces."""
    pieces = []
    for paragraph in re.split(r"\n\s*\n", comment):
        text, table = [], []
        for line in paragraph.split("\n"):
            found = ROW.match(line)
            if found:
                if text:
                    pieces.append(("text", "\n".join(text)))
                    text = []
                table.append([found[1], found[2]])
            elif table and re.match(r"^ {6,}\S", line):
                table[-1][1] += " " + line.strip()
            else:
                if table:
                    pieces.append(("rows", table))
                    table = []
                text.append(line)
        if table:
            pieces.append(("rows", table))
        if text:
            pieces.append(("text", "\n".join(text)))
    return pieces
