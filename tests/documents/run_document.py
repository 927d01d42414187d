#!/usr/bin/env python3
"""Tries what a document shows: run_document.py DOCUMENT SOURCES BUILD FOLDER

- A block ```console is run: lines behind "$ " are commands, "> " goes on with one, other lines are
  what it prints, where "..." stands for any lines. A command without output lines may print
  anything. All blocks of a document are one session of bash in FOLDER, which is made anew and has
  the sources and build/release in it.
- <!-- file NAME --> before a block: the block is written to that file before the next command.
- <!-- from PATH --> before a block: the block stands so in that file of the sources.
"""

import difflib
import pathlib
import re
import shutil
import subprocess
import sys
import textwrap

BLOCK = re.compile(r"(?:^<!-- (file|from) (\S+) -->\n)?^```(\w*)[^\n]*\n(.*?)^```$", re.M | re.S)
END = "\x1eend of command "


def commands(block):
    """The commands of a console block, each with the lines that it prints."""
    found = []
    for line in block.splitlines():
        if line.startswith("$ "):
            found.append([line[2:], []])
        elif line.startswith("> ") and not found[-1][1]:
            found[-1][0] += "\n" + line[2:]
        else:
            found[-1][1].append(line)
    return found


def matches(expected, printed):
    pattern = "".join("(?:.*\n)*" if line == "..." else re.escape(line) + "\n" for line in expected)
    return re.fullmatch(pattern, "".join(line + "\n" for line in printed)) is not None


class Session:
    """A shell that runs one command after the other."""

    def __init__(self, folder):
        self.shell = subprocess.Popen(["bash"], cwd=folder, stdin=subprocess.PIPE,
                                      stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def run(self, command):
        self.shell.stdin.write(f"{command}\necho '{END}'$?\n")
        self.shell.stdin.flush()
        printed = []
        for line in self.shell.stdout:
            before, end, status = line.rstrip("\n").partition(END)
            if before or not end:
                printed.append(before)
            if end:
                return int(status), printed
        return -1, printed


def main():
    document, sources, build, folder = (pathlib.Path(argument) for argument in sys.argv[1:])
    shutil.rmtree(folder, ignore_errors=True)
    (folder / "build").mkdir(parents=True)
    (folder / "build/release").symlink_to(build)
    for entry in sources.iterdir():
        if entry.name != "build" and not entry.name.startswith("."):
            (folder / entry.name).symlink_to(entry)
    session, tried, faults = Session(folder), 0, []
    for kind, path, language, block in BLOCK.findall(document.read_text(encoding="utf-8")):
        if kind == "file":
            (folder / path).write_text(block, encoding="utf-8")
        elif kind == "from":
            tried += 1
            lines = [line.strip() for line in (sources / path).read_text("utf-8").splitlines()]
            shown = [line.strip() for line in textwrap.dedent(block).splitlines()]
            if not any(lines[i:i + len(shown)] == shown for i in range(len(lines))):
                faults.append(f"{path} has no such lines:\n{block}")
        elif language == "console":
            for command, expected in commands(block):
                tried += 1
                status, printed = session.run(command)
                if status != 0:
                    faults.append(f"$ {command}\nended with {status}:\n" + "\n".join(printed))
                elif expected and not matches(expected, printed):
                    faults.append(f"$ {command}\n" + "\n".join(
                        difflib.unified_diff(expected, printed, "document", "printed", lineterm="")))
    session.shell.stdin.close()
    session.shell.wait()
    print("\n\n".join(faults + [f"{document.name}: {tried} tried, {len(faults)} wrong"]))
    return 1 if faults or not tried else 0


if __name__ == "__main__":
    sys.exit(main())
