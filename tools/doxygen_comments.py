#!/usr/bin/env python3
"""Gives a header to Doxygen as it reads one, from the plain comments that stand in it: what stands
ahead of a declaration or a macro is of that, what stands behind one is of that as well, and what
stands alone is of the file. What would mean something to Doxygen is protected. Lines that are
indented in a comment stay as they are laid out."""

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


def is_of_the_file(indent, follower):
    return not indent and (not follower.strip() or follower.startswith(("namespace", "#")))


def convert(lines):
    index = 0
    while index < len(lines):
        line = lines[index]
        end = index + 1
        if plain := PLAIN.match(line):
            while end < len(lines) and PLAIN.match(lines[end]):
                end += 1
            block = words([PLAIN.match(each)[2] for each in lines[index:end]], "///")
            follower = lines[end] if end < len(lines) else ""
            macro = follower.startswith("#") and macro_of(lines[end:])
            if is_of_the_file(plain[1], follower):
                block = [f"/// @def {macro}" if macro else "/// @file", *block, ""]
            yield from (plain[1] + each if each else "" for each in block)
        elif (trailing := TRAILING.match(line)) and not trailing[2].startswith(("#", "}")):
            column = line.index("// " + trailing[4])
            yield f"{line[:column].rstrip()}  ///< {protect(trailing[4])}"
            while end < len(lines) and (more := PLAIN.match(lines[end])) and len(more[1]) == column:
                yield " " * column + f"///< {protect(more[2])}"
                end += 1
        else:
            yield line
        index = end


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as header:
        print("\n".join(convert(header.read().split("\n"))))
