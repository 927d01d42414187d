#!/usr/bin/env python3
"""Sends a project's rows to a reviewer, and brings the reviewed table home.

    python/examples/review_round_trip.py out  app.project fr.rtf fr-FR
    ... the reviewer edits fr.rtf in a word processor ...
    python/examples/review_round_trip.py home app.project fr.rtf fr-FR

`home` lists what the reviewer changed and what could not be taken; with --accept the project takes it
over. Both go through `generalutilities.genutil`, which keeps what a host owes its user.
"""

import argparse
import sys

from generalutilities import genutil


def show(doing, percent):
    sys.stderr.write(f"\r{doing} {percent} %")
    if percent == 100:
        sys.stderr.write("\n")


def out(project, table, language):
    answer = genutil("export", project, output=table, language=language, status_column=True,
                     status_value=True, progress=show)
    print(f"{answer['rowsWritten']} rows for the reviewer in {table}")


def home(project, table, language, accept):
    report = genutil("import", project, table, language=language, progress=show)
    for row in report["rows"]:
        if row["result"] != "unchanged":
            before = row.get("stored", {}).get("target", "")
            print(f"{row['id']} {row['result']}: {before!r} -> {row['target']!r}")
        for trouble in row.get("codes", ()):
            print(f"{row['id']} codes: {trouble}")
    summary = report["summary"]
    print(f"{summary['rows']} rows came back, {summary['changed']} changed, "
          f"{summary['unknownIds']} not of this project")
    if accept:
        summary = genutil("accept", project, language=language)["summary"]
        print(f"{summary['taken']} rows taken over, {summary['refused']} refused")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("way", choices=["out", "home"])
    parser.add_argument("project")
    parser.add_argument("table")
    parser.add_argument("language")
    parser.add_argument("--accept", action="store_true", help="take the changes over (home)")
    options = parser.parse_args()
    if options.way == "out":
        out(options.project, options.table, options.language)
    else:
        home(options.project, options.table, options.language, options.accept)


if __name__ == "__main__":
    main()
