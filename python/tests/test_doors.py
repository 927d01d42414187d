"""The shared cases through Python and the command line: every door of the library answers alike."""

import ctypes
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import generalutilities
from generalutilities.type_information import CLASS, NEW_ENUM, PUT, types
from generalutilities.values import VT_VARIANT

DATA = Path(__file__).parents[2] / "tests/clients/data"
MEMBERS = {one.name: one.interfaces[0].members for one in types().values() if one.kind == CLASS}


def case_table(path):
    """Rows of cells; ⟨D800⟩ is the unit of that number, ␊ a line feed."""
    for line in path.read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("# "):
            yield [re.sub("⟨(.*?)⟩|[␀-␟]", lambda found: chr(
                       int(found[1], 16) if found[1] else ord(found[0]) - 0x2400), cell)
                   for cell in line.split("\t")]


def fail(*_):
    raise generalutilities.Error(0x80004005 - (1 << 32), "", "")


def convert(cell, parameter, member, made):
    """What a cell stands for, as the head of the table says."""
    kind, _, rest = cell.rpartition("}") if cell.startswith("{") else ("", "", cell)
    special = {"{this": lambda: made, "{none": lambda: None,
               "{project": lambda: generalutilities.open_project(rest),
               "{targets": lambda: dict(enumerate(rest.split(" "))),
               "{raise": lambda: generalutilities.comparison(
                   fail, str if member.name == "StringSort" else ctypes.c_int32),
               "{compare": lambda: generalutilities.comparison(
                   lambda a, b: (a > b) - (a < b),
                   str if member.name == "StringSort" else ctypes.c_int32)}.get(kind)
    if special:
        return special()
    if parameter.is_address:
        numbers = [int(word) for word in cell.split(" ")]
        return (ctypes.c_int32 * len(numbers))(*numbers)
    if parameter.python_type == "list[str]":
        return cell.split(" ")
    return {"int": int, "float": float, "bool": "True".__eq__}.get(parameter.python_type, str)(cell)


def shown(part):
    if isinstance(part, (list, dict)) or hasattr(part, "__iter__") and not isinstance(part, str):
        return " ".join(map(shown, part.values() if isinstance(part, dict) else part))
    if isinstance(part, (int, float)) and not isinstance(part, bool) and part == int(part):
        return str(int(part))
    return "" if part is None else str(part)


def answer(made, member, values):
    """What a call gives, as the table has it."""
    try:
        if member.kind == PUT and not member.parameters[1:]:
            setattr(made, member.name, *values)
            given = None
        elif member.kind == PUT:
            getattr(made, member.name)[values[0]] = values[1]
            given = None
        elif member.id == NEW_ENUM:
            given = list(made)
        else:
            found = getattr(made, member.name)
            given = found(*values) if callable(found) else found
    except generalutilities.Error as error:
        told = f"!{error.status & 0xFFFFFFFF:08X}"
        return f"{told} {error.description}" if error.source.endswith(".1") else told
    outputs = [one.vt for one in member.outputs]
    if given is (None if outputs else False) and outputs != [VT_VARIANT]:
        return "∅"
    parts = list(given) if isinstance(given, tuple) else [given]
    parts += [value for value in values if isinstance(value, dict)]
    parts += [list(value) for value in values if isinstance(value, ctypes.Array)
              and member.name == "Sort"]
    return " | ".join(shown(part) for part in parts if outputs or part is not None)


class Doors(unittest.TestCase):
    def test_python_and_the_command_line_answer_as_the_table_says(self):
        made, named = None, {"LongSet._GetSet"}  # which is of use to the library alone
        copies = tempfile.TemporaryDirectory()
        self.addCleanup(copies.cleanup)
        shutil.copytree(DATA, copies.name, dirs_exist_ok=True)
        for row in case_table(DATA / "cases.tsv"):
            class_name, name, expected, command, *cells = [
                cell.replace("{data}", str(DATA)).replace("{copy}", copies.name) for cell in row]
            with self.subTest(row=row):
                if command != "-":
                    line = [re.sub(r"\{(\d)\}", lambda n: cells[int(n[1]) - 1], word)
                            for word in command.split()]
                    told = subprocess.run([os.environ["GENUTIL"], *line], capture_output=True,
                                          encoding="utf-8")
                    if expected.startswith("!"):
                        self.assertIn(expected[10:], told.stderr)
                    elif class_name != "=":
                        self.assertEqual(told.stdout[:-1].replace("\t", " | "), expected)
                if class_name == "=":
                    self.assertEqual(Path(name).read_bytes(), Path(expected).read_bytes())
                    continue
                named.add(f"{class_name}.{name}")
                if made is None or type(made).__name__ != class_name:
                    made = generalutilities.create(class_name)
                member = next(m for m in MEMBERS[class_name]
                              if m.name == name.rstrip("=") and (m.kind == PUT) == ("=" in name))
                given = answer(made, member, [convert(cell, parameter, member, made)
                                              for cell, parameter in zip(cells, member.inputs)])
                self.assertTrue(given == expected or expected == "…", given)
        self.assertEqual(named, {f"{name}.{m.name}{'=' if m.kind == PUT else ''}"
                                 for name, members in MEMBERS.items() for m in members})


if __name__ == "__main__":
    unittest.main()
