#!/usr/bin/env python3
"""Gives a header to Doxygen as it reads one, from the plain comments that stand in it: what stands
ahead of a declaration or a macro is of that, what stands behind one is of that as well, and what
stands alone is of the file. What would mean something to Doxygen is protected. Lines that are
indented in a comment stay as they are laid out. Comments inside functions stay out."""

import re
import sys

PLAIN = re.compile(r"^(\s*)// ?(.*)$")
TRAILING = re.compile(r"^(\s*)([^/\s].*?[,;{]|[A-Za-z]\w*(?: = [^/]*?)?)(\s+)// (.*)$")
SPECIAL = {"&": "&amp;", "<": "&lt;", ">": "&gt;", "\\": "\\\\", "@": "\\@", "#": "\\#", "%": "\\%",
           "*": "\\*", "_": "\\_", "`": "\\`", "|": "\\|", "$": "\\$"}


def protect(text):
    """What stands between two backticks is code and reads as it is. So does a quoted text in which
    something would have to be protected."""
    text = re.sub(r'"[^"`]*[^\w"` ,.:;=()/+-][^"`]*"|"\w*_\w*"', r"`\g<0>`", text)
    parts = re.split(r"(`[^`]+`)", text)
    return "".join(part if part.startswith("`") and len(part) > 1 else
                   "".join(SPECIAL.get(letter, letter) for letter in part) for part in parts)


def language(lines):
    """Of lines that are laid out: a tree, a piece of code, or a table."""
    if lines[0].startswith("<"):
        return ".xml"
    is_code = any(line.rstrip().endswith((";", "{")) or ";  //" in line for line in lines)
    return ".cpp" if is_code else ".txt"


def words(lines, mark):
    """The lines of one comment, behind the mark by which Doxygen knows it."""
    out, index = [], 0
    while index < len(lines):
        if not lines[index].startswith("  "):
            out.append(f"{mark} {protect(lines[index])}".rstrip())
            index += 1
            continue
        end = index
        while end < len(lines) and (lines[end].startswith("  ") or not lines[end]):
            end += 1
        while not lines[end - 1]:
            end -= 1
        laid_out = lines[index:end]
        margin = min(len(line) - len(line.lstrip()) for line in laid_out if line)
        laid_out = [line[margin:] for line in laid_out]
        out += [f"{mark} @code{{{language(laid_out)}}}"]
        out += [f"{mark} {line}".rstrip() for line in laid_out]
        out += [f"{mark} @endcode"]
        index = end
    return out


def macro_of(lines):
    """The macro that is defined in the lines from here to the next empty one."""
    for line in lines:
        defined = re.match(r"#define (\w+)", line)
        if defined or not line:
            return defined and defined[1]


class Scopes:
    """Whether a line stands where things are declared, or inside a function or a value."""

    def __init__(self):
        self.open, self.statement = [], ""

    def declares(self):
        return all(self.open)

    def is_outermost(self):
        return "class" not in self.open

    def read(self, line):
        if line.startswith("#"):
            return
        code = re.sub(r'"(\\.|[^"\\])*"|\'(\\.|[^\'\\])\'', '""', re.sub(r"//.*", "", line))
        for letter in code:
            if letter == "{":
                kind = re.search(r"\b(namespace|extern|class|struct|enum|union)\b", self.statement)
                is_function = ")" in re.sub(r"<.*?>|\b[A-Z_]+\(.*?\)", "", self.statement)
                if kind and not is_function:
                    self.open.append("space" if kind[1] in ("namespace", "extern") else "class")
                else:
                    self.open.append("")
                self.statement = ""
            elif letter == "}":
                self.open.pop()
                self.statement = ""
            elif letter == ";":
                self.statement = ""
            else:
                self.statement += letter


def convert(lines):
    scopes, index = Scopes(), 0
    while index < len(lines):
        line = lines[index]
        plain = PLAIN.match(line)
        if plain and scopes.declares():
            end = index
            while end < len(lines) and PLAIN.match(lines[end]):
                end += 1
            block = [PLAIN.match(each)[2] for each in lines[index:end]]
            follower = lines[end] if end < len(lines) else ""
            macro = macro_of(lines[end:]) if follower.startswith("#") else None
            stands_alone = scopes.is_outermost() and (
                not follower.strip() or follower.startswith(("namespace", "#")))
            if stands_alone:
                yield f"/// @def {macro}" if macro else "/// @file"
            yield from (plain[1] + each for each in words(block, "///"))
            if stands_alone:
                yield ""
            index = end
            continue
        trailing = TRAILING.match(line)
        if trailing and scopes.declares() and not trailing[2].startswith(("#", "}")):
            column = line.index("// " + trailing[4])
            block = [trailing[4]]
            while index + len(block) < len(lines):
                more = PLAIN.match(lines[index + len(block)])
                if not more or len(more[1]) != column:
                    break
                block.append(more[2])
            code = trailing[1] + trailing[2]
            yield f"{code}  ///< {protect(block[0])}"
            yield from (" " * column + f"///< {protect(each)}" for each in block[1:])
            scopes.read(code)
            index += len(block)
            continue
        scopes.read(line)
        yield line
        index += 1


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as header:
        print("\n".join(convert(header.read().split("\n"))))
