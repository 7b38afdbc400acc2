#!/usr/bin/env python3
"""Draws docs/session.svg: a terminal in which an image is inspected and programmed into a simulated
device. The text is that of a real run.

    scripts/draw_session.py --programs build/release            # update the picture
    scripts/draw_session.py --programs build/release --check    # check that it is up to date"""

import argparse
import html
import os
import pathlib
import re
import subprocess
import sys

sys.dont_write_bytecode = True
SOURCE = pathlib.Path(__file__).resolve().parent.parent
PICTURE = SOURCE / "docs" / "session.svg"
COMMANDS = (
    "zserial-inspect image blink.hex --device 0110",
    "zserial-sim --device 0110 --check blink.hex --exec -- zserial -s {} -e -w blink.hex -R",
)
CHARACTER, LINE, MARGIN = 7.25, 16, 16
HEAD = """<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" \
viewBox="0 0 {width} {height}" role="img" aria-label="A terminal: an image is inspected and \
programmed into a simulated device">
<style>
rect {{ fill: #f8f8f6; stroke: #c8c8c4 }}
text {{ font: 12px monospace; fill: #24292e; white-space: pre }}
.command {{ font-weight: bold; fill: #0a5a2a }}
@media (prefers-color-scheme: dark) {{
  rect {{ fill: #1c1e21; stroke: #44474b }}
  text {{ fill: #d6d8da }}
  .command {{ fill: #7fd69b }}
}}
</style>
<rect x="0.5" y="0.5" width="{inner_width}" height="{inner_height}" rx="6"/>
"""


def printed(command, programs):
    """Returns the lines that a command leaves on the screen."""
    environment = dict(os.environ, PATH=f"{programs}:{os.environ['PATH']}", NO_COLOR="1")
    run = subprocess.run(command.split(), cwd=SOURCE / "examples", env=environment, check=True,
                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    text = re.sub(r"/dev/pts/\d+", "/dev/pts/3", run.stdout.decode())
    return [line.split("\r")[-1].rstrip() for line in text.rstrip("\n").split("\n")]


def session(programs):
    """Returns the lines on the terminal; commands start with a prompt."""
    lines = []
    for command in COMMANDS:
        lines += ["$ " + command, *printed(command, programs), ""]
    return lines[:-1]


def drawing(lines):
    width = round(2 * MARGIN + CHARACTER * max(map(len, lines)))
    height = 2 * MARGIN + LINE * len(lines)
    rows = [HEAD.format(width=width, height=height, inner_width=width - 1, inner_height=height - 1)]
    for number, line in enumerate(lines, 1):
        kind = ' class="command"' if line.startswith("$ ") else ""
        rows.append(f'<text x="{MARGIN}" y="{MARGIN + number * LINE - 4}"{kind} '
                    'xml:space="preserve">'
                    f"{html.escape(line, quote=False)}</text>\n")
    return "".join(rows) + "</svg>\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--programs", type=pathlib.Path, default=SOURCE / "build")
    parser.add_argument("--check", action="store_true")
    arguments = parser.parse_args()
    picture = drawing(session(arguments.programs.resolve()))
    if not arguments.check:
        PICTURE.write_text(picture, encoding="utf-8")
    elif PICTURE.read_text(encoding="utf-8") != picture:
        sys.exit(f"{PICTURE} is not what the programs print: draw it again with {__file__}")


if __name__ == "__main__":
    main()
