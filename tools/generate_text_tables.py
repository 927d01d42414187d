#!/usr/bin/env python3
"""Writes the character tables of src/text/tables.

The tables are data of fixed Unicode versions, so that the keys and comparisons that a project has
stored stay valid whatever the machine's own Unicode version is:

* categories: Unicode 3.2.0, which Python carries (unicodedata.ucd_3_2_0), with script flags;
* case: the runs below, which are the system's own and no version of Unicode;
* accent folds: the decompositions of Unicode 4.0.0, which are those of Debian's unicode-data
  without the characters that DerivedAge.txt says are newer.

All three are two-stage tables: the upper 11 bits of a code unit select a row, the lower 5 bits an
entry of it, and equal rows are kept once. The output depends on the input alone; without arguments
the files are written, with --check they are compared with what would be written.
"""

import argparse
import pathlib
import sys
import unicodedata

ROW_BITS = 5
ROW_SIZE = 1 << ROW_BITS
CODE_UNITS = 0x10000

CATEGORY_NUMBERS = {
    "Cn": 0x00, "Nd": 0x08, "Nl": 0x09, "No": 0x0A,
    "Lu": 0x10, "Ll": 0x11, "Lt": 0x12, "Lm": 0x13, "Lo": 0x14,
    "Mn": 0x18, "Mc": 0x19, "Me": 0x1A,
    "Sm": 0x20, "Sc": 0x21, "Sk": 0x22, "So": 0x23,
    "Pc": 0x28, "Pd": 0x29, "Ps": 0x2A, "Pe": 0x2B, "Pi": 0x2C, "Pf": 0x2D, "Po": 0x2E,
    "Zs": 0x30, "Zl": 0x31, "Zp": 0x32,
    "Cc": 0x38, "Cf": 0x39, "Cs": 0x3A, "Co": 0x3B,
}

# Han, katakana (and marks shared by both kana), hiragana.
SCRIPT_FLAGS = {
    0x80: "3006-3007 3021-3029 3038-303A 3400-4DB5 4E00-9FA5 F900-FA2D FA30-FA6A",
    0x100: "3031-3035 3099-309C 30A1-30FE 31F0-31FF 32D0-32FE FF65-FF9F",
    0x200: "3041-3096 309D-309F 30FF",
}

# "first-last/step offset": what has to be added to a lower case unit to get its capital.
UPPER_CASE_RUNS = """
0061-007A -32; 00E0-00F6 -32; 00F8-00FE -32; 00FF +121; 0101-012F/2 -1; 0133-0137/2 -1;
013A-0148/2 -1; 014B-0177/2 -1; 017A-017E/2 -1; 0183-0185/2 -1; 0188 -1; 018C -1; 0192 -1; 0199 -1;
01A1-01A5/2 -1; 01A8 -1; 01AD -1; 01B0 -1; 01B4-01B6/2 -1; 01B9 -1; 01BD -1; 01C6 -2; 01C9 -2;
01CC -2; 01CE-01DC/2 -1; 01DD -79; 01DF-01EF/2 -1; 01F3 -2; 01F5 -1; 01FB-0217/2 -1; 0253 -210;
0254 -206; 0256-0257 -205; 0259 -202; 025B -203; 0260 -205; 0263 -207; 0268 -209; 0269 -211;
026F -211; 0272 -213; 0275 -214; 0283 -218; 0288 -218; 028A-028B -217; 0292 -219; 03AC -38;
03AD-03AF -37; 03B1-03C1 -32; 03C2 -31; 03C3-03CB -32; 03CC -64; 03CD-03CE -63; 03E3-03EF/2 -1;
0430-044F -32; 0451-045C -80; 045E-045F -80; 0461-0481/2 -1; 0491-04BF/2 -1; 04C2-04C4/2 -1;
04C8 -1; 04CC -1; 04D1-04EB/2 -1; 04EF-04F5/2 -1; 04F9 -1; 0561-0586 -48; 1E01-1E95/2 -1;
1EA1-1EF9/2 -1; 1F00-1F07 +8; 1F10-1F15 +8; 1F20-1F27 +8; 1F30-1F37 +8; 1F40-1F45 +8;
1F51-1F57/2 +8; 1F60-1F67 +8; 1F70-1F71 +74; 1F72-1F75 +86; 1F76-1F77 +100; 1F78-1F79 +128;
1F7A-1F7B +112; 1F7C-1F7D +126; 1FB0-1FB1 +8; 1FD0-1FD1 +8; 1FE0-1FE1 +8; 1FE5 +7; 2170-217F -16;
24D0-24E9 -26; FF41-FF5A -32
"""
FINAL_SIGMA = 0x03C2
GEORGIAN_CAPITALS = range(0x10A0, 0x10C6)
GEORGIAN_OFFSET = 48

# Unicode 4.0.0 decomposed these to syllables; later data decompose them to conjoining jamo.
FOLDS_TO_SYLLABLES = {
    0x321D: [0x0028, 0xC624, 0xC804, 0x0029],
    0x321E: [0x0028, 0xC624, 0xD6C4, 0x0029],
    0x327C: [0xCC38, 0xACE0],
    0x327D: [0xC8FC, 0xC758],
}
FOLD_VERSION = (4, 0)
# No fold holds a surrogate, so an entry in this range is the number of a longer sequence.
FIRST_SEQUENCE_ENTRY = 0xD800
LAST_SEQUENCE_ENTRY = 0xDFFF


def parse_range(text):
    """The code points of "4E00-9FA5", "4E00..9FA5", "0101-012F/2" or "00FF"."""
    ends, _, step = text.partition("/")
    first, _, last = ends.replace("..", "-").partition("-")
    return range(int(first, 16), int(last or first, 16) + 1, int(step or 1))


def category_values():
    values = [CATEGORY_NUMBERS[unicodedata.ucd_3_2_0.category(chr(unit))]
              for unit in range(CODE_UNITS)]
    for flag, ranges in SCRIPT_FLAGS.items():
        for text in ranges.split():
            for unit in parse_range(text):
                assert values[unit] < 0x80, f"U+{unit:04X} has two flags"
                values[unit] |= flag
    assert values[0x4E00] == 0x94 and values[0x3042] == 0x214
    return values


def case_partners():
    """Two dictionaries from a unit to its partner: upper case, lower case."""
    upper = {}
    for run in UPPER_CASE_RUNS.split(";"):
        units, offset = run.split()
        for unit in parse_range(units):
            assert unit not in upper, f"U+{unit:04X} stands in two runs"
            upper[unit] = unit + int(offset)
    lower = {capital: unit for unit, capital in upper.items() if unit != FINAL_SIGMA}
    assert len(lower) == len(upper) - 1, "two units share a capital"
    lower.update((unit, unit + GEORGIAN_OFFSET) for unit in GEORGIAN_CAPITALS)
    assert len(upper) == 636 and len(lower) == 673
    return upper, lower


def case_offsets(partners):
    """What to add to each code unit, modulo 65,536; 0 where a unit has no partner."""
    return [(partners.get(unit, unit) - unit) % CODE_UNITS for unit in range(CODE_UNITS)]


def read_decompositions(folder):
    """The decomposition of each character of the fold version, and the set of all marks."""
    with open(folder / "DerivedAge.txt", encoding="utf-8") as lines:
        fields = [line.partition("#")[0].split(";") for line in lines if not line.startswith("#")]
    ages = {code: tuple(map(int, row[1].strip().split(".")))
            for row in fields if len(row) == 2 for code in parse_range(row[0].strip())}
    decompositions, marks = {}, set()
    with open(folder / "UnicodeData.txt", encoding="utf-8") as lines:
        for line in lines:
            row = line.split(";")
            code = int(row[0], 16)
            if row[2].startswith("M"):
                marks.add(code)
            parts = [int(part, 16) for part in row[5].split() if not part.startswith("<")]
            if parts and ages[code] <= FOLD_VERSION:
                decompositions[code] = parts
    assert decompositions.keys() >= FOLDS_TO_SYLLABLES.keys()
    decompositions.update(FOLDS_TO_SYLLABLES)
    return decompositions, marks


def accent_folds(folder):
    """A dictionary from a unit to the list of units that it folds to."""
    decompositions, marks = read_decompositions(folder)

    def fold(code):
        parts = decompositions[code]
        plain = [part for part in parts if part not in decompositions and part not in marks]
        return plain + [unit for part in parts if part in decompositions for unit in fold(part)]

    folds = {code: fold(code) for code in sorted(decompositions) if code < CODE_UNITS}
    folds = {code: units for code, units in folds.items() if units}
    values = {unit for units in folds.values() for unit in units}
    assert len(folds) == 3637 and max(map(len, folds.values())) == 18
    assert max(values) < CODE_UNITS and 0 not in values, "0 stands for no entry"
    assert not any(FIRST_SEQUENCE_ENTRY <= unit <= LAST_SEQUENCE_ENTRY for unit in values)
    assert 0xDF not in values, "sharp s comes from the input only"
    assert not values & folds.keys(), "a fold would have to be folded again"
    return folds


def fold_entries(folds):
    """The entry of each code unit, the pool of longer sequences, and their starts in the pool."""
    numbers = {}
    for units in folds.values():
        if len(units) > 1:
            numbers.setdefault(tuple(units), FIRST_SEQUENCE_ENTRY + len(numbers))
    assert FIRST_SEQUENCE_ENTRY + len(numbers) <= LAST_SEQUENCE_ENTRY + 1
    entries = [0] * CODE_UNITS
    for code, units in folds.items():
        entries[code] = units[0] if len(units) == 1 else numbers[tuple(units)]
    pool, starts = [], [0]
    for units in numbers:
        pool.extend(units)
        starts.append(len(pool))
    return entries, pool, starts


def render_array(bits, name, values):
    """One constant array, as many values a line as fit into 100 columns."""
    digits = bits // 4
    per_line = (100 - 4) // (digits + 4)
    lines = [f"inline constexpr std::array<std::uint{bits}_t, {len(values)}> {name} = {{{{"]
    for at in range(0, len(values), per_line):
        row = ", ".join(f"0x{value:0{digits}X}" for value in values[at:at + per_line])
        lines.append(f"    {row},")
    return "\n".join(lines + ["}};", ""])


def render_two_stage(name, values):
    """The arrays <name>Index and <name>Rows of a two-stage table."""
    rows, index = {}, []
    for first in range(0, CODE_UNITS, ROW_SIZE):
        index.append(rows.setdefault(tuple(values[first:first + ROW_SIZE]), len(rows)))
    assert len(rows) <= 256, f"{name}: the index no longer fits into bytes"
    entries = [value for row in rows for value in row]
    for unit in range(CODE_UNITS):
        assert entries[index[unit >> ROW_BITS] * ROW_SIZE + unit % ROW_SIZE] == values[unit]
    return [render_array(8, name + "Index", index), render_array(16, name + "Rows", entries)]


def render_file(arrays):
    head = ["// Made by tools/generate_text_tables.py; char_tables.h says what an entry means.",
            "#pragma once", "", "#include <array>", "#include <cstdint>", "",
            "namespace generalutilities::tables {", ""]
    return "\n".join(head + arrays + ["}  // namespace generalutilities::tables", ""])


def render_all(unicode_data):
    upper, lower = case_partners()
    entries, pool, starts = fold_entries(accent_folds(unicode_data))
    return {
        "char_category.h": render_file(render_two_stage("CharCategory", category_values())),
        "case.h": render_file(render_two_stage("UpperCase", case_offsets(upper)) +
                              render_two_stage("LowerCase", case_offsets(lower))),
        "accent_fold.h": render_file(render_two_stage("AccentFold", entries) +
                                     [render_array(16, "AccentFoldStarts", starts),
                                      render_array(16, "AccentFoldPool", pool)]),
    }


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("--check", action="store_true", help="compare only; fail on a difference")
    parser.add_argument("--unicode-data", type=pathlib.Path, metavar="FOLDER",
                        default=pathlib.Path("/usr/share/unicode"),
                        help="folder of UnicodeData.txt and DerivedAge.txt (%(default)s)")
    arguments = parser.parse_args()
    stale = []
    for name, text in render_all(arguments.unicode_data).items():
        path = root / "src" / "text" / "tables" / name
        if not arguments.check:
            path.write_text(text, encoding="ascii", newline="\n")
        elif not path.exists() or path.read_bytes() != text.encode("ascii"):
            stale.append(str(path.relative_to(root)))
    if stale:
        sys.exit(f"not what this generator writes: {', '.join(stale)}; run it without --check")


if __name__ == "__main__":
    main()
