#!/usr/bin/python3
"""Makes the reviewed files of tests/cli/data/writer anew, with a real word processor.

A table or a bilingual document that genutil exports is opened in LibreOffice Writer, edited as a reviewer would and saved
as RTF: one file an oddity, and one with all of them. Beside each NAME.rtf stands NAME.json with what
this script typed:

    rows       each row that the reviewer left, in order: identifier, source, target, comments, status;
               a paragraph break is CR LF, a line break LF
    misread    cells that the reader gets wrong without a preparation: [identifier, cell]
    extraRows  identifiers of rows that it then reads although the reviewer deleted them
    met        what the preparation meets: [finding, identifier, cell]
    swallowed  identifiers of segments that become part of the one before without a preparation

Needs LibreOffice and its Python bridge, which neither the build nor the tests need:

    apt-get install libreoffice-writer-nogui python3-uno
    tools/make_reviewed_files.py BUILD_FOLDER [NAME...]

Run by the system's own python3, for which python3-uno is made. The files differ from run to run in
the dates that the word processor writes. The tests hold for LibreOffice 7.4.
"""

import base64
import csv
import json
import os
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import uno
from com.sun.star.awt.FontSlant import ITALIC
from com.sun.star.beans import PropertyValue
from com.sun.star.connection import NoConnectException
from com.sun.star.style.ParagraphAdjust import CENTER
from com.sun.star.text.ControlCharacter import HARD_HYPHEN, LINE_BREAK, PARAGRAPH_BREAK, SOFT_HYPHEN
from com.sun.star.text.TextContentAnchorType import AS_CHARACTER, AT_PARAGRAPH

OUT = Path(__file__).resolve().parent.parent / "tests" / "cli" / "data" / "writer"
COLUMNS = ("id", "source", "target", "comments", "status")
LINE_END = re.compile("\r\n|\r|\n")
PIXEL = base64.b64decode(
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg=="
)

# --- the project ---------------------------------------------------------------------------------


def project_rows():
    """The rows of the sample project: a small file for one oddity, a large one for all."""
    small = [
        ("Open the file.", "Ouvrez le fichier.", "افتح الملف.", "", ""),
        ("Press {1}Save{2} now.", "Appuyez sur {1}Enregistrer{2}.", "اضغط {1}حفظ{2} الآن.", "Voir 12.", ""),
        ("Two lines:\none\ntwo", "Deux lignes :\nune\ndeux", "سطران:\nواحد\nاثنان", "", ""),
        ("Locked text\r\nwith a line end.", "Texte verrouillé\r\navec une fin de ligne.", "نص مقفل", "", "locked"),
        ("Name:\tvalue", "Nom :\tvaleur\rsuite", "الاسم:\tالقيمة", "", ""),
    ]
    for number, (source, french, arabic, comment, status) in enumerate(small, 1):
        yield f"s{number:02}", "small.txt", source, french, arabic, comment, status
    for number in range(1, 41):
        yield f"a{number:02}", "all.txt", f"Sentence {number}.", f"Phrase {number}.", f"جملة {number}.", "", ""


def write_project(path):
    with open(path, "w", encoding="utf-8", newline="") as file:
        table = csv.writer(file, "excel-tab", lineterminator="\n", quoting=csv.QUOTE_ALL)
        table.writerow(
            ["id", "file", "source", "target:fr-FR", "target:ar-SA", "comment:fr-FR", "status:fr-FR"]
        )
        table.writerows(project_rows())


# --- the reviewer --------------------------------------------------------------------------------


class Review:
    """An open table, and beside it what its cells hold after every edit."""

    def __init__(self, writer, document, language, file):
        self.writer = writer
        self.document = document
        self.table = document and document.TextTables.getByIndex(0)
        self.rows = []
        self.deleted = set()  # identifiers of rows that tracked changes delete
        self.misread = []
        self.met = []
        for identifier, of_file, source, french, arabic, comment, status in project_rows():
            if of_file == file:
                row = [identifier, source, french, comment, "512" if status else "0"]
                if language != "fr-FR":
                    row[2:] = [arabic, "", "0"]
                self.rows.append(["\r\n".join(LINE_END.split(text)) for text in row])

    def cell(self, row, column):
        return self.table.getCellByPosition(COLUMNS.index(column), row + 1)

    def cursor(self, row, column, start=0, length=0):
        """A selection in a cell, by the units of its text; breaks count as one."""
        cursor = self.cell(row, column).createTextCursor()
        cursor.gotoStart(False)
        cursor.goRight(start, False)
        cursor.goRight(length, True)
        return cursor

    def end(self, row, column):
        cursor = self.cell(row, column).createTextCursor()
        cursor.gotoEnd(False)
        return cursor

    def left(self, row, column, text):
        """Notes what a cell holds now."""
        self.rows[row][COLUMNS.index(column)] = text

    def append(self, row, column, text):
        """Adds text as it is typed: CR LF begins a paragraph, LF a line."""
        cell = self.cell(row, column)
        for paragraph, lines in enumerate(text.split("\r\n")):
            if paragraph:
                cell.insertControlCharacter(self.end(row, column), PARAGRAPH_BREAK, False)
            for line, part in enumerate(lines.split("\n")):
                if line:
                    cell.insertControlCharacter(self.end(row, column), LINE_BREAK, False)
                cell.insertString(self.end(row, column), part, False)

    def type(self, row, column, text):
        self.cell(row, column).String = ""
        self.append(row, column, text)
        self.left(row, column, text)

    def delete(self, row, column, start, length):
        self.cursor(row, column, start, length).String = ""

    def track(self, on):
        self.document.RecordChanges = on

    def meets(self, row, column, *findings, misread=True):
        identifier = self.rows[row][0]
        self.met += [[finding, identifier, column] for finding in findings]
        if misread:
            self.misread.append([identifier, column])

    def insert(self, row, column, service, **properties):
        """Inserts something that is no text at the end of a cell."""
        content = self.document.createInstance("com.sun.star.text." + service)
        for name, value in properties.items():
            setattr(content, name, value)
        self.cell(row, column).insertTextContent(self.end(row, column), content, False)
        return content

    def command(self, name, row):
        """A command of the menu, with the cursor in a row."""
        controller = self.document.CurrentController
        controller.ViewCursor.gotoRange(self.cursor(row, "id"), False)
        self.writer.dispatcher.executeDispatch(controller.Frame, ".uno:" + name, "", 0, ())

    def expectations(self):
        return {
            "rows": [row for row in self.rows if row[0] not in self.deleted],
            "misread": self.misread,
            "extraRows": sorted(self.deleted),
            "met": self.met,
        }


def untouched(review, row):
    """Opened and saved."""


def quotes(review, row):
    review.type(row, "target", "“Curly” ‘quotes’, it’s „low“ and «far» – or — so… 100 €")
    review.type(row, "comments", "‘’“”‚„‹›«»")


SCRIPTS = [
    "Latin : cœur, naïveté, Ångström, łódź, İstanbul, Việt Nam",
    "Ελληνικά: ἄνθρωπος, λόγος;",
    "Русский текст, їжак, ћуприја",
    "עברית עם נִקּוּד (1) ועוד",
    "العربية: كِتَاب (٢) و English معًا",
    "हिन्दी: क्षत्रिय, श्री, १२३",
    "ภาษาไทย: น้ำ กำลัง ๑๒๓",
    "日本語：漢字、カタカナ、ひらがな「引用」、𠮷野家",
    "한국어: 한글, 각, 값",
]


def scripts(review, row):
    for number, text in enumerate(SCRIPTS):
        review.type(row + number // 2, ("target", "comments")[number % 2], text)


def emoji(review, row):
    review.type(row, "target", "🙂 👩‍👩‍👧 🏳️‍🌈 ©️ 𝒳𝒴 1️⃣")
    review.type(row, "comments", "👍🏽")


def breaks(review, row):
    review.type(row, "target", "one\r\ntwo\nthree\r\n\r\nfour")
    review.type(row, "comments", "\r\nfirst is empty\n\nlast, too\r\n")


def tabs(review, row):
    review.type(row, "target", "\ta\tb\t\tc\t")


def emptied(review, row):
    review.type(row, "target", "")


def comment(review, row):
    review.type(row, "comments", "Est-ce « fichier » ou « dossier » ?")


def moved_rows(review, row):
    """The first row goes behind the third."""
    review.table.Rows.insertByIndex(row + 4, 1)
    moved = review.rows[row]
    review.rows.insert(row + 3, [""] * len(COLUMNS))
    for column, text in zip(COLUMNS, moved):
        review.type(row + 3, column, text)
    deleted_rows(review, row)


def added_rows(review, row):
    review.table.Rows.insertByIndex(row + 1, 2)
    for number, identifier in enumerate(("", "my-own")):
        review.rows.insert(row + number, [""] * len(COLUMNS))
        review.type(row + number, "id", identifier)
        review.type(row + number, "source", "A row of mine.")
        review.type(row + number, "target", "Une ligne à moi.")


def deleted_rows(review, row):
    review.table.Rows.removeByIndex(row + 1, 1)
    del review.rows[row]


def text_around(review, row):
    text = review.document.Text
    before = review.document.createInstance("com.sun.star.text.Paragraph")
    text.insertTextContentBefore(before, review.table)
    text.insertString(text.Start, "Avant le tableau : « merci ».", False)
    text.insertString(text.End, "Après le tableau.", False)
    style = review.document.StyleFamilies.getByName("PageStyles").getByIndex(0)
    style.HeaderIsOn = True
    style.HeaderText.setString("Haut de page")
    style.FooterIsOn = True
    style.FooterText.setString("Bas de page")


def formatting(review, row):
    review.type(row, "target", "gras italique grand exposant rouge barré centré")
    for start, name, value in (
        (0, "CharWeight", 150.0),
        (2, "CharPosture", ITALIC),
        (14, "CharHeight", 24.0),
        (20, "CharEscapement", 33),
        (29, "CharColor", 0xC00000),
        (35, "CharStrikeout", 1),
        (38, "CharFontName", "DejaVu Serif"),
        (41, "ParaAdjust", CENTER),
    ):
        setattr(review.cursor(row, "target", start, 4), name, value)


def hyperlink(review, row):
    review.type(row, "target", "Voir la page d’aide ici.")
    review.cursor(row, "target", 8, 11).HyperLinkURL = "https://example.org/a?b=%7B1%7D"
    review.insert(row, "target", "Bookmark", Name="mark")


def picture(review, row):
    review.type(row, "target", "avant ")
    graphic = review.writer.graphic(PIXEL)
    review.insert(row, "target", "TextGraphicObject", Graphic=graphic, AnchorType=AS_CHARACTER)
    review.append(row, "target", " après")
    review.left(row, "target", "avant  après")
    review.meets(row, "target", "fallback-picture")


def lists(review, row):
    for column, style in (("target", "Numbering 123"), ("comments", "List 1")):
        review.type(row, column, "pommes\r\npoires")
        cursor = review.cell(row, column).createTextCursor()
        cursor.gotoEnd(True)
        cursor.NumberingStyleName = style
        review.meets(row, column, "list-label", "list-label")


def notes(review, row):
    review.type(row, "target", "Avec note")
    review.insert(row, "target", "Footnote").setString("Au pied, « noté ».")
    review.append(row, "target", " et fin")
    review.insert(row, "target", "Endnote").setString("À la fin.")
    review.append(row, "target", ".")
    review.left(row, "target", "Avec note et fin.")
    review.meets(row, "target", "footnote", "footnote", misread=False)


def text_boxes(review, row):
    review.type(row, "target", "Avec boîte")
    for anchor in (AS_CHARACTER, AT_PARAGRAPH):
        box = review.insert(row, "target", "TextFrame", AnchorType=anchor)
        box.setString("Dans la boîte, « noté ».")
    review.append(row, "target", " et fin.")
    review.left(row, "target", "Avec boîte et fin.")
    review.meets(row, "target", "drawing", "drawing", misread=False)


def hyphens(review, row):
    review.type(row, "target", "Donau\u00addampf\u2011schiff -\u2010\u2012")
    for character in (SOFT_HYPHEN, HARD_HYPHEN):
        review.cell(row, "target").insertControlCharacter(review.end(row, "target"), character, False)
    review.left(row, "target", "Donau\u00addampf\u2011schiff -\u2010\u2012\u00ad\u2011")
    review.meets(row, "target", *("soft-hyphen", "non-breaking-hyphen") * 2)


def spaces(review, row):
    review.type(row, "target", " a\u00a0b\u202fc\u2009d\u2002e\u2003f\u200bg\u200ch\u200di\u2060j\ufeffk\u200el\u200fm  n ")


def tracked_insertions(review, row):
    text = review.rows[row][2]
    review.track(True)
    review.cell(row, "target").insertString(review.cursor(row, "target", 6), " « ajouté »", False)
    review.append(row, "target", "\r\n2ᵉ ligne")
    review.track(False)
    review.left(row, "target", text[:6] + " « ajouté »" + text[6:] + "\r\n2ᵉ ligne")
    review.meets(row, "target", "inserted-text", "inserted-text", misread=False)


def tracked_deletions(review, row):
    """Within a word, special characters, a whole cell, a replacement, and the next row's text."""
    review.type(row, "target", "un “deux”\ttrois\n🙂 日本\u00adquatre\u2011cinq")
    review.track(True)
    review.delete(row, "target", 3, 25)
    review.track(False)
    review.left(row, "target", "un cinq")
    review.meets(row, "target", "deleted-text")

    review.type(row, "comments", "oui non")
    review.track(True)
    review.delete(row, "comments", 0, 7)
    review.track(False)
    review.left(row, "comments", "")
    review.meets(row, "comments", "deleted-text")

    review.type(row + 1, "target", "le mot faux est là")
    review.track(True)
    review.delete(row + 1, "target", 7, 4)
    review.cell(row + 1, "target").insertString(review.cursor(row + 1, "target", 7), "juste", False)
    review.track(False)
    review.left(row + 1, "target", "le mot juste est là")
    review.meets(row + 1, "target", "inserted-text", "deleted-text")

    review.type(row + 1, "comments", "avec un lien")
    review.cursor(row + 1, "comments", 5, 2).CharWeight = 150.0
    review.cursor(row + 1, "comments", 8, 4).HyperLinkURL = "https://example.org/"
    review.track(True)
    review.delete(row + 1, "comments", 3, 9)
    review.track(False)
    review.left(row + 1, "comments", "ave")
    review.meets(row + 1, "comments", "deleted-text")


def tracked_breaks(review, row):
    """Paragraph breaks, alone and with text before and behind them."""
    for number, (column, text, start, length, left, finding) in enumerate(
        (
            ("target", "abc\r\ndef", 3, 1, "abcdef", "deleted-text"),
            ("comments", "abc\r\n\r\ndef", 4, 1, "abc\r\ndef", "deleted-text"),
            ("target", "abc\r\ndef", 3, 3, "abcf", "deleted-text"),
            ("comments", "abc\r\ndef", 2, 3, "abef", "deleted-text"),
            ("target", "abc\r\ndef\r\nghi", 1, 8, "ahi", "deleted-text"),
            # The word processor does not write down that this break is deleted.
            ("comments", "abc\r\ndef", 2, 2, "ab\r\ndef", "kept-break"),
        )
    ):
        at = row + number // 2
        review.type(at, column, text)
        review.track(True)
        review.delete(at, column, start, length)
        review.track(False)
        review.left(at, column, left)
        review.meets(at, column, *{"deleted-text", finding})


def tracked_rows(review, row):
    """A row is deleted while changes are tracked."""
    review.track(True)
    review.command("DeleteRows", row)
    review.track(False)
    review.deleted.add(review.rows[row][0])
    following = review.rows[row + 1][0]  # the copy has this row in its place
    review.met.append(["deleted-row", following, ""])
    review.met += [
        ["deleted-text", following, column] for column, text in zip(COLUMNS, review.rows[row]) if text
    ]


def tracked_formats(review, row):
    review.type(row, "target", "un deux trois")
    review.track(True)
    review.cursor(row, "target", 3, 4).CharWeight = 150.0
    review.cursor(row, "target", 0, 2).CharColor = 0xC00000
    review.cursor(row, "target").ParaAdjust = CENTER
    review.track(False)
    review.meets(row, "target", "stray-date", "stray-date")


def right_to_left(review, row):
    review.type(row, "target", "نص “مقتبس” (1) ومعه English، ثم\r\nשורה בעברית – כן")
    review.type(row, "comments", "ملاحظة: 👍 ٣")
    review.track(True)
    review.delete(row + 1, "target", 0, 4)
    review.track(False)
    review.left(row + 1, "target", review.rows[row + 1][2][4:])
    review.meets(row + 1, "target", "deleted-text")


# --- the reviewer of a bilingual document ---------------------------------------------------------


class BilingualReview:
    """An open bilingual document: a paragraph a segment, `<ID s01> {0>source<}0{>target<0}`."""

    TARGET, END = "<}0{>", "<0}"

    def __init__(self, document, file):
        self.document = document
        self.rows = [
            [row[0], "\n".join(LINE_END.split(row[2])), "\n".join(LINE_END.split(row[3])), "", ""]
            for row in project_rows()
            if row[1] == file
        ]
        self.misread, self.met, self.swallowed = [], [], []
        self.removed = set()

    def paragraph(self, row):
        paragraphs = self.document.Text.createEnumeration()
        while paragraphs.hasMoreElements():
            paragraph = paragraphs.nextElement()
            if paragraph.String.startswith(f"<ID {self.rows[row][0]}> "):
                return paragraph
        raise LookupError(row)

    def cursor(self, row, start, length=0):
        cursor = self.document.Text.createTextCursorByRange(self.paragraph(row).Start)
        cursor.goRight(start, False)
        cursor.goRight(length, True)
        return cursor

    def behind(self, row, piece):
        """Where the last such piece of a segment's paragraph ends."""
        text = self.paragraph(row).String
        return text.rindex(piece) + len(piece)

    def type(self, row, start, text):
        """Types, as a word processor does: the style is the one of the character before."""
        for number, part in enumerate(text.split("\r\n")):
            if number:
                cursor = self.cursor(row, start)
                self.document.Text.insertControlCharacter(cursor, PARAGRAPH_BREAK, False)
                start += 1
            self.document.Text.insertString(self.cursor(row, start), part, False)
            start += len(part)

    def delete(self, row, start, length):
        self.cursor(row, start, length).String = ""

    def target(self, row):
        """Where the target begins, and how long it is."""
        start = self.behind(row, self.TARGET)
        return start, self.behind(row, self.END) - len(self.END) - start

    def left(self, row, target, finding=None, misread=True):
        self.rows[row][2] = target
        if finding:
            self.met.append([finding, self.rows[row][0], "target"])
            if misread:
                self.misread.append([self.rows[row][0], "target"])

    def expectations(self):
        return {
            "rows": [row for row in self.rows if row[0] not in self.removed],
            "misread": self.misread,
            "extraRows": sorted(self.removed),
            "met": self.met,
            "swallowed": self.swallowed,
        }


def bilingual_untouched(review):
    """Opened and saved."""


def bilingual_typed(review):
    """Within the text, directly behind a mark and behind codes, whole targets, behind the end."""
    text = [row[2] for row in review.rows]
    start, length = review.target(0)
    review.type(0, start + 6, " « né » 日本 🙂")
    review.type(0, review.behind(0, review.END), " et fin\u2011là")
    review.left(0, text[0][:6] + " « né » 日本 🙂" + text[0][6:] + " et fin\u2011là", "styled-text")
    review.met.append(["non-breaking-hyphen", "s01", "target"])
    review.swallowed.append("s02")

    review.type(1, review.behind(1, "<c:2>"), " « vite »")
    review.type(1, review.target(1)[0], "Là,\r\n")
    review.left(1, "Là,\r\n" + text[1].replace("{2}", "{2} « vite »"), "styled-text", misread=False)
    review.met.append(review.met[-1])

    start, length = review.target(2)
    review.delete(2, start, length)
    review.type(2, start, "Tout à neuf, “ici”.")
    review.left(2, "Tout à neuf, “ici”.", "styled-text")

    start, length = review.target(3)
    review.delete(3, start, length)
    review.left(3, "")


def bilingual_beside(review):
    """Behind an identifier, between segments, and marks that are gone."""
    review.type(0, len("<ID s01> "), "visible")
    review.met.append(["outside-text", "s01", "id"])

    review.type(1, review.behind(1, review.END), "\r\nA note of mine.")
    review.met.append(["outside-text", "s03", "id"])

    review.delete(2, review.behind(2, review.END) - len(review.END), len(review.END))
    review.met.append(["missing-mark", "s03", "target"])
    review.misread.append(["s03", "target"])
    review.swallowed.append("s04")
    review.delete(4, review.behind(4, review.TARGET) - len(review.TARGET), len(review.TARGET))
    review.removed.add("s05")
    review.met.append(["damaged-row", "", ""])


def bilingual_tracked(review):
    """Tracked changes in targets, and of a whole segment."""
    text = [row[2] for row in review.rows]
    start, length = review.target(0)
    review.document.RecordChanges = True
    review.delete(0, start + 7, 10)
    review.type(0, start + 7, "la page")
    review.left(0, text[0][:7] + "la page" + text[0][17:], "inserted-text")
    review.met.append(["deleted-text", "s01", "target"])

    start, length = review.target(1)
    review.delete(1, start, length)
    review.type(1, start, "Anew")
    review.document.RecordChanges = False
    review.left(1, "Anew", "deleted-text")
    review.met += [["inserted-text", "s02", "target"], ["styled-text", "s02", "target"]]

    review.document.RecordChanges = True
    whole = len(review.paragraph(2).String) + 1
    review.delete(2, 0, whole)
    review.document.RecordChanges = False
    review.removed.add("s03")
    review.met.append(["deleted-text", "s04", "id"])


BILINGUAL_FILES = {
    "bilingual-untouched": bilingual_untouched,
    "bilingual-typed": bilingual_typed,
    "bilingual-beside": bilingual_beside,
    "bilingual-tracked": bilingual_tracked,
}

# The edits of each file, and its language.
FRENCH, ARABIC = "fr-FR", "ar-SA"
FILES = {
    "untouched": ([untouched], FRENCH),
    "quotes": ([quotes], FRENCH),
    "scripts": ([scripts], FRENCH),
    "emoji": ([emoji], FRENCH),
    "breaks": ([breaks], FRENCH),
    "tabs": ([tabs], FRENCH),
    "emptied": ([emptied], FRENCH),
    "comment": ([comment], FRENCH),
    "moved-rows": ([moved_rows], FRENCH),
    "added-rows": ([added_rows], FRENCH),
    "deleted-rows": ([deleted_rows], FRENCH),
    "text-around": ([text_around], FRENCH),
    "formatting": ([formatting], FRENCH),
    "hyperlink": ([hyperlink], FRENCH),
    "picture": ([picture], FRENCH),
    "lists": ([lists], FRENCH),
    "notes": ([notes], FRENCH),
    "text-boxes": ([text_boxes], FRENCH),
    "hyphens": ([hyphens], FRENCH),
    "spaces": ([spaces], FRENCH),
    "tracked-insertions": ([tracked_insertions], FRENCH),
    "tracked-deletions": ([tracked_deletions], FRENCH),
    "tracked-breaks": ([tracked_breaks], FRENCH),
    "tracked-rows": ([tracked_rows], FRENCH),
    "tracked-formats": ([tracked_formats], FRENCH),
    "right-to-left": ([right_to_left], ARABIC),
    "annotation": ([untouched], FRENCH),
    "all": (
        [
            quotes, scripts, emoji, breaks, tabs, emptied, comment, moved_rows, added_rows,
            deleted_rows, text_around, formatting, hyperlink, picture, lists, notes, hyphens,
            spaces, tracked_insertions, tracked_deletions, tracked_breaks, tracked_rows,
            tracked_formats,
        ],
        FRENCH,
    ),
}  # fmt: skip
# How many rows an edit touches, where that is not one.
ROWS_TAKEN = {scripts: 5, moved_rows: 3, tracked_deletions: 2, tracked_breaks: 3, added_rows: 3, deleted_rows: 0}

# --- the word processor --------------------------------------------------------------------------


def properties(**values):
    result = []
    for name, value in values.items():
        one = PropertyValue()
        one.Name, one.Value = name, value
        result.append(one)
    return tuple(result)


class Writer:
    """A LibreOffice of our own, without a window and with a profile that is thrown away."""

    def __init__(self, folder):
        self.folder = Path(folder)
        self.profile = "-env:UserInstallation=" + (self.folder / "profile").as_uri()
        pipe = f"reviewed-files-{os.getpid()}"
        self.process = subprocess.Popen(
            ["soffice", "--headless", "--norestore", "--nologo", self.profile,
             f"--accept=pipe,name={pipe};urp;"],
            stderr=subprocess.DEVNULL,
        )  # fmt: skip
        local = uno.getComponentContext()
        resolver = local.ServiceManager.createInstanceWithContext(
            "com.sun.star.bridge.UnoUrlResolver", local
        )
        for _ in range(240):
            try:
                self.context = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
                break
            except NoConnectException:
                time.sleep(0.5)
        else:
            self.process.terminate()
            sys.exit("soffice does not answer")
        self.desktop = self.service("com.sun.star.frame.Desktop")
        self.dispatcher = self.service("com.sun.star.frame.DispatchHelper")

    def service(self, name):
        return self.context.ServiceManager.createInstanceWithContext(name, self.context)

    def graphic(self, data):
        path = self.folder / "picture.png"
        path.write_bytes(data)
        provider = self.service("com.sun.star.graphic.GraphicProvider")
        return provider.queryGraphic(properties(URL=path.as_uri()))

    def open(self, path):
        return self.desktop.loadComponentFromURL(path.as_uri(), "_blank", 0, properties(Hidden=True))

    def save(self, document, path):
        document.storeToURL(path.as_uri(), properties(FilterName="Rich Text Format"))
        document.close(True)

    def convert(self, path, folder):
        """Opens and saves a document in a process of its own, which ends before it draws."""
        subprocess.run(
            ["soffice", "--headless", self.profile + "-2", "--convert-to", "rtf", "--outdir", folder,
             path],
            check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )  # fmt: skip

    def close(self):
        try:
            self.desktop.terminate()
        except Exception:  # the bridge may end before the answer
            pass
        self.process.wait(60)


# --- the files -----------------------------------------------------------------------------------


def annotated(exported):
    """A comment in the margin. Writer without its windows can keep one, but not make one."""
    note = (
        r"{\*\atnid R}{\*\atnauthor Reviewer}\chatn{\*\annotation{\*\atndate 1}\pard\plain Is that so?}"
    )
    content = exported.read_text("ascii")
    assert "Ouvrez" in content
    exported.write_text(content.replace("Ouvrez", "Ouv" + note + "rez"), "ascii")


def one_entry_a_line(expectations):
    lists = []
    for name, entries in expectations.items():
        lines = ",".join("\n  " + json.dumps(entry, ensure_ascii=False) for entry in entries)
        lists.append(f' "{name}": [{lines}]')
    return "{\n" + ",\n".join(lists) + "\n}\n"


def make_bilingual(name, writer, genutil, folder):
    exported = folder / f"{name}.rtf"
    subprocess.run(
        [genutil, "export", folder / "sample.project", "-o", exported, "--language", FRENCH, "--file",
         "small.txt", "--format", "twb"],
        check=True, stdout=subprocess.DEVNULL,
    )  # fmt: skip
    review = BilingualReview(writer.open(exported), "small.txt")
    BILINGUAL_FILES[name](review)
    writer.save(review.document, OUT / f"{name}.rtf")
    return review


def make(name, writer, genutil, folder):
    if name in BILINGUAL_FILES:
        write_expectations(name, make_bilingual(name, writer, genutil, folder))
        return
    edits, language = FILES[name]
    of_all = len(edits) > 1
    exported = folder / f"{name}.rtf"
    subprocess.run(
        [genutil, "export", folder / "sample.project", "-o", exported, "--language", language, "--file",
         "all.txt" if of_all else "small.txt", "--status-column", "--status-value"],
        check=True, stdout=subprocess.DEVNULL,
    )  # fmt: skip
    file = "all.txt" if of_all else "small.txt"
    if name == "annotation":
        annotated(exported)
        review = Review(writer, None, language, file)
        review.meets(0, "target", "margin-comment", misread=False)
        writer.convert(exported, OUT)
    else:
        review = Review(writer, writer.open(exported), language, file)
        row = 0
        for edit in edits:
            edit(review, row)
            row += ROWS_TAKEN.get(edit, 1)
        writer.save(review.document, OUT / f"{name}.rtf")
    write_expectations(name, review)


def write_expectations(name, review):
    (OUT / f"{name}.json").write_text(one_entry_a_line(review.expectations()), "utf-8")
    print(f"{name}: {(OUT / f'{name}.rtf').stat().st_size} bytes")


def main(arguments):
    if not arguments:
        sys.exit("usage: tools/make_reviewed_files.py BUILD_FOLDER [NAME...]")
    genutil = Path(arguments[0]).resolve() / "cli" / "genutil"
    names = arguments[1:] or [*FILES, *BILINGUAL_FILES]
    OUT.mkdir(parents=True, exist_ok=True)
    write_project(OUT / "project.tsv")
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        subprocess.run(
            [genutil, "project", "create", folder / "sample.project", OUT / "project.tsv", "--source",
             "en-US"],
            check=True, stdout=subprocess.DEVNULL,
        )  # fmt: skip
        writer = Writer(folder)
        try:
            for file in names:
                make(file, writer, genutil, folder)
        finally:
            writer.close()


if __name__ == "__main__":
    main(sys.argv[1:])
