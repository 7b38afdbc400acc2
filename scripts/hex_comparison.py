"""Loads damaged and unusual Intel HEX files with several tools and prints the results as a table.

Every file holds the bytes 01 02 03 04 at 0x80, called A, and 05 06 07 08 at 0xA0, called B, unless
its name says otherwise. Usage: hex_comparison.py FOLDER, where FOLDER holds the zserial and
zserial-sim to use.
"""

import os
import pathlib
import resource
import subprocess
import sys
import tempfile
import time

TIME_LIMIT = 60
MEMORY_LIMIT = 4 << 30
GIBIBYTE = 1 << 30

A = {0x80 + i: 1 + i for i in range(4)}
B = {0xA0 + i: 5 + i for i in range(4)}


def record(kind, address, digits=""):
    data = bytes.fromhex(digits)
    content = bytes([len(data), address >> 8, address & 0xFF, kind]) + data
    return ":" + (content + bytes([-sum(content) & 0xFF])).hex().upper() + "\n"


FIRST = record(0, 0x80, "01020304")
SECOND = record(0, 0xA0, "05060708")
END = record(1, 0)


def files():
    """Returns the name of each case and the contents of its file."""
    plain = FIRST + SECOND + END
    return [
        ("nothing wrong", plain),
        ("bad checksum", FIRST + SECOND[:-3] + "43\n" + END),
        ("bad checksum of the end record", FIRST + SECOND + ":00000001FE\n"),
        ("not a hexadecimal digit", FIRST + SECOND.replace("06", "0G") + END),
        ("space within a record", FIRST + SECOND.replace("06", "0 6") + END),
        ("truncated line", FIRST + SECOND[:-5] + "\n" + END),
        ("truncated file", FIRST + SECOND[:-5]),
        ("`:` lost before data", FIRST + SECOND[1:] + END),
        ("`:` lost before a type 4 record",
         FIRST + record(4, 0, "0001")[1:] + SECOND + END),
        ("`:` lost before the end record", FIRST + SECOND + END[1:]),
        ("no end record", FIRST + SECOND),
        ("no end record, no line end", (FIRST + SECOND)[:-1]),
        ("data after the end record", FIRST + END + SECOND),
        ("text after the end record", plain + "remark\n"),
        ("text between records", FIRST + "remark\n" + SECOND + END),
        ("descending addresses", SECOND + FIRST + END),
        ("type 4 record lower than the first",
         record(4, 0, "0001") + SECOND + record(4, 0, "0000") + FIRST + END),
        ("overlap with equal bytes", FIRST + FIRST + SECOND + END),
        ("overlap with different bytes", FIRST + record(0, 0x82, "FF") + SECOND + END),
        ("type 2 record", FIRST + record(2, 0, "0010") + SECOND + END),
        ("type 3 record", FIRST + SECOND + record(3, 0, "00000100") + END),
        ("type 4 record of one byte", FIRST + record(4, 0, "01") + SECOND + END),
        ("type 4 record without bytes", FIRST + record(4, 0) + SECOND + END),
        ("type 4 record with bit 23 set", FIRST + record(4, 0, "0080") + SECOND + END),
        ("type 5 record at the end", FIRST + SECOND + record(5, 0, "00000100") + END),
        ("type 5 record before data", FIRST + record(5, 0, "00000020") + SECOND + END),
        ("unknown type 6", FIRST + record(6, 0, "AA") + SECOND + END),
        ("data across the end of 4 GiB",
         FIRST + SECOND + record(4, 0, "FFFF") + record(0, 0xFFFE, "AABBCCDD") + END),
        ("byte-order mark", "\ufeff" + plain),
        ("UTF-16", plain.encode("utf-16")),
        ("CR LF", plain.replace("\n", "\r\n")),
        ("CR alone", plain.replace("\n", "\r")),
        ("lower-case digits", plain.replace("F", "f")),
        ("empty file", ""),
        ("binary file", bytes(range(256)) * 4),
        ("folder", None),
        ("1 GiB of NUL bytes", "nul"),
        ("1 GiB of the digit 0", "digits"),
    ]


def make_file(path, text):
    if text is None:
        path.mkdir()
    elif text in ("nul", "digits"):
        with path.open("wb") as file:
            if text == "nul":
                file.truncate(GIBIBYTE)
            else:
                for _ in range(GIBIBYTE >> 20):
                    file.write(b"0" * (1 << 20))
    else:
        path.write_bytes(text if isinstance(text, bytes) else text.encode())


def load(path):
    """Returns the bytes of a file that a tool has written, by address."""
    upper, image = 0, {}
    for line in path.read_text().split():
        content = bytes.fromhex(line[1:])
        address, kind, data = int.from_bytes(content[1:3], "big"), content[3], content[4:-1]
        if kind == 0:
            image.update((upper + address + i, byte) for i, byte in enumerate(data))
        elif kind in (2, 4):
            upper = int.from_bytes(data, "big") << (4 if kind == 2 else 16)
    return image


def place(image, piece, name):
    """Removes a piece from an image, at whatever address, and returns where it was."""
    start, data = min(piece), [piece[address] for address in sorted(piece)]
    for base in sorted(image, key=lambda address: (address != start, address)):
        if [image.get(base + i) for i in range(len(data))] == data:
            for i in range(len(data)):
                del image[base + i]
            return [name if base == start else f"{name} at 0x{base:X}"]
    return []


def describe(image):
    image = dict(image)
    pieces = place(image, A, "A") + place(image, B, "B")
    pieces += [f"{image[address]:02X} at 0x{address:X}" for address in sorted(image)]
    return ", ".join(pieces) or "nothing"


class Run:
    """A process with limited time and memory."""

    def __init__(self, command, folder):
        started = time.monotonic()
        with tempfile.TemporaryFile() as out:
            process = subprocess.Popen(
                command, cwd=folder, stdin=subprocess.DEVNULL, stdout=out, stderr=out,
                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT,) * 2))
            self.in_time = True
            while os.waitid(os.P_PID, process.pid, os.WEXITED | os.WNOHANG | os.WNOWAIT) is None:
                if time.monotonic() - started > TIME_LIMIT:
                    self.in_time = False
                    process.kill()
                    break
                time.sleep(0.005)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = self.status = os.waitstatus_to_exitcode(status)
            self.seconds = time.monotonic() - started
            self.mebibytes = usage.ru_maxrss / 1024
            out.seek(0)
            self.text = out.read(1 << 20).decode(errors="replace")


class Zserial:
    """Writes to a simulated device, so only data within its memory is seen."""

    name = "zserial"

    def __init__(self, folder):
        self.programs = folder.resolve()
        self.table = pathlib.Path("tests/app/data/quad_device.txt").resolve()

    def version(self):
        return (subprocess.run([self.programs / "zserial-sim", "--version"], check=True,
                               capture_output=True, text=True).stdout.split()[-1])

    def run(self, source, target, folder):
        (folder / "device.txt").write_bytes(self.table.read_bytes())
        return Run([self.programs / "zserial-sim", "--device", "0708", "--save", target, "--exec",
                    "--", self.programs / "zserial", "-s", "{}", "-B", "0708", "-w", source],
                   folder)

    def reason(self, run):
        for line in run.text.splitlines():
            for mark in ("read_record(): ", "encountered ", "BLOBs ", "for write op"):
                if mark in line:
                    reason = line[line.index(mark) + len(mark):].split(" in hex")[0]
                    return {"BLOBs ": "overlap", "for write op": "cannot be opened"}.get(
                        mark, reason)
        return "?"


class OtherTool:
    def __init__(self, name, version_command, command):
        self.name, self.version_command, self.command = name, version_command, command

    def version(self):
        text = subprocess.run(self.version_command, check=True, capture_output=True, text=True)
        words = text.stdout.replace("\n", " ").split()
        return next(word for word in words if word[0].isdigit())

    def run(self, source, target, folder):
        return Run([part.format(source=source, target=target) for part in self.command], folder)

    def reason(self, _):
        return ""


INTELHEX = """
import sys, intelhex
image = intelhex.IntelHex(sys.argv[1])
image.write_hex_file(sys.argv[2], write_start_addr=False)
"""


def tools(folder):
    python = "/usr/bin/python3"
    return [
        Zserial(folder),
        OtherTool("objcopy", ["objcopy", "--version"],
                  ["objcopy", "-I", "ihex", "-O", "ihex", "{source}", "{target}"]),
        OtherTool("llvm-objcopy", ["llvm-objcopy", "--version"],
                  ["llvm-objcopy", "-I", "ihex", "-O", "ihex", "{source}", "{target}"]),
        OtherTool("srec_cat", ["srec_cat", "--version"],
                  ["srec_cat", "{source}", "-Intel", "-Output", "{target}", "-Intel",
                   "-Output_Block_Size=16"]),
        OtherTool("python3-intelhex",
                  [python, "-c", "from intelhex.__version__ import *; print(version_str)"],
                  [python, "-c", INTELHEX, "{source}", "{target}"]),
    ]


def outcome(tool, case, text):
    """Returns one cell of the table."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        source, target = folder / "image.hex", folder / "out.hex"
        make_file(source, text)
        run = tool.run(source.name, target.name, folder)
        if not run.in_time:
            cell = f"not finished within {TIME_LIMIT} s"
        elif "MemoryError" in run.text or "memory exhausted" in run.text.lower():
            cell = "out of memory"
        elif run.status < 0:
            cell = f"**killed by signal {-run.status}**"
        elif run.status != 0:
            reason = tool.reason(run)
            cell = "refused" + (f": {reason}" if reason else "")
        else:
            cell = describe(load(target)) if target.exists() else "nothing"
            if "warning" in run.text.lower():
                cell += ", warns"
        if text in ("nul", "digits"):
            cell += f" ({run.seconds:.1f} s, {run.mebibytes:.0f} MiB)"
        return cell


def main():
    chosen = tools(pathlib.Path(sys.argv[1]))
    print("| File | " + " | ".join(f"{tool.name} {tool.version()}" for tool in chosen) + " |")
    print("|" + "---|" * (len(chosen) + 1))
    for case, text in files():
        cells = [outcome(tool, case, text) for tool in chosen]
        print(f"| {case} | " + " | ".join(cells) + " |", flush=True)


if __name__ == "__main__":
    main()
