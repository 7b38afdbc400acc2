"""Compares three things: the texts in the sources of the programs, the list of messages in
tests/messages.txt, and the pages that explain them.

In the list, each line is a message as it is printed, with the parts that vary in braces, "{}" at
the seam of two texts, double braces for braces that are printed, and "\\n" for a line end inside a
message. Sections say who prints it: a program, a library ("framework"), or nobody ("no message":
words in the sources that are not printed by themselves). A command on the page must show each text
of a library.
"""

import dataclasses
import re

from documents import commands, markdown

TOOL_PAGE = "docs/troubleshooting.md"
COMPANIONS_PAGE = "docs/troubleshooting-companions.md"


@dataclasses.dataclass(frozen=True)
class Program:
    """The messages of a program: their section of the list, their page and their sources."""

    section: str
    page: str
    folders: tuple
    left_out: tuple = ()  #: names of sources without messages
    speaks: str = ""  #: found in each source with messages; the others have none
    repeats: tuple = ()  #: sections of other programs with texts that these sources have, too


PROGRAMS = (
    # The usage text is one piece, which a test of the tool compares as a whole.
    Program("tool", TOOL_PAGE, ("app", "device", "memory", "profile"), left_out=("UsageText.cpp",)),
    # What several of the other programs contain.
    Program("companions", COMPANIONS_PAGE, ("process",)),
    # Left out are names of faults, commands and behaviours with what --help says of them, the
    # folders of lock files, and the summary.
    Program("zserial-sim", COMPANIONS_PAGE,
            ("sim/device", "sim/faults", "sim/line", "sim/program", "sim/rig"),
            left_out=("FaultKind.h", "Names.h", "PortLock.cpp", "SummaryText.cpp")),
    # Left out are the display, the events and the report. The judge recognises texts of the tool.
    Program("zserial-gang", COMPANIONS_PAGE, ("gang",),
            left_out=("Display.cpp", "EventLines.cpp", "TableText.cpp", "Report.cpp",
                      "ReportHtml.cpp", "ReportText.cpp"),
            repeats=("tool",)),
    # A message leaves the inspector as a UsageError or on standard error. The other sources find
    # problems, which docs/inspect.md explains by their codes, or lay out reports.
    Program("zserial-inspect", COMPANIONS_PAGE, ("inspect",),
            speaks="UsageError|StandardStream::Error|InputFile::InputFile",
            repeats=("tool",)),
)
FRAMEWORKS = {"framework": TOOL_PAGE, "framework of companions": COMPANIONS_PAGE}
NO_MESSAGE = "no message"

TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|#include[^\n]*|\'(?:\\.|[^\'\\])*\'|("(?:\\.|[^"\\\n])*")',
                   re.DOTALL)
#: What --help shows: the rows of a table of options, other arguments, a description; a subcommand of
#: the inspector, and all of them.
HELP = re.compile(r'\{"[\w-]*",\s*"[\w ]*",\s*(?:"(?:\\.|[^"\\])*"\s*)+\}'
                  r"|addPositionalArgument\(.*?\);"
                  r"|const char\* const (?:introduction|exit_status|\w*description) =.*?;\n"
                  r"|static const Subcommand subcommand = \{.*?\n    \};"
                  r"|QByteArray general_help\(\)\n\{.*?\n\}", re.DOTALL)
#: A word in one case is a name: of an option, a key, a verdict, a file, a variable.
NAME = re.compile(r"[a-z0-9_./-]+|[A-Z0-9_]+")
#: What varies in the list, or is printed in braces.
BRACES = re.compile(r"\{(\{[^}]*\})\}|\{([^}]*)\}")
#: What varies: "%1" in a text of the framework, "%s" and "%u%%" in those of the C library, braces in
#: the list.
GAP = re.compile(rf"%\d|%s|%u%%|{BRACES.pattern.replace('(', '(?:')}|\\[nrt]|[\n\r\t]")


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


def is_name(parts):
    return len(parts) == 1 and NAME.fullmatch(parts[0]) is not None


def contains(message, part):
    """Whether the fragments of a literal follow each other in those of a message."""
    return any(message[start:start + len(part)] == part for start in range(len(message)))


def sources(source, program):
    """The files with messages of a program."""
    for folder in program.folders:
        for path in sorted((source / folder).iterdir()):
            if path.suffix in (".cpp", ".h") and path.name not in program.left_out:
                text = path.read_text(encoding="utf-8")
                if re.search(program.speaks, text):
                    yield path.relative_to(source), text


def texts_of_sources(source, program):
    """The fragments of each literal outside of help texts, with the file that has it."""
    found = {}
    for path, content in sources(source, program):
        for text in literals(HELP.sub("", content)):
            found.setdefault(fragments(text), path)
    found.pop((), None)
    return found


def read_list(path):
    """The entries by section."""
    names = [*(program.section for program in PROGRAMS), *FRAMEWORKS, NO_MESSAGE]
    sections = {name: [] for name in names}
    for line in path.read_text(encoding="utf-8").splitlines():
        if line.startswith("["):
            section = sections[line.strip("[]")]
        elif line and not line.startswith("#"):
            section.append(line)
    return sections


def as_on_the_page(message):
    """On the page, what varies is a word in capitals, and a message of several lines one line."""
    text = BRACES.sub(lambda braces: braces[1] or braces[2], message.replace("\\n", " "))
    return re.sub(r"\s+", " ", text).strip()


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
    everything = {}
    for program in PROGRAMS:
        found = texts_of_sources(source, program)
        others = [each for name in (*program.repeats, NO_MESSAGE) for each in listed[name]]
        yield from missing_in_list(found, listed[program.section] + others)
        yield from missing_in_sources(found, listed[program.section])
        yield from missing_files(source, program)
        everything.update(found)
    yield from missing_in_sources(everything, listed[NO_MESSAGE])
    for page in (TOOL_PAGE, COMPANIONS_PAGE):
        yield from between_list_and_page(listed, page, markdown.read(source / page))
    for section, page in FRAMEWORKS.items():
        yield from missing_in_commands(listed[section], page, shown_lines(source / page))


def missing_in_list(found, entries):
    messages = [fragments(each) for each in entries]
    for parts in sorted(found):
        if not is_name(parts) and not any(contains(message, parts) for message in messages):
            yield f"{found[parts]}: not in tests/messages.txt: {' ... '.join(parts)}"


def missing_in_sources(found, entries):
    printed = {part for parts in found for part in parts}
    for part in sorted({part for each in entries for part in fragments(each)} - printed):
        yield f"tests/messages.txt: in no source: {part}"


def missing_files(source, program):
    for name in program.left_out:
        if not any((source / folder / name).exists() for folder in program.folders):
            yield f"{program.section}: left out, and not there: {name}"


def sections_of(page):
    return [program.section for program in PROGRAMS if program.page == page] + [
        section for section, its_page in FRAMEWORKS.items() if its_page == page]


def between_list_and_page(listed, page, lines):
    explained = list(page_messages(lines))
    messages = {as_on_the_page(each) for name in sections_of(page) for each in listed[name]}
    for message in sorted(messages - {text for _, text in explained}):
        yield f"{page}: does not explain: {message}"
    for number, text in explained:
        if text not in messages:
            yield f"{page}:{number}: not in tests/messages.txt: {text}"


def missing_in_commands(entries, page, lines):
    for message in entries:
        if not is_shown(message, lines):
            yield f"{page}: no command shows this text of a library: {message}"
