"""The shared cases through Python and the command line: every door of the library answers alike."""

import os
import re
import subprocess
import unittest
from pathlib import Path

import generalutilities
from generalutilities import type_information

DATA = Path(__file__).parents[2] / "tests/clients/data"


def case_table(path):
    """Rows of cells; ⟨D800⟩ is the unit of that number, ␊ a line feed."""
    for line in path.read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("# "):
            yield [re.sub("⟨(.*?)⟩|[␀-␟]", lambda found: chr(
                       int(found[1], 16) if found[1] else ord(found[0]) - 0x2400), cell)
                   for cell in line.split("\t")]


def convert(cell, kind):
    if kind == "list[str]":
        return cell.split(" ")
    return {"int": int, "float": float, "bool": "True".__eq__}.get(kind, str)(
        cell.replace("{data}", str(DATA)))


def shown(answer):
    if isinstance(answer, list):
        return " ".join(answer)
    parts = answer if isinstance(answer, tuple) else ("" if answer is None else answer,)
    return " | ".join(str(int(part) if isinstance(part, int) and not isinstance(part, bool) else
                          int(part) if isinstance(part, float) and part == int(part) else part)
                      for part in parts)


class Doors(unittest.TestCase):
    def test_python_and_the_command_line_answer_as_the_table_says(self):
        made, commands = None, 0
        for class_name, name, expected, command, *cells in case_table(DATA / "cases.tsv"):
            if made is None or type(made).__name__ != class_name:
                made = generalutilities.create(class_name)
            members = type_information.types()[class_name].interfaces[0].members
            member = next(m for m in members if m.name == name)
            values = [convert(cell, p.python_type) for cell, p in zip(cells, member.inputs)]
            if name == "StringSort":
                values += [generalutilities.comparison(lambda a, b: (a > b) - (a < b))]
            with self.subTest(member=f"{class_name}.{name}", values=values):
                found = getattr(made, name)
                self.assertEqual(shown(found(*values) if callable(found) else found), expected)
                if command != "-":
                    commands += 1
                    line = [re.sub(r"\{(\d)\}", lambda n: cells[int(n[1]) - 1], word)
                            for word in command.split()]
                    told = subprocess.run([os.environ["GENUTIL"], *line], capture_output=True,
                                          encoding="utf-8", check=True)
                    self.assertEqual(told.stdout.removesuffix("\n"), expected)
        self.assertGreater(commands, 8)


if __name__ == "__main__":
    unittest.main()
