"""Compares three things: the texts in the sources of the tool, the list of messages in
tests/messages.txt, and the page that explains them, docs/troubleshooting.md.

In the list, each line is a message as it is printed, with the parts that vary in braces, "{}" at
the seam of two texts, and "\\n" for a line end inside a message. Sections say who prints it:

    [tool]       texts of the sources
    [framework]  texts of the libraries; a command on the page must show each of them
    [no message] words in the sources that are not printed by themselves
"""

import re

from documents import commands, markdown

FOLDERS = ("app", "device", "memory", "profile")
#: The usage text is one piece, which a test of the tool compares as a whole.
LEFT_OUT = ("UsageText.cpp",)
SECTIONS = ("tool", "framework", "no message")
PAGE = "docs/troubleshooting.md"

TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|#include[^\n]*|\'(?:\\.|[^\'\\])*\'|("(?:\\.|[^"\\\n])*")',
                   re.DOTALL)
#: What varies: "%1" in a text of the framework, "%u%%" in one of the C library, braces in the list.
GAP = re.compile(r"%\d|%u%%|\{[^}]*\}|\\[nrt]|[\n\r\t]")


def literals(source):
    """The string literals of a source; those that follow each other directly are one."""
    found = []
    end = None
    for token in TOKEN.finditer(source):
        follows = end is not None and not source[end:token.start()].strip()
        if token[1] is not None:
            text = token[1][1:-1]
            if follows:
                found[-1] += text
            else:
                found.append(text)
        if token[1] is not None or follows:
            end = token.end()
    return found


def fragments(text):
    """The parts of a message that do not vary, in order. What has no two letters in a row says
    nothing."""
    parts = (re.sub(r"\s+", " ", part.replace('\\"', '"')).strip() for part in GAP.split(text))
    return tuple(part for part in parts if re.search(r"[A-Za-z]{2}", part))


def contains(message, part):
    """Whether the fragments of a literal follow each other in those of a message."""
    return any(message[start:start + len(part)] == part for start in range(len(message)))


def texts_of_sources(source):
    """The fragments of each literal, with the file that has it."""
    found = {}
    for folder in FOLDERS:
        for path in sorted((source / folder).glob("*.cpp")):
            if path.name not in LEFT_OUT:
                for text in literals(path.read_text(encoding="utf-8")):
                    found.setdefault(fragments(text), path.relative_to(source))
    found.pop((), None)
    return found


def read_list(path):
    """The entries by section."""
    sections = {name: [] for name in SECTIONS}
    for line in path.read_text(encoding="utf-8").splitlines():
        if line.startswith("["):
            section = sections[line.strip("[]")]
        elif line and not line.startswith("#"):
            section.append(line)
    return sections


def as_on_the_page(message):
    """On the page, what varies is a word in capitals, and a message of several lines one line."""
    return re.sub(r"\s+", " ", re.sub(r"[{}]", "", message.replace("\\n", " "))).strip()


def page_messages(lines):
    """The code spans in headings and in first columns of tables."""
    for number, line in markdown.prose(lines):
        cells = re.split(r"(?<!\\)\|", line)
        text = line if line.startswith("###") else cells[1] if line.startswith("|") else ""
        for span in markdown.CODE_SPAN.finditer(text):
            yield number, span[2].strip()


def shown_lines(document):
    """What commands of the page are shown to print."""
    return [line for block in commands.command_blocks(document)
            if not commands.has(block, "not run") for command in commands.commands(block) for line in command.shown]


def is_shown(message, lines):
    parts = [re.escape(part) for part in re.split(r"\{[^}]*\}", message)]
    return any(re.search(".*".join(parts), line) for line in lines)


def disagreements(source):
    """One line of text for each disagreement."""
    listed = read_list(source / "tests" / "messages.txt")
    document = source / PAGE
    yield from between_sources_and_list(texts_of_sources(source), listed)
    yield from between_list_and_page(listed, list(page_messages(markdown.read(document))))
    shown = shown_lines(document)
    for message in listed["framework"]:
        if not is_shown(message, shown):
            yield f"{PAGE}: no command shows this text of a library: {message}"


def between_sources_and_list(found, listed):
    messages = [fragments(each) for each in listed["tool"] + listed["no message"]]
    for parts in sorted(found):
        if not any(contains(message, parts) for message in messages):
            yield f"{found[parts]}: not in tests/messages.txt: {' ... '.join(parts)}"
    printed = {part for parts in found for part in parts}
    for part in sorted({part for message in messages for part in message} - printed):
        yield f"tests/messages.txt: in no source: {part}"


def between_list_and_page(listed, explained):
    messages = {as_on_the_page(each) for each in listed["tool"] + listed["framework"]}
    for message in sorted(messages - {text for _, text in explained}):
        yield f"{PAGE}: does not explain: {message}"
    for number, text in explained:
        if text not in messages:
            yield f"{PAGE}:{number}: not in tests/messages.txt: {text}"
