"""The conditions under which figures were measured."""

import datetime
import os
import platform
import subprocess
from pathlib import Path


def text(source):
    """A sentence for a page: processor, system, date and the commit of the sources in a folder."""
    return (
        f"{processor()}, {os.cpu_count()} cores; {system()};"
        f" {datetime.date.today().isoformat()}; {commit(source)}."
    )


def processor():
    lines = Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines()
    facts = dict(map(str.strip, line.split(":", 1)) for line in lines if ":" in line)
    name = facts.get("model name", platform.machine())
    virtual = "hypervisor" in facts.get("flags", "").split()
    return name + (" in a virtual machine" if virtual else "")


def system():
    """Without the distribution's suffix to the kernel version."""
    return f"{platform.system()} {platform.release().split('-')[0]}"


def commit(source):
    git = ["git", "-C", str(source)]
    try:
        name = subprocess.run(
            [*git, "rev-parse", "--short", "HEAD"], check=True, capture_output=True, text=True
        ).stdout.strip()
        changed = subprocess.run(
            [*git, "status", "--porcelain", "--untracked-files=no"],
            check=True,
            capture_output=True,
            text=True,
        ).stdout
    except (OSError, subprocess.CalledProcessError):
        return "commit not known"
    return f"commit {name}" + (" and changes to it" if changed else "")
