"""The parts of a Markdown document that the checks need: code blocks with the comments before them,
headings and links."""

import dataclasses
import re
import textwrap

COMMENT = re.compile(r"<!--\s*(.*?)\s*-->$")
FENCE = re.compile(r"(```+)\s*(\w*)")
HEADING = re.compile(r"#{1,6} +(.*?)\s*#*$")
LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)\)")
CODE_SPAN = re.compile(r"(`+)((?:(?!\n\n).)+?)\1", re.DOTALL)
LIST_ITEM = re.compile(r"\s*([-*]|\d+\.) ")


@dataclasses.dataclass
class Block:
    """A code block: its first and last line in the document, its language (empty if indented or not
    named), its text, and the comments directly before it, one to a line."""

    line: int
    end: int
    language: str
    lines: list
    comments: list


def read(path):
    return path.read_text(encoding="utf-8").split("\n")


def blocks(lines):
    """Returns all code blocks, fenced or indented by four spaces."""
    found = []
    comments = []
    number = 0
    while number < len(lines):
        line = lines[number]
        fence = FENCE.match(line)
        comment = COMMENT.match(line.strip())
        if fence:
            end = fence_end(lines, number + 1, fence[1])
            found.append(Block(number + 1, end + 1, fence[2], lines[number + 1:end], comments))
            comments, number = [], end
        elif comment:
            comments = comments + [comment[1]]
        elif line.startswith("    ") and not belongs_to_list(lines, number):
            end = indented_end(lines, number)
            text = textwrap.dedent("\n".join(lines[number:end])).split("\n")
            found.append(Block(number + 1, end, "", text, comments))
            comments, number = [], end - 1
        elif line.strip():
            comments = []
        number += 1
    return found


def fence_end(lines, start, fence):
    for number in range(start, len(lines)):
        if lines[number].strip() == fence:
            return number
    raise ValueError(f"line {start}: the fence has no end")


def belongs_to_list(lines, number):
    """Returns whether an indented line continues a list item or a paragraph. A code block follows an
    empty line or a comment, and inside a list it is indented further than the text."""
    before = number - 1
    if before >= 0 and lines[before].strip() and not COMMENT.match(lines[before].strip()):
        return True
    while before >= 0 and (not lines[before].strip() or lines[before].startswith(" ")
                           and not LIST_ITEM.match(lines[before])):
        before -= 1
    in_list = before >= 0 and LIST_ITEM.match(lines[before])
    return bool(in_list) and not lines[number].startswith("      ")


def indented_end(lines, start):
    end = start
    for number in range(start, len(lines)):
        if lines[number].startswith("    "):
            end = number + 1
        elif lines[number].strip():
            break
    return end


def prose(lines):
    """Returns the lines outside of code blocks, with their numbers."""
    code = {number for block in blocks(lines) for number in range(block.line, block.end + 1)}
    return [(number, line) for number, line in enumerate(lines, 1) if number not in code]


def anchors(lines):
    """Returns what links can name after "#": the headings in lower case, without punctuation and with
    hyphens for spaces. A repeated heading gets a number."""
    found = set()
    for _, line in prose(lines):
        heading = HEADING.match(line)
        if heading:
            found.add(unused(slug(heading[1]), found))
    return found


def slug(heading):
    text = LINK.sub(lambda link: link[0][link[0].index("[") + 1:link[0].index("](")], heading)
    return re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-")


def unused(name, taken):
    if name not in taken:
        return name
    number = 1
    while f"{name}-{number}" in taken:
        number += 1
    return f"{name}-{number}"


def links(lines):
    """Yields the targets of all links, with their line numbers. Links in code do not count."""
    outside = prose(lines)
    text = CODE_SPAN.sub(without_code, "\n".join(line for _, line in outside))
    for link in LINK.finditer(text):
        yield outside[text.count("\n", 0, link.start())][0], link[1]


def without_code(span):
    return "code" + "\n" * span[0].count("\n")
