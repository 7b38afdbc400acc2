"""Compares the texts in the sources of the programs with the list of messages in tests/messages.txt, and
the list with the pages that explain them.

In the list, each line is a message as it is printed, with variable parts in braces, "{}" where two texts
are joined, double braces for braces that are printed, and "\\n" for a line end inside a message. The
sections name the source of a message: a program, a library ("framework"), or none ("no message": words in
the sources that are not printed on their own). A command on the page must show each text of a library.
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
    speaks: str = ""  #: pattern that occurs in every source with messages, and in no other
    repeats: tuple = ()  #: sections of other programs whose texts these sources may contain, too


PROGRAMS = (
    # A test of zserial compares the usage text as a whole.
    Program("tool", TOOL_PAGE, ("app", "device", "memory", "profile"), left_out=("UsageText.cpp",)),
    # Shared by several of the other programs.
    Program("companions", COMPANIONS_PAGE, ("process",)),
    # Without the names of faults, commands and behaviours and their help texts, the folders of lock
    # files, and the summary.
    Program("zserial-sim", COMPANIONS_PAGE,
            ("sim/device", "sim/faults", "sim/line", "sim/program", "sim/rig"),
            left_out=("FaultKind.h", "Names.h", "PortLock.cpp", "SummaryText.cpp")),
    # Without the display, the events and the report. The judge recognises texts of zserial.
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
#: Help texts: the rows of a table of options, other arguments, a description; one subcommand of the
#: inspector, and the list of all subcommands.
HELP = re.compile(r'\{"[\w-]*",\s*"[\w ]*",\s*(?:"(?:\\.|[^"\\])*"\s*)+\}'
                  r"|addPositionalArgument\(.*?\);"
                  r"|const char\* const (?:introduction|exit_status|\w*description) =.*?;\n"
                  r"|static const Subcommand subcommand = \{.*?\n    \};"
                  r"|QByteArray general_help\(\)\n\{.*?\n\}", re.DOTALL)
#: A single word in one case is a name: of an option, a key, a verdict, a file or a variable.
NAME = re.compile(r"[a-z0-9_./-]+|[A-Z0-9_]+")
#: In the list: text that is printed in braces, or a variable part.
BRACES = re.compile(r"\{(\{[^}]*\})\}|\{([^}]*)\}")
#: Variable parts: "%1" in a text of Qt, "%s" and "%u%%" in one of the C library, braces in the list.
GAP = re.compile(rf"%\d|%s|%u%%|{BRACES.pattern.replace('(', '(?:')}|\\[nrt]|[\n\r\t]")


def literals(source):
    """Returns the string literals of a source; adjacent ones are joined."""
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
    """Returns the fixed parts of a message, in order, without those that have no two letters in a
    row."""
    parts = (re.sub(r"\s+", " ", part.replace('\\"', '"')).strip() for part in GAP.split(text))
    return tuple(part for part in parts if re.search(r"[A-Za-z]{2}", part))


def is_name(parts):
    return len(parts) == 1 and NAME.fullmatch(parts[0]) is not None


def contains(message, part):
    """Returns whether a message contains the fragments of a literal one after the other."""
    return any(message[start:start + len(part)] == part for start in range(len(message)))


def sources(source, program):
    """Yields the files of a program that contain messages, with their text."""
    for folder in program.folders:
        for path in sorted((source / folder).iterdir()):
            if path.suffix in (".cpp", ".h") and path.name not in program.left_out:
                text = path.read_text(encoding="utf-8")
                if re.search(program.speaks, text):
                    yield path.relative_to(source), text


def texts_of_sources(source, program):
    """Returns the fragments of each literal outside of help texts, with the file that contains it."""
    found = {}
    for path, content in sources(source, program):
        for text in literals(HELP.sub("", content)):
            found.setdefault(fragments(text), path)
    found.pop((), None)
    return found


def read_list(path):
    """Returns the entries by section."""
    names = [*(program.section for program in PROGRAMS), *FRAMEWORKS, NO_MESSAGE]
    sections = {name: [] for name in names}
    for line in path.read_text(encoding="utf-8").splitlines():
        if line.startswith("["):
            section = sections[line.strip("[]")]
        elif line and not line.startswith("#"):
            section.append(line)
    return sections


def as_on_the_page(message):
    """Returns a message as the page shows it: on one line, with variable parts without braces."""
    text = BRACES.sub(lambda braces: braces[1] or braces[2], message.replace("\\n", " "))
    return re.sub(r"\s+", " ", text).strip()


def page_messages(lines):
    """Yields the code spans in headings and in first columns of tables."""
    for number, line in markdown.prose(lines):
        cells = re.split(r"(?<!\\)\|", line)
        text = line if line.startswith("###") else cells[1] if line.startswith("|") else ""
        for span in markdown.CODE_SPAN.finditer(text):
            yield number, span[2].strip()


def shown_lines(document):
    """Returns the output shown for the commands of the page."""
    return [line for block in commands.command_blocks(document)
            if not commands.has(block, "not run") for command in commands.commands(block) for line in command.shown]


def is_shown(message, lines):
    parts = [re.escape(part) for part in re.split(r"\{[^}]*\}", message)]
    return any(re.search(".*".join(parts), line) for line in lines)


def disagreements(source):
    """Yields a line of text for each disagreement."""
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
