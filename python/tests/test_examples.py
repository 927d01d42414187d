"""The examples, and the external view from Python."""

import contextlib
import os
import subprocess
import sys
import tempfile
import unittest
import warnings
from pathlib import Path

import generalutilities
from generalutilities import Error, genutil

ROOT = Path(__file__).parents[2]


def example(name, *arguments):
    """What an example prints."""
    return subprocess.run([sys.executable, ROOT / "python/examples" / name, *arguments], check=True,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                          env=os.environ | {"PYTHONIOENCODING": "utf-8"}).stdout.decode()


class Examples(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.project = self.folder / "app.project"
        self.table = self.folder / "fr.rtf"
        genutil("project", "create", self.project, ROOT / "demo/po/fr.po", source="en-US")

    def test_a_corpus_is_folded(self):
        text = self.folder / "text.txt"
        text.write_text("Été été ETE l'Œuvre\nœuvre 12 😀 été\n", encoding="utf-8")
        self.assertEqual(example("fold_corpus.py", "--language", "fr-FR", text),
                         "4\tETE\tETE, Été, été\n2\tŒUVRE\tŒuvre, œuvre\n1\tL'\tl'\n")

    def test_a_document_becomes_a_table(self):
        rows = example("itd_to_tsv.py", ROOT / "tests/clients/data/sample.itd").splitlines()
        self.assertEqual((len(rows), rows[0], rows[2]), (
            8, "segment\ten-US\tde-DE\tstatus\tmatch\tcomment",
            "2\tWelcome to the {1}handbook\tWillkommen im {1}Handbuch\t0\t100.0\t"
            "Ann: Which handbook?\\nBo: The blue one."))

    def test_a_review_goes_out_and_comes_home(self):
        example("review_round_trip.py", "out", self.project, self.table, "fr-FR")
        content = self.table.read_bytes()
        self.table.write_bytes(content.replace(b"Annuler", b"Abandonner", 1)
                               .replace(b"000002", b"999999"))
        self.assertEqual(example("review_round_trip.py", "home", self.project, self.table, "fr-FR",
                                 "--accept").splitlines()[-4:],
                         ["999999 unknown-id: '' -> 'Enregistrer les modifications de %s ?'",
                          "000004 changed: 'Annuler' -> 'Abandonner'",
                          "9 rows came back, 1 changed, 1 not of this project",
                          "1 rows taken over, 0 refused"])

    def export(self, table, project=None, **events):
        """The table as the component writes it."""
        with contextlib.ExitStack() as stack:
            project = project or stack.enter_context(generalutilities.open_project(self.project))
            helper = stack.enter_context(generalutilities.create("ExtViewHelper"))
            for event, function in events.items():
                helper.on(event, function)
            helper.ExportExternalView(project, str(table), 0, 1036, 0x10000, "", *[0] * 9)
        return table.read_bytes()

    def test_python_and_the_command_line_export_the_same_bytes(self):
        steps = []
        written = self.export(self.folder / "python.rtf",
                              ExportProgress=lambda *values: steps.append(values))
        self.assertEqual(steps, sorted(steps))
        self.assertEqual(steps[-1], (100, 1036))
        seen = []
        black = {f"color_{status}": "#000000" for status in (
            "guaranteed", "exact", "fuzzy", "assembled", "propagated", "auto_propagated", "locked",
            "pending", "machine_translated")}
        answer = genutil("export", self.project, output=self.table, language="fr-FR",
                         progress=lambda *step: seen.append(step), **black)
        self.assertEqual((answer["rowsWritten"], answer["exportOptions"]), (9, 0x10000))
        self.assertIn(("exporting", 100), seen)
        self.assertEqual(written, self.table.read_bytes())

    def test_a_sink_that_fails_is_heard_and_harms_nothing(self):
        calls = []

        def fail(percent, language):
            calls.append(percent)
            raise KeyboardInterrupt(f"at {percent}")
        with self.assertRaisesRegex(KeyboardInterrupt, "at "):
            self.export(self.table, ExportProgress=fail)
        self.assertEqual(len(calls), 1)
        self.assertEqual(self.table.read_bytes(), self.export(self.folder / "again.rtf"))
        project = generalutilities.open_project(self.project)
        project.close()
        with self.assertRaisesRegex(generalutilities.ReleasedError, "Project was released"):
            self.export(self.table, project)

    def test_the_command_line_tells_its_failures_and_warnings(self):
        self.table.touch()
        with self.assertRaisesRegex(Error, "genutil: .*exists already.*0x80070050"):
            genutil("export", self.project, output=self.table, language="fr-FR")
        with self.assertRaisesRegex(generalutilities.UsageError, "no known language"):
            genutil("export", self.project, output=self.table, language="xx")
        with warnings.catch_warnings(record=True) as heard:
            warnings.simplefilter("always")
            genutil("export", self.project, output=self.table, language="fr-FR", no_id_column=True,
                    force=True)
        self.assertIn("without identifiers", str(heard[0].message))


if __name__ == "__main__":
    unittest.main()
