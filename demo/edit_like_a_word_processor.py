#!/usr/bin/env python3
"""Plays the reviewer and the word processor: exported table in, reviewed table out.

A word processor does not keep the file that it opened. It writes the document anew in its own way,
and that is what an import has to cope with. This script reads the table, applies a reviewer's edits
and writes it again like this:

- fonts with character sets of their own, which decide what the bytes of \\'hh stand for, whatever
  the document's code page says;
- characters as \\'hh in that character set, as \\u with a fallback of one or two bytes, and as
  control words such as \\rquote;
- each cell cut into many groups with formatting, bookmarks and revision marks of no meaning here;
- the definition of a row again behind its cells, and line breaks wherever a line gets long.

Usage: edit_like_a_word_processor.py EXPORTED.rtf REVIEWED.rtf LANGUAGE
"""

import re
import sys
from dataclasses import dataclass

LOCKED = 0x200
COLUMNS = 5  # identifier, source, target, comments, status


@dataclass
class Language:
    langid: int
    charset: int
    codec: str  # of the character set; empty where none has the script
    kind: str  # "ltr", "rtl" or "asian": where the font stands in the formatting of a run
    remark: str  # what the reviewer adds to a translation
    comment: str


LANGUAGES = {
    "fr": Language(1036, 0, "cp1252", "ltr", " (révisé)", "À vérifier : l’usage a changé."),
    "de": Language(1031, 0, "cp1252", "ltr", " (geprüft)", "Bitte „prüfen“ – größere Änderung."),
    "ru": Language(1049, 204, "cp1251", "ltr", " (проверено)", "Проверьте, пожалуйста."),
    "el": Language(1032, 161, "cp1253", "ltr", " (ελεγμένο)", "Παρακαλώ ελέγξτε τον όρο."),
    "ar": Language(1025, 178, "cp1256", "rtl", " (تمت المراجعة)", "يرجى التحقق من المصطلح."),
    "he": Language(1037, 177, "cp1255", "rtl", " (נבדק)", "נא לבדוק את המונח."),
    "ja": Language(1041, 128, "cp932", "asian", "（確認済み）", "用語を確認してください。"),
    "zh": Language(2052, 134, "gbk", "asian", "（已审校）", "请核对术语。"),
    "hi": Language(1081, 0, "", "ltr", " (जाँचा गया)", "कृपया शब्द जाँचें।"),
    "th": Language(1054, 222, "cp874", "ltr", " (ตรวจแล้ว)", "โปรดตรวจสอบคำศัพท์"),
}

# --- reading -------------------------------------------------------------------------------------

TOKEN = re.compile(
    r"\\([a-z]+)(-?\d+)? ?|\\'([0-9a-fA-F]{2})|\\([^a-z'])|([{}])|([^\\{}\r\n]+)|[\r\n]+", re.ASCII
)
CHARACTER_WORDS = {"par": "\n", "tab": "\t"}


def read_table(path):
    """The cells of each row of an exported table."""
    with open(path, encoding="latin-1", newline="") as file:
        data = file.read()
    units = {"cell": [], "row": []}  # UTF-16 units of the open cell; cells of the open row
    rows = []
    body = data.index("\\pard", data.index("{\\info"))
    skip = 0  # characters of a \u fallback still to be dropped
    fallback = [1]
    for match in TOKEN.finditer(data, body):
        word, argument, byte, symbol, brace, plain = match.groups()
        if brace == "{":
            fallback.append(fallback[-1])
        elif brace == "}":
            fallback.pop() if len(fallback) > 1 else None
        elif word == "uc":
            fallback[-1] = int(argument)
        elif word == "u":
            units["cell"].append(int(argument) & 0xFFFF)
            skip = fallback[-1]
        elif word in CHARACTER_WORDS:
            units["cell"].append(ord(CHARACTER_WORDS[word]))
        elif word == "cell":
            cell = b"".join(unit.to_bytes(2, "little") for unit in units["cell"])
            units["row"].append(cell.decode("utf-16-le", "surrogatepass"))
            units["cell"] = []
        elif word == "row":
            rows.append(units["row"])
            units["row"], units["cell"] = [], []
        else:
            for character in bytes.fromhex(byte).decode("cp1252") if byte else symbol or plain or "":
                if skip:
                    skip -= 1
                else:
                    units["cell"].append(ord(character))
    return rows


# --- the reviewer --------------------------------------------------------------------------------


def is_locked(row):
    return row[4].strip().isdigit() and int(row[4]) & LOCKED


def review(rows, language):
    """Applies the edits to the rows (without the heading) and tells them."""
    done = []
    free = [row for row in rows if not is_locked(row)]
    plain = [row for row in free if "{" not in row[1] and row[2]]

    plain[0][2] += language.remark
    done.append(f"changed the translation of row {plain[0][0]}")
    plain[1][3] = language.comment
    done.append(f"commented on row {plain[1][0]}")
    plain[2][2] = plain[2][2].rstrip(".。।") + language.remark
    plain[2][3] = language.comment
    done.append(f"changed and commented on row {plain[2][0]}")
    rows.remove(plain[3])
    done.append(f"deleted row {plain[3][0]}")

    with_codes = [row for row in free if re.search(r"\{\d+\}", row[2])]
    lost = re.findall(r"\{\d+\}", with_codes[-1][2])[-1]
    with_codes[-1][2] = with_codes[-1][2].replace(lost, "", 1)
    done.append(f"lost the code {lost} of row {with_codes[-1][0]}")

    locked = [row for row in rows if is_locked(row)]
    if locked:
        locked[0][2] += language.remark
        done.append(f"changed row {locked[0][0]}, which is locked")
    for row in free:
        if not row[2] and row in rows:
            row[2] = language.comment
            done.append(f"translated row {row[0]}, which was open")
            break
    rows.append(["no-such-row", "A row that the reviewer typed in.", language.remark, "", "0"])
    done.append("typed in a row with an identifier of their own")
    return done


# --- the word processor --------------------------------------------------------------------------

CONTROL_WORDS = {
    "\n": "\\par ",
    "\t": "\\tab ",
    "\u2018": "\\lquote ",
    "\u2019": "\\rquote ",
    "\u201c": "\\ldblquote ",
    "\u201d": "\\rdblquote ",
    "\u2013": "\\endash ",
    "\u00a0": "\\~",
}
LATIN_FONT, SCRIPT_FONT = 0, 37


def encode_character(character, codec, as_unicode):
    """One character in one of the forms that a word processor uses."""
    if character in "\\{}":
        return "\\" + character
    if " " <= character <= "~":
        return character
    if character in CONTROL_WORDS:
        return CONTROL_WORDS[character]
    try:
        encoded = character.encode(codec) if codec else b""
    except UnicodeEncodeError:
        encoded = b""
    as_bytes = "".join(f"\\'{byte:02x}" for byte in encoded)
    if encoded and not as_unicode:
        return as_bytes
    units = character.encode("utf-16-le", "surrogatepass")
    result = ""
    for i in range(0, len(units), 2):
        unit = int.from_bytes(units[i : i + 2], "little", signed=False)
        signed = unit - 0x10000 if unit > 0x7FFF else unit
        result += f"\\uc{max(len(encoded), 1)}\\u{signed}" + (as_bytes or "?")
    return result


def run_formatting(language, revision):
    """The formatting in front of a run; the font that counts stands last."""
    font, lang = SCRIPT_FONT, language.langid
    if language.kind == "rtl":
        return f"\\ltrch\\fcs0 \\f0\\fs18 \\rtlch\\fcs1 \\af{font}\\afs18\\lang{lang}\\insrsid{revision} "
    if language.kind == "asian":
        return (
            f"\\rtlch\\fcs1 \\af0\\afs18 \\ltrch\\fcs0 \\fs18\\langfe{lang}\\insrsid{revision} "
            f"\\loch\\af0\\hich\\af0\\dbch\\f{font} "
        )
    return f"\\rtlch\\fcs1 \\af0\\afs18 \\ltrch\\fcs0 \\f{font}\\fs18\\lang{lang}\\insrsid{revision} "


def write_cell(text, language, revision):
    """A cell cut into groups of a few words each; every third one prefers \\u."""
    latin = Language(1033, 0, "cp1252", "ltr", "", "")
    parts = re.findall(r"\S*\s*\S*\s*|\S+", text)
    result = []
    for number, part in enumerate(part for part in parts if part):
        written = language if not part.isascii() else latin
        body = "".join(encode_character(c, written.codec, number % 3 == 2) for c in part)
        result.append("{" + run_formatting(written, revision + number % 2) + body + "}")
        if number == 1:
            result.append("{\\*\\bkmkstart _GoBack}{\\*\\bkmkend _GoBack}")
    result.append("{\\rtlch\\fcs1 \\af0 \\ltrch\\fcs0 \\insrsid" + str(revision) + " \\cell }")
    return "\r\n".join(result)


def row_definition(number):
    border = "".join(f"\\clbrdr{side}\\brdrs\\brdrw10 " for side in "tlbr")
    cells = "".join(
        f"\\clvertalt{border}\\cltxlrtb\\clftsWidth3\\clwWidth1800 \\cellx{1800 * (i + 1)}"
        for i in range(COLUMNS)
    )
    return (
        f"\\trowd \\irow{number}\\irowband{number}\\ltrrow\\ts11\\trgaph108\\trleft-108"
        f"\\trkeep\\trftsWidth1\\trpaddl108\\trpaddr108\\trpaddfl3\\trpaddfr3 {cells}"
    )


def write_row(number, row, language):
    direction = "\\rtlpar\\qr" if language.kind == "rtl" else "\\ltrpar\\ql"
    cells = "".join(
        f"\\pard\\plain {direction} \\li0\\ri0\\widctlpar\\intbl\\wrapdefault\\faauto "
        f"{write_cell(cell, language, 7210000 + number)}\r\n"
        for cell in row
    )
    definition = row_definition(number)
    return f"{definition}{cells}\\pard \\ltrpar\\ql \\intbl {{\\rtlch\\fcs1 \\af0 {definition}\\row }}\r\n"


def write_document(path, rows, language):
    head = (
        "{\\rtf1\\adeflang1025\\ansi\\ansicpg1252\\uc1\\adeff0\\deff0\\stshfdbch0\\deflang1033\r\n"
        "{\\fonttbl{\\f0\\fbidi \\froman\\fcharset0\\fprq2{\\*\\panose 02020603050405020304}"
        "Times New Roman;}\r\n"
        f"{{\\f{SCRIPT_FONT}\\fbidi \\fswiss\\fcharset{language.charset}\\fprq2 Tahoma;}}"
        "{\\f38\\fbidi \\fswiss\\fcharset238\\fprq2 Tahoma CE;}}\r\n"
        "{\\colortbl;\\red0\\green0\\blue0;\\red255\\green255\\blue255;}\r\n"
        "{\\stylesheet{\\ql \\li0\\ri0\\widctlpar \\rtlch\\fcs1 \\af0 \\ltrch\\fcs0 \\fs24 "
        "\\snext0 \\sqformat Normal;}{\\*\\cs10 \\additive Default Paragraph Font;}\r\n"
        "{\\*\\ts11\\tsrowd\\trftsWidthB3 Normal Table;}}\r\n"
        "{\\*\\rsidtbl \\rsid7210000\\rsid7210001}{\\*\\generator A word processor;}\r\n"
        "{\\info{\\title External View}{\\author Reviewer}{\\revtim\\yr2024\\mo5\\dy17}}\r\n"
        "\\paperw11906\\paperh16838\\viewkind4 \r\n"
    )
    body = "".join(write_row(number, row, language) for number, row in enumerate(rows))
    tail = "\\pard\\plain \\ltrpar\\ql {\\rtlch\\fcs1 \\af0 \\insrsid7210000 \\par }}\r\n"
    with open(path, "w", encoding="ascii", newline="") as file:
        file.write(head + body + tail)


def main():
    if len(sys.argv) != 4 or sys.argv[3].split("-")[0] not in LANGUAGES:
        sys.exit(__doc__)
    language = LANGUAGES[sys.argv[3].split("-")[0]]
    heading, *rows = read_table(sys.argv[1])
    if len(heading) != COLUMNS or len(rows) < 8:
        sys.exit(f"{sys.argv[1]}: expected a table of {COLUMNS} columns and 8 rows or more")
    done = review(rows, language)
    write_document(sys.argv[2], [heading, *rows], language)
    for edit in done:
        print("  " + edit)


if __name__ == "__main__":
    main()
