#!/usr/bin/env python3
"""Prints how often the detection is right, as the tables of docs/code-pages.md.

The texts are of packages that nothing was learnt from (texts.py): messages of applications, and
help pages, which are prose. Texts of 20, 60, 200 and 1000 characters are cut from lines in random
order, written in the usual page of their language, in UTF-8 and in some older pages, and handed to
`genutil codepage detect` and `genutil language detect`. A page is right when it reads the bytes as
the text; a language when it is the one of the catalogue.
"""

import argparse
import collections
import json
import pathlib
import random
import subprocess
import tempfile

import texts

ROOT = pathlib.Path(__file__).resolve().parents[2]
LENGTHS = (20, 60, 200, 1000)
LEAST = 3000  # characters that a language must have to be measured on
BATCH = 400
UTF8 = 65001
ENCODINGS = {
    437: "cp437", 737: "cp737", 775: "cp775", 850: "cp850", 852: "cp852", 857: "cp857",
    862: "cp862", 866: "cp866", 874: "cp874", 932: "cp932", 936: "gbk", 949: "cp949", 950: "cp950",
    1200: "utf-16-le", 1201: "utf-16-be", 10000: "mac_roman", 10006: "mac_greek",
    10007: "mac_cyrillic", 10029: "mac_latin2", 10081: "mac_turkish", 20866: "koi8_r",
    21866: "koi8_u", 50220: "iso2022_jp", 51932: "euc_jp", 54936: "gb18030", UTF8: "utf-8",
    **{page: f"cp{page}" for page in range(1250, 1259)},
    **{28590 + part: f"iso8859_{part}" for part in (1, 2, 5, 7, 9, 13, 15)},
}
OLDER_PAGES = {
    "cs": (852, 28592, 10029), "de": (850, 10000), "el": (737,), "es": (850, 10000),
    "fr": (850, 10000), "he": (862,), "hu": (852, 28592, 10029), "ja": (51932, 50220),
    "pl": (852, 28592, 10029), "ru": (866, 20866, 28595, 10007), "tr": (857,), "uk": (21866,),
}

Case = collections.namedtuple("Case", "source tag page length text bytes")


def cut(lines, length, within, choose):
    """A text of this length, from the start of a line or, of prose, from anywhere within."""
    parts = []
    while sum(map(len, parts)) + len(parts) < length + 40:
        parts.append(choose.choice(lines))
    text = "\n".join(parts)
    start = choose.randrange(len(text) - length) if within else 0
    return text[start:start + length].strip()


def cases_of(source, tag, page, lines, count, choose):
    encoding = ENCODINGS[page]
    lines = [line for line in lines if texts.can_encode(line, encoding)]
    if sum(map(len, lines)) < LEAST:
        return
    for length in LENGTHS:
        for _ in range(count):
            text = cut(lines, length, source == "help", choose)
            if any(character.isalpha() for character in text):
                yield Case(source, tag.split("#")[0], page, length, text, text.encode(encoding))


def all_cases(known, count, choose, only):
    for tag, (_, _, page, _) in texts.LANGUAGES.items():
        if only and tag.split("#")[0] not in only:
            continue
        for source, lines in (("applications", known.to_measure(tag)),
                              ("help", known.help_to_measure(tag))):
            pages = [page] if page else []
            if "#" not in tag:
                pages.append(UTF8)
            if source == "applications":
                pages += OLDER_PAGES.get(tag, ())
            for each in pages:
                yield from cases_of(source, tag, each, lines, count, choose)


def ask(program, command, key, files):
    done = subprocess.run([program, command, "detect", "--json", *files], check=False,
                          stdout=subprocess.PIPE)
    return [result[key] for result in json.loads(done.stdout)["results"]]


def reads_as(page, case):
    if page == case.page:
        return True
    try:
        return case.bytes.decode(ENCODINGS[page]) == case.text
    except (KeyError, UnicodeDecodeError):
        return False


class Rates:
    """Hits and tries by row and length."""

    def __init__(self):
        self.hits = collections.Counter()
        self.tries = collections.Counter()

    def add(self, row, length, hit):
        self.tries[row, length] += 1
        self.hits[row, length] += hit

    def print(self, title, label=str):
        print(f"\n| {title} | " + " | ".join(map(str, LENGTHS)) + " |")
        print("|---" * (len(LENGTHS) + 1) + "|")
        for row in sorted({row for row, _ in self.tries}, key=lambda row: (str(type(row)), row)):
            cells = []
            for length in LENGTHS:
                tries = self.tries[row, length]
                cells.append(f"{100 * self.hits[row, length] / tries:.1f}" if tries else "")
            print(f"| {label(row)} | " + " | ".join(cells) + " |")


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("--program", default=ROOT / "build/release/cli/genutil")
    arguments.add_argument("--packages", type=pathlib.Path, default=ROOT / "build/detection-texts")
    arguments.add_argument("--count", type=int, default=40, help="texts a language, page, length")
    arguments.add_argument("--seed", type=int, default=11)
    arguments.add_argument("--only", nargs="*", metavar="TAG", help="languages to measure")
    options = arguments.parse_args()
    texts.fetch(options.packages)
    choose = random.Random(options.seed)
    cases = list(all_cases(texts.Texts(options.packages), options.count, choose, options.only))
    page_rates, total_pages = Rates(), Rates()
    language_rates, total_languages = Rates(), Rates()
    with tempfile.TemporaryDirectory() as folder:
        for start in range(0, len(cases), BATCH):
            batch = cases[start:start + BATCH]
            files = []
            for number, case in enumerate(batch):
                files.append(f"{folder}/{number}")
                pathlib.Path(files[-1]).write_bytes(case.bytes)
            pages = ask(options.program, "codepage", "codePage", files)
            languages = ask(options.program, "language", "language", files)
            for case, page, language in zip(batch, pages, languages):
                usual = case.page in (UTF8, texts.LANGUAGES[case.tag][2]) or case.page == 1258
                kind = "UTF-8" if case.page == UTF8 else \
                    "usual Windows page" if usual else "older page"
                right_page = reads_as(page, case)
                right_language = language == texts.LANGUAGES[case.tag][0]
                page_rates.add(case.page, case.length, right_page)
                total_pages.add(f"{case.source}, {kind}", case.length, right_page)
                total_languages.add(f"{case.source}, {kind}", case.length, right_language)
                if kind != "older page":
                    language_rates.add(case.tag, case.length, right_language)
    print(f"{len(cases)} texts of {len({case.tag for case in cases})} languages")
    total_pages.print("Code page right, %")
    total_languages.print("Language right, %")
    page_rates.print("Code page right, % of the texts in it")
    language_rates.print("Language right, %", lambda tag: f"{tag} ({texts.LANGUAGES[tag][0]})")


if __name__ == "__main__":
    main()
