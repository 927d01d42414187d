#!/usr/bin/env python3
"""Counts the words of texts without regard to case and accents.

    python/examples/fold_corpus.py --language fr-FR texts/*.txt

Each line of the answer has a count, the folded word, and the forms in which the texts have it.
"""

import argparse
import collections
import sys

import generalutilities
from generalutilities import WordTypeEnum

LANGUAGES = {"en-US": 1033, "fr-FR": 1036, "de-DE": 1031, "ru-RU": 1049, "el-GR": 1032}


def words_of(utils, text, language):
    """The words of a text. Positions count UTF-16 units from 1; 0 is the end."""
    position = 1
    while position:
        token, position, kind = utils.ParseString(position, text, language, WordTypeEnum.qlnwtWord)
        if token and kind == WordTypeEnum.qlnwtWord:
            yield token


def count(lines, language):
    """The forms of each folded word, with how often each occurs."""
    forms = collections.defaultdict(collections.Counter)
    with generalutilities.create("StringUtils") as utils:
        for line in lines:
            for word in words_of(utils, line, language):
                forms[utils.DeAccentUpperCaseString(word)][word] += 1
    return forms


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--language", choices=LANGUAGES, default="en-US")
    parser.add_argument("texts", nargs="+", type=argparse.FileType(encoding="utf-8"))
    options = parser.parse_args()
    lines = (line for text in options.texts for line in text)
    forms = count(lines, LANGUAGES[options.language])
    for folded, found in sorted(forms.items(), key=lambda item: (-item[1].total(), item[0])):
        sys.stdout.write(f"{found.total()}\t{folded}\t{', '.join(sorted(found))}\n")


if __name__ == "__main__":
    main()
