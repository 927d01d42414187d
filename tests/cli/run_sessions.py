#!/usr/bin/env python3
"""Runs a table of command lines, one after the other in a new folder: run_sessions.py TABLE

A row is a command of bash, its exit code, pieces of what it prints on standard output and on standard
error, parted by " … ", and its standard input. A piece behind "¬" is not printed, and one behind "="
is all that is printed. "# " begins a remark; control pictures stand for controls, ⟨2409⟩ for the unit of
that number and ⟨DCFF⟩ for the byte FF, which is no UTF-8. $DATA, $DEMO and $TOOLS are folders of the sources.
"""

import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path


def case_table(path):
    for line in Path(path).read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("# "):
            yield [re.sub("⟨(.*?)⟩|[␀-␟]", lambda found: chr(
                       int(found[1], 16) if found[1] else ord(found[0]) - 0x2400), cell)
                   for cell in line.split("\t")]


def faults(row, ran):
    """What differs from the row."""
    command, code, *expected = row
    if ran.returncode != int(code):
        yield f"exit code {ran.returncode}, not {code}"
    for name, pieces, printed in zip(("output", "error"), expected, (ran.stdout, ran.stderr)):
        for piece in filter(None, pieces.split(" … ")):
            holds = printed == piece[1:] if piece[0] == "=" else piece.removeprefix("¬") in printed
            if holds == piece.startswith("¬"):
                yield f"standard {name} {'has' if holds else 'lacks'} {piece!r}"
        if "\x1b" in printed and "\x1b" not in pieces:
            yield f"standard {name} is coloured"
    if int(code) > 1 and command.startswith("genutil") and not re.search(
            "^genutil: .*(\nTry: |reported by|standard output)", ran.stderr, re.DOTALL | re.MULTILINE):
        yield "not all words of a failure"


def main():
    wrong = 0
    # The thread sanitizer writes a file before `main`, where genutil has not yet said that it bears a
    # limit of file sizes; there it inherits this from Python.
    told_by_itself = os.environ.get("SANITIZE") != "thread"
    for variable in ("ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"):  # unlike any code of genutil
        os.environ[variable] = os.environ.get(variable, "") + ":exitcode=99"
    with tempfile.TemporaryDirectory() as folder:
        for row in case_table(sys.argv[1]):
            row += [""] * (5 - len(row))
            ran = subprocess.run(["bash", "-c", row[0]], cwd=folder, input=row.pop(),
                                 capture_output=True, encoding="utf-8", errors="surrogateescape",
                                 restore_signals=told_by_itself)
            for fault in faults(row, ran):
                wrong += 1
                print(f"$ {row[0]}\n{fault}\n{ran.stdout}{ran.stderr}".encode(
                    "utf-8", "backslashreplace").decode())
    return wrong != 0


if __name__ == "__main__":
    sys.exit(main())
