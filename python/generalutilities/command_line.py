"""The command line as a careful host for programs.

Components answer quietly: rows that they cannot place are left out without a word. `genutil` works
beside the final name, prepares a reviewed file, counts what was read against what was stored and
names what is missing; `genutil(...)` here runs it and hands over what it told.
"""

import json
import os
import re
import subprocess
import tempfile
import warnings
from collections.abc import Callable
from typing import Any

from .errors import Error

_PROGRESS = re.compile(r"([\w ]+): (\d+) %")
_FAILURE = re.compile(r"genutil: (.*?)(?:\n  reported by (.*), status 0x([0-9A-F]{8}))?\n*", re.S)


class UsageError(ValueError):
    """Arguments that the command does not have."""


def _options(named):
    for name, value in named.items():
        option = "--" + name.strip("_").replace("_", "-")
        for one in value if isinstance(value, (list, tuple)) else [value]:
            if one is True:
                yield option
            elif one is not None and one is not False:
                yield f"{option}={os.fspath(one) if isinstance(one, os.PathLike) else one}"


def genutil(*arguments: str | os.PathLike[str], progress: Callable[[str, int], object] | None = None,
            **options: Any) -> Any:
    """Runs a command and gives its JSON document.

        genutil("export", "app.project", output="fr.rtf", language="fr-FR", force=True)

    What the command warns of becomes a warning of Python, a failure an `Error`. `progress` is called
    with what is being done and a percent value. The program is that of the environment variable
    GENUTIL, else "genutil" of the search path.
    """
    program = os.environ.get("GENUTIL", "genutil")
    line = [program, *(os.fspath(one) for one in arguments), *_options(options), "--json"]
    if progress is not None:
        line.append("--progress=plain")
    told = []
    with tempfile.TemporaryFile() as answer, subprocess.Popen(
            line, stdin=subprocess.DEVNULL, stdout=answer, stderr=subprocess.PIPE,
            encoding="utf-8", errors="replace") as process:
        try:
            assert process.stderr is not None
            for text in process.stderr:
                step = _PROGRESS.fullmatch(text.rstrip("\n"))
                if step and progress is not None:
                    progress(step[1], int(step[2]))
                else:
                    told.append(text)
        except BaseException:
            process.terminate()  # it takes partial files away
            raise
        code = process.wait()
        answer.seek(0)
        document = answer.read().decode("utf-8")
    words = "".join(told)
    if code not in (0, 1):
        failure = _FAILURE.fullmatch(words)
        description, source, status = failure.groups() if failure else (words, None, None)
        if code == 2:
            raise UsageError(description)
        raise Error(int(status or "80004005", 16) - (1 << 32), description, source or "genutil")
    for text in told:
        if text.startswith("warning: "):
            warnings.warn(text.removeprefix("warning: ").rstrip("\n"), stacklevel=2)
    return json.loads(document)
