#!/usr/bin/env python3
"""Writes the segments of a bilingual ITD document as a table.

    python/examples/itd_to_tsv.py document.itd > segments.tsv

A row has the segment's number, source and target with their codes as {1}, {2} and so on, status,
match value, and comment; tabs and line ends in texts stand as \\t and \\n.
"""

import argparse
import sys

import generalutilities


def segments(document):
    """Moves a document from its first segment to its last."""
    document.EmbeddedCodeID = 1
    document.Restart()
    for number in range(document.SegmentCount):
        yield number + 1
        document.Next()


def cell(value):
    return str(value).replace("\t", "\\t").replace("\r\n", "\\n").replace("\n", "\\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("document")
    with generalutilities.open_document(parser.parse_args().document) as document:
        rows = [("segment", document.SourceLanguage, document.TargetLanguage, "status", "match",
                 "comment")]
        rows += [(number, document.SourceText, document.TargetText, document.Status, document.Score,
                  document.Comment.rstrip()) for number in segments(document)]
    for row in rows:
        sys.stdout.write("\t".join(map(cell, row)) + "\n")


if __name__ == "__main__":
    main()
