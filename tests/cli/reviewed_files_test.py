"""Tables that a real word processor opened, edited and saved (tools/make_reviewed_files.py), each beside
the texts that the reviewer left: from the import to the project, as a user does it."""

import json
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

FILES = Path(os.environ["DATA"]) / "writer"
COLUMNS = ("id", "source", "target", "comments", "status")


def cells(row):
    """What the cells of a row of a report hold; a status that is no number is not reported."""
    return [str(row.get(column, "")) for column in COLUMNS]


def with_paragraphs(text):
    """A text with each of its line ends as a CR LF, as a paragraph comes back."""
    return re.sub("\r\n|\r|\n", "\r\n", text)


class Reviewed:
    """A file, what the reviewer left in it, and a new project to import it into."""

    def __init__(self, file, folder):
        self.file, self.folder = file, folder
        self.expected = json.loads(file.with_suffix(".json").read_text(encoding="utf-8"))
        self.language = "ar-SA" if file.stem == "right-to-left" else "fr-FR"
        self.genutil("project", "create", "a.project", FILES / "project.tsv", "--json")

    def genutil(self, *words):
        """The JSON document that a command prints, and its exit code."""
        ran = subprocess.run(["genutil", *words, "--json"], cwd=self.folder, capture_output=True,
                             encoding="utf-8")
        if ran.returncode > 1:
            raise AssertionError(ran.stderr)
        return json.loads(ran.stdout), ran.returncode

    def reimport(self, *options):
        return self.genutil("import", "a.project", self.file, "-l", self.language, *options)[0]

    def stored(self):
        rows = self.genutil("project", "rows", "a.project", "-l", self.language)[0]["rows"]
        return {row["id"]: row for row in rows}


def for_each_file(test):
    def run(self):
        for file in sorted(FILES.glob("*.rtf")):
            with self.subTest(file=file.stem), tempfile.TemporaryDirectory() as folder:
                test(self, Reviewed(file, folder))
    return run


class ReviewedFiles(unittest.TestCase):
    @for_each_file
    def test_they_are_wrong_as_they_are_only_where_a_reader_cannot_tell(self, reviewed):
        report, expected = reviewed.reimport("--as-is", "--dry-run"), reviewed.expected
        self.assertEqual(report["met"], [])
        left = iter([row for row in expected["rows"] if row[0] not in expected.get("swallowed", ())])
        extra, misread = set(), set()
        for row in report["rows"]:
            if row["id"] in expected["extraRows"] and row["id"] not in extra:
                extra.add(row["id"])
                continue
            wanted = next(left)
            misread |= {(wanted[0], column) for column, cell, want
                        in zip(COLUMNS, cells(row), wanted) if cell != want}
        self.assertEqual(list(left), [])
        self.assertEqual(extra, set(expected["extraRows"]))
        self.assertEqual(misread, set(map(tuple, expected["misread"])))

    @for_each_file
    def test_they_come_home_with_exactly_what_the_reviewer_left(self, reviewed):
        original, wanted, left = reviewed.file.read_bytes(), reviewed.stored(), reviewed.expected["rows"]
        report = reviewed.reimport()
        self.assertEqual([cells(row) for row in report["rows"]], left)
        for row, (identifier, _, target, comments, _) in zip(report["rows"], left):
            # The row ends in the reviewed file where its offset says, also when a copy was read.
            end = row["offset"]
            if reviewed.file.stem.startswith("bilingual"):  # or behind text that was typed there
                self.assertEqual(original[original.rindex(b"<ID", 0, end) + 4:][:3].decode(), identifier)
            else:
                self.assertEqual(original.rindex(b"\\row", 0, end) + 4, end)
            if identifier not in wanted:
                self.assertEqual(row["result"], "unknown-id")
                continue
            before = wanted[identifier]
            is_same = with_paragraphs(target) == with_paragraphs(before["target"])
            self.assertEqual(row["result"], "changed" if not is_same else "unchanged"
                             if target == before["target"] else "line-ends-only")
            self.assertFalse(row["sourceChanged"] or row["statusChanged"])
            self.assertEqual(row["commentsChanged"], comments not in ("", before["comments"]))
            before["target"] = before["target"] if is_same else target
            before["comments"] = comments or before["comments"]
        self.assertEqual(sorted(
            [place["finding"], left[place["row"] - 1][0] if place["row"] <= len(left) else "",
             "" if place["finding"] in ("deleted-row", "damaged-row") else COLUMNS[place["cell"]]]
            for place in report["met"]), sorted(reviewed.expected["met"]))
        accepted = reviewed.genutil("accept", "a.project", "-l", reviewed.language, "--include-locked")
        self.assertEqual(accepted[1], 0)
        self.assertEqual(reviewed.stored(), wanted)  # also the line ends: those alone change nothing


if __name__ == "__main__":
    unittest.main()
