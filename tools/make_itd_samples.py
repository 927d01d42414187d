#!/usr/bin/python3
"""Makes bilingual ITD documents: one a language, each built a little differently.

    tools/make_itd_samples.py FOLDER [LANGUAGE...]

writes FOLDER/LANGUAGE.itd with the English texts below and their translations, with inline codes,
states, scores and comments. docs/itd.md tells the form. Between them the files have both kinds of
header, both places of the status table, a first part of the envelope or none, headers of odd and
even length, columns in the order of their header and against it, and comments or none. The same
call writes the same bytes.
"""

import struct
import sys
import zlib
from pathlib import Path

LAST_OF_SECTION = 0x80000002
FILE_LINE = 4
CODE = 1
TRANSLATABLE = 0x20

# Each text with what becomes a code in braces; a code keeps its place among the others.
SOURCE = ["Welcome to the {<b>}handbook{</b>}",
          "Press {<key>}F1{</key>} for help.",
          "The file {&name;} could not be saved.",
          "Costs: 5 < 10 & {<i>}more{</i>}",
          "C:\\{<var>}user{</var>}\\notes.txt"]
TARGETS = {
    "de-DE": ["Willkommen im {<b>}Handbuch{</b>}", "Für Hilfe {<key>}F1{</key>} drücken.",
              "Die Datei {&name;} konnte nicht gespeichert werden.",
              "Kosten: 5 < 10 & {<i>}mehr{</i>}", "C:\\{<var>}benutzer{</var>}\\notizen.txt"],
    "fr-FR": ["Bienvenue dans le {<b>}manuel{</b>}", "Appuyez sur {<key>}F1{</key>} pour l’aide.",
              "Le fichier {&name;} n’a pas pu être enregistré.",
              "Coûts : 5 < 10 & {<i>}plus{</i>}", "C:\\{<var>}utilisateur{</var>}\\notes.txt"],
    "ru-RU": ["Добро пожаловать в {<b>}руководство{</b>}", "Нажмите {<key>}F1{</key>} для справки.",
              "Не удалось сохранить файл {&name;}.", "Стоимость: 5 < 10 & {<i>}больше{</i>}",
              "C:\\{<var>}пользователь{</var>}\\заметки.txt"],
    "el-GR": ["Καλώς ήρθατε στο {<b>}εγχειρίδιο{</b>}", "Πατήστε {<key>}F1{</key>} για βοήθεια.",
              "Δεν ήταν δυνατή η αποθήκευση του {&name;}.", "Κόστος: 5 < 10 & {<i>}πάνω{</i>}",
              "C:\\{<var>}χρήστης{</var>}\\σημειώσεις.txt"],
    "ar-SA": ["مرحبًا بك في {<b>}الدليل{</b>}", "اضغط {<key>}F1{</key>} للمساعدة.",
              "تعذّر حفظ الملف {&name;}.", "التكاليف: 5 < 10 & {<i>}أكثر{</i>}",
              "C:\\{<var>}مستخدم{</var>}\\ملاحظات.txt"],
    "he-IL": ["ברוכים הבאים ל{<b>}מדריך{</b>}", "הקישו {<key>}F1{</key>} לעזרה.",
              "לא ניתן היה לשמור את {&name;}.", "עלויות: 5 < 10 & {<i>}יותר{</i>}",
              "C:\\{<var>}משתמש{</var>}\\הערות.txt"],
    "ja-JP": ["{<b>}ハンドブック{</b>}へようこそ！", "ヘルプは{<key>}Ｆ１{</key>}を押してください。",
              "ファイル{&name;}を保存できませんでした。", "費用：5 < 10 & {<i>}以上{</i>}",
              "C:\\{<var>}ユーザー{</var>}\\メモ.txt"],
    "zh-CN": ["欢迎使用{<b>}手册{</b>}！", "按 {<key>}F1{</key>} 获取帮助。", "无法保存文件 {&name;}。",
              "费用：5 < 10 & {<i>}更多{</i>}", "C:\\{<var>}用户{</var>}\\笔记.txt"],
}


def string(text):
    """A length in the shortest of its three forms, and the units."""
    units = text.encode("utf-16-le", "surrogatepass")
    count = len(units) // 2
    if count < 0xFF:
        return struct.pack("<BB", 0xFF, count) + units
    if count < 0xFFFF:
        return struct.pack("<HH", 0xFFFF, count) + units
    return struct.pack("<II", 0xFFFFFFFF, count) + units


def record(kind, sid, text, pid=1):
    return struct.pack("<IIII", pid, kind, 0, sid) + b"\xFF\xFE" + string(text)


def section(language, texts):
    """The file line, a segment for each text, and the record that ends the section."""
    records = [record(FILE_LINE, 1, f'<file name="handbook.htm" lc="{language}">')]
    for sid, text in enumerate(texts, 2):
        records.append(record(CODE, sid, "<p>"))
        while text:
            plain, _, rest = text.partition("{")
            code, _, text = rest.partition("}")
            if plain:
                records.append(record(TRANSLATABLE, sid, plain))
            if code:
                records.append(record(CODE, sid, code))
    records.append(record(LAST_OF_SECTION, len(texts) + 2, "</file>"))
    return b"".join(records)


def short(text):
    return struct.pack("<B", len(text)) + text.encode("ascii")


def status_table(count):
    return b"".join(struct.pack("<IIId", 0, 0, i % 4, 100 - 12.5 * i)
                    for i in range(count))


def text_part(language, texts, wide_header, early, odd, reversed_columns, comments):
    header = struct.pack("<II", 1, 2)
    if wide_header:
        name = "handbook"
        header += b"\xFF\x00\xFF" + struct.pack("<B", len(name)) + name.encode("utf-16-le")
        header += short("v2") + b"\x00"
    else:
        header += b"\x07"
    header += bytes(12) + short("en-US") + short(language) + bytes(4)
    header += short("html") + short("") + short("odd" if odd else "even")
    header += struct.pack("<II", len(texts), 0)
    header += b"\xFF" * 8 + bytes(26) + (b"\x00" if early else b"\xFF") + bytes(3)
    header += status_table(len(texts)) if early else b""
    columns = [section("en-US", SOURCE), section(language, texts)]
    if reversed_columns:
        columns.reverse()
    between = b""
    if comments:
        strings = [""] * (len(texts) + 2)
        strings[1] = ('<?xml version="1.0"?><Comments><Comment user="Ann">Which handbook?</Comment>'
                      '<Comment user="Bo">The blue one.</Comment></Comments>')
        between = struct.pack("<H", len(strings))
        between += b"".join(b"\xFF\xFE" + string("\uFEFF" + text) for text in strings)
    between += struct.pack("<H", len(texts) + 2)
    footer = bytes(22) + (b"" if early else status_table(len(texts))) + b"end"
    return header + columns[0] + between + columns[1] + footer


def envelope(part, first_part):
    packed = zlib.compress(part, 9)
    version = b"2.0.1"
    return (b"SDLXARCH" + struct.pack("<i", len(version)) + version
            + struct.pack("<I", len(first_part)) + first_part + b"\x01" * 9
            + struct.pack("<I", len(packed)) + packed + struct.pack("<I", zlib.crc32(part)))


def main(folder, *languages):
    Path(folder).mkdir(parents=True, exist_ok=True)
    for i, (language, texts) in enumerate(TARGETS.items()):
        if languages and language not in languages:
            continue
        part = text_part(language, texts, wide_header=i % 2 == 0, early=i % 4 < 2,
                         odd=i % 3 == 0, reversed_columns=i % 3 == 1, comments=i % 2 == 0)
        (Path(folder) / f"{language}.itd").write_bytes(
            envelope(part, b"preview" if i % 3 == 0 else b""))


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(*sys.argv[1:])
