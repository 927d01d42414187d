#!/usr/bin/env python3
"""Runs doxygen over the public headers and stops at what has no words.

Every class, enumeration and function outside of classes must have a comment, and no comment may be
wrong. Fields, enumerators and methods may speak for themselves: make_reference.py DOXYGEN DOXYFILE
"""

import re
import subprocess
import sys

MAY_BE_SILENT = re.compile(
    r"\((variable|enumvalue|typedef|friend|macro definition)\)"
    r"|Member .* \((function|enumeration)\) of (class|struct|union) .* is not documented")


def main():
    run = subprocess.run(sys.argv[1:], stderr=subprocess.PIPE, text=True, check=False)
    faults = [line for line in run.stderr.splitlines()
              if ": warning: " in line or ": error: " in line]
    faults = [line for line in faults
              if not ("not documented" in line and MAY_BE_SILENT.search(line))]
    if run.returncode != 0 and not run.stderr:
        faults.append(f"doxygen ended with {run.returncode}")
    print("\n".join(faults), file=sys.stderr, end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
