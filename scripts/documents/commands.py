"""Runs the command lines that a document shows, in scratch folders and on simulated devices, and
compares what they print with what the document shows.

A code block contains command lines if its language is sh or console, or if it has no language and a
line starts with "$ " or with a program. After a command with "$ ", the block shows its output. Comments
directly before a block control how it is run, one comment per line:

    <!-- not run: REASON -->            the block cannot be run here
    <!-- first: COMMAND -->             prepares the scratch folder, when the devices are running
    <!-- simulator: OPTIONS -->         of the simulated devices, instead of --device 0110
    <!-- status: N -->                  of the last command, instead of 0; several: of each command
    <!-- output: errors -->             the output shown is on standard error; "all": on both
    <!-- continues -->                  in the folder and with the devices of the previous block
    <!-- file: NAME -->                 no commands: the contents of a file in the folder from now on
    <!-- background -->                 the command keeps running during the blocks that continue it
    <!-- background ends -->            no commands: the rest of that command's output, when it ends

Each block starts in a copy of examples/, in which firmware.hex is a copy of blink.hex. A /dev/ttyUSBn
is a simulated device, and a /dev/pts/n is the one in the background. In the output shown, "..." stands
for any text or, on a line of its own, for any number of lines.
"""

import concurrent.futures
import dataclasses
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile

from documents import markdown

PROGRAMS = re.compile(r"(\$ |zserial\b|scripts/|examples/|\.ci/|cmake |ctest |git |apt|sudo "
                      r"|srec_cat |objcopy |python3 |coproc |echo |dpkg|man |pkg-config |make |g\+\+ |gcc )")
PORT = re.compile(r"/dev/(tty(?:USB|ACM)\d+)")
TERMINAL = re.compile(r"/dev/pts/\d+")
KNOWN_COMMENTS = ("not run", "first", "simulator", "status", "output", "continues", "file",
                  "background", "background ends")
MARK = "-- status of a command:"
LONGEST_S = 100
#: They spend most of the time waiting for answers that never come.
GROUPS_AT_ONCE = 4


class Failed(Exception):
    """A block does not do what the document shows."""


@dataclasses.dataclass
class Command:
    text: str
    shown: list


def holds_commands(block):
    """Returns whether a block has commands to run or a file to create."""
    if has(block, "file"):
        return True
    if block.language:
        return block.language in ("sh", "console")
    return any(PROGRAMS.match(line) for line in block.lines) or has(block, "background ends")


def has(block, name):
    return any(each == name or each.startswith(name + ":") for each in block.comments)


def values(block, name):
    return [each[len(name) + 1:].strip() for each in block.comments if each.startswith(name + ":")]


def value(block, name, default):
    return (values(block, name) or [default])[-1]


def commands(block):
    """Returns the commands of a block, each with the output shown for it. Without "$ ", no output is
    shown, and the whole block is one command unless it has several statuses."""
    if has_prompts(block):
        return prompted_commands(block)
    if len(statuses(block)) == 1:
        return [Command("\n".join(block.lines), [])]
    whole = "\n".join(block.lines).replace("\\\n", "\\\r")
    return [Command(line.replace("\r", "\n"), []) for line in whole.split("\n")]


def has_prompts(block):
    return any(line.startswith("$ ") for line in block.lines)


def prompted_commands(block):
    found = []
    continued = False
    for line in block.lines:
        if line.startswith("$ "):
            found.append(Command(line[2:], []))
        elif continued:
            found[-1].text += "\n" + line
        elif found:
            found[-1].shown.append(line)
        continued = (line.startswith("$ ") or continued) and line.endswith("\\")
    return found


def statuses(block):
    return [int(each) for each in value(block, "status", "0").split()]


def as_on_a_terminal(text):
    """Returns the lines as they finally look: a carriage return overwrites what is before it."""
    lines = [line.rstrip("\r").split("\r")[-1].rstrip() for line in text.split("\n")]
    while lines and not lines[-1]:
        lines.pop()
    while lines and not lines[0]:
        lines.pop(0)
    return "\n".join(TERMINAL.sub("/dev/pts/N", line) for line in lines)


def agrees(shown, printed):
    """Returns whether the output is what the document shows, which may omit parts."""
    pattern = "".join(
        r"(?:.*\n)*?" if line.strip() == "..." else
        r".*".join(map(re.escape, line.split("..."))) + "\n"
        for line in as_on_a_terminal("\n".join(shown)).split("\n"))
    return re.fullmatch(pattern, as_on_a_terminal(printed) + "\n") is not None


class Scratch:
    """A folder with the examples, its simulated devices, and the command in the background."""

    def __init__(self, source, programs):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="documents-"))
        self.work = self.folder / "work"
        self.environment = dict(os.environ, PATH=f"{programs}:{os.environ['PATH']}", TERM="dumb")
        self.running = []
        self.background = None
        self.terminal = None
        shutil.copytree(source / "examples", self.work)
        shutil.copy(self.work / "blink.hex", self.work / "firmware.hex")
        (self.folder / "ports").mkdir()

    def close(self):
        for process in self.running:
            if process.poll() is None:
                os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            if process.stdout:
                process.stdout.close()
        shutil.rmtree(self.folder)

    def start(self, command, **options):
        process = subprocess.Popen(
            command, cwd=self.work, env=self.environment, stdin=subprocess.DEVNULL,
            start_new_session=True, **options)
        self.running.append(process)
        return process

    def plug_in(self, text, simulator):
        """Starts a simulated device for each port that the text names."""
        for name in sorted(set(PORT.findall(text))):
            link = self.folder / "ports" / name
            if simulator == "none" or link.is_symlink():
                continue
            device = self.start(
                ["bash", "-c", f"exec zserial-sim --link '{link}' {simulator}"],
                stdout=subprocess.PIPE)
            if not device.stdout.readline():
                raise Failed(f"no simulated device with {simulator}")

    def here(self, text):
        """Returns the text with the ports of this folder instead of those of the document."""
        text = PORT.sub(lambda port: str(self.folder / "ports" / port[1]), text)
        return TERMINAL.sub(self.terminal, text) if self.terminal else text

    def there(self, text):
        return text.replace(f"{self.folder}/ports/", "/dev/").replace(f"{self.work}/", "")

    def run(self, script, output):
        streams = {"errors": (subprocess.DEVNULL, subprocess.PIPE),
                   "all": (subprocess.PIPE, subprocess.STDOUT)}.get(
                       output, (subprocess.PIPE, subprocess.DEVNULL))
        process = self.start(["bash", "-c", script], stdout=streams[0], stderr=streams[1])
        try:
            printed = process.communicate(timeout=LONGEST_S)
        except subprocess.TimeoutExpired as late:
            raise Failed(f"still running after {LONGEST_S} s") from late
        return self.there((printed[0] or printed[1] or b"").decode(errors="replace"))


def marked(texts, output):
    """Returns a script that prints the status of each command after its output."""
    stream = " >&2" if output == "errors" else ""
    return "".join(f"{text}\nprintf '\\n{MARK} %d\\n' $?{stream}\n" for text in texts)


def outputs(text, count):
    """Returns the output of each command, with its status."""
    parts = re.split(rf"\n{MARK} (\d+)\n", text)
    if len(parts) != 2 * count + 1:
        raise Failed(f"ended early:\n{text}")
    return list(zip(parts[0::2], map(int, parts[1::2])))


def run_shown(block, scratch):
    output = value(block, "output", "")
    wanted = commands(block)
    script = marked([scratch.here(each.text) for each in wanted], output)
    expected = statuses(block)
    expected = [0] * (len(wanted) - len(expected)) + expected
    for each, status, (printed, ended) in zip(
            wanted, expected, outputs(scratch.run(script, output), len(wanted))):
        if ended != status:
            raise Failed(f"{each.text}\nended with status {ended}, not {status}, and printed\n"
                         f"{printed}")
        if any(each.shown) and not agrees(each.shown, printed):
            shown = "\n".join(each.shown)
            raise Failed(f"{each.text}\nprinted\n{as_on_a_terminal(printed)}\n"
                         f"and is shown to print\n{shown}")


def run_script(block, scratch):
    text = "set -eo pipefail\n" + scratch.here("\n".join(block.lines)) + "\n"
    status, = statuses(block)
    (printed, ended), = outputs(scratch.run(marked([f"({text})"], "all"), "all"), 1)
    if ended != status:
        raise Failed(f"ended with status {ended}, not {status}, and printed\n{printed}")


def begin_background(block, scratch):
    """Starts the command of a block. Its first line is the port; its output so far is as shown."""
    command, = commands(block)
    scratch.background = scratch.start(["bash", "-c", "exec " + scratch.here(command.text)],
                                       stdout=subprocess.PIPE)
    scratch.terminal = scratch.background.stdout.readline().decode().strip()
    if any(command.shown) and not agrees(command.shown, scratch.terminal):
        raise Failed(f"{command.text}\nprinted\n{scratch.terminal}")


def end_background(block, scratch):
    scratch.background.send_signal(signal.SIGINT)
    printed, _ = scratch.background.communicate(timeout=LONGEST_S)
    printed = scratch.there(printed.decode(errors="replace"))
    if not agrees(block.lines, printed):
        raise Failed(f"the command in the background printed\n{printed}")


def write_file(block, scratch):
    path = scratch.work / value(block, "file", "")
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("\n".join(block.lines) + "\n", encoding="utf-8")


def run_block(block, scratch):
    refuse_unknown_comments(block)
    if has(block, "background ends"):
        return end_background(block, scratch)
    if has(block, "file"):
        return write_file(block, scratch)
    scratch.plug_in("\n".join(block.lines), value(block, "simulator", "--device 0110"))
    for each in values(block, "first"):
        subprocess.run(["bash", "-ec", scratch.here(each)], cwd=scratch.work,
                       env=scratch.environment, check=True, stdout=subprocess.DEVNULL)
    if has(block, "background"):
        return begin_background(block, scratch)
    if has_prompts(block) or len(statuses(block)) > 1:
        return run_shown(block, scratch)
    return run_script(block, scratch)


def continues(block):
    return has(block, "continues") or has(block, "background ends")


def refuse_unknown_comments(block):
    for comment in block.comments:
        if comment.split(":")[0] not in KNOWN_COMMENTS:
            raise Failed(f"unknown comment before a block of commands: {comment}")


def command_blocks(document):
    return [block for block in markdown.blocks(markdown.read(document)) if holds_commands(block)]


def groups(blocks):
    """Groups blocks that continue each other; groups are independent of each other."""
    found = []
    for block in blocks:
        if continues(block) and found:
            found[-1].append(block)
        else:
            found.append([block])
    return found


def check(document, source, programs):
    """Runs a document. Returns a line of text for each block that fails, and one for each block that
    is not run."""
    blocks = command_blocks(document)
    left_out = [f"{document}:{block.line}: not run: {value(block, 'not run', '')}"
                for block in blocks if has(block, "not run")]
    to_run = [block for block in blocks if not has(block, "not run")]
    with concurrent.futures.ThreadPoolExecutor(GROUPS_AT_ONCE) as pool:
        found = list(pool.map(lambda group: run_group(group, source, programs), groups(to_run)))
    # If a busy machine delays an answer by 300 ms, the output differs: failures run once more, alone.
    found = [failures and run_group(group, source, programs)
             for group, failures in zip(groups(to_run), found)]
    return [f"{document}:{failure}" for failures in found for failure in failures], left_out


def run_group(group, source, programs):
    failures = []
    scratch = Scratch(source, programs)
    try:
        for block in group:
            try:
                run_block(block, scratch)
            except (Failed, ValueError, OSError, subprocess.SubprocessError) as failure:
                failures.append(f"{block.line}: {failure}")
    finally:
        scratch.close()
    return failures
