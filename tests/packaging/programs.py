"""The options of the programs, as they describe them themselves."""

import re
import subprocess
from pathlib import Path

ROOT = Path(__file__).parents[2]


def help_of(*command):
    return subprocess.run([*command, "--help"], check=True, capture_output=True, text=True).stdout


def options_of(*command):
    """Returns {"--name": whether it takes a value} from a help text."""
    found = re.findall(r"^  (--[a-z][a-z-]*)( <[a-z]+>)?(?: |$)", help_of(*command), re.MULTILINE)
    return {name: bool(value) for name, value in found}


def subcommands_of(program):
    """Returns the names of the subcommands from a help text."""
    listed = help_of(program).partition("Subcommands:\n")[2].partition("\n\n")[0]
    return re.findall(r"^  ([a-z]+)", listed, re.MULTILINE)


def fault_kinds(simulator):
    listed = help_of(simulator).partition("Options:\n")[0]
    return re.findall(r"^  ([a-z-]+)", listed, re.MULTILINE)


def tool_options():
    """Returns {"-x": number of arguments} for zserial, from its option table: it has no --help."""
    table = (ROOT / "app/Options.cpp").read_text()
    rows = re.findall(r'\{QLatin1String\("(-[A-Za-z]+)"\), (\d), on_', table)
    return {name: int(count) for name, count in rows}
