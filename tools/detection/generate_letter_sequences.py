#!/usr/bin/env python3
"""Writes src/text/tables/letter_sequences.h: which letters follow each other in which language.

What a letter costs after the two before it is the negative logarithm of how often it follows them,
in steps of 0.4, counted in the words of up to 350,000 characters of each language, in small
letters, with a blank at both ends of a word. A sequence is kept when its cost differs much, times
often, from what the shorter sequence says. Chinese, Japanese and Korean have too many characters
for sequences of three; theirs are shorter and more. texts.py says whose texts they are.

The output depends on the texts alone.
"""

import argparse
import collections
import math
import pathlib
import random
import unicodedata

import texts

ROOT = pathlib.Path(__file__).resolve().parents[2]
STEP = 0.4
LAST_CLASS = 25  # "Z"
SHORTER = 1.2  # what it costs to fall back to a shorter sequence: Surcharge in cost_table.cpp
UNKNOWN = 12.0
DISCOUNT = 0.4
LEARNT_CHARACTERS = 350000
SYMBOLS = 40
RARENESS = 15  # what a rare language costs beforehand, in tenths
# How many sequences of one, two and three letters are kept.
KEPT = (120, 300, 600)
KEPT_EAST_ASIAN = (2200, 1500, 0)

category = unicodedata.ucd_3_2_0.category  # of the version that the library's own table has


def small(letter):
    lower = "i" if letter == "İ" else letter.lower()
    return lower if len(lower) == 1 else letter


def words_of(line):
    word = []
    for character in line:
        kind = category(character) if ord(character) < 0x10000 else "So"
        if kind == "Cf":
            continue
        if kind[0] in "LM":
            word.append(small(character))
        elif word:
            yield "".join(word)
            word = []
    if word:
        yield "".join(word)


def symbols_of(line):
    for character in line:
        unit = ord(character)
        if (0x9F < unit < 0xE000 or 0xF8FF < unit < 0xFFFD) and \
                category(character) not in ("Cf", "Cn", "Cc", "Cs") and \
                category(character)[0] not in "LM":
            yield character


def cost_class(cost):
    return min(LAST_CLASS, max(0, round(cost / STEP)))


def text_of(costs):
    """The costs as the table has them: the class as a capital, then the sequences of that class."""
    by_length = collections.defaultdict(lambda: collections.defaultdict(list))
    for sequence, cost in costs.items():
        by_length[len(sequence)][cost_class(cost)].append(sequence)
    parts = []
    for length in sorted(by_length):
        parts.append(str(length))
        for number in sorted(by_length[length]):
            parts.append(chr(ord("A") + number))
            parts += sorted(by_length[length][number])
    return parts


def symbol_costs(lines):
    counts = collections.Counter(symbol for line in lines for symbol in symbols_of(line))
    total = sum(map(len, lines))
    return {symbol: -math.log(count / total)
            for symbol, count in sorted(counts.most_common(SYMBOLS)) if count >= 3}


def letter_costs(lines, kept):
    counts = [collections.Counter() for _ in range(3)]
    for line in lines:
        for word in words_of(line):
            bounded = f" {word} "
            for end in range(2, len(bounded) + 1):
                for length in range(1, min(end, 3) + 1):
                    counts[length - 1][bounded[end - length:end]] += 1
    total = sum(counts[0].values())
    costs = {letter: -math.log((count - DISCOUNT) / total)
             for letter, count in counts[0].most_common(kept[0])}
    for length in (2, 3):
        contexts = collections.Counter()
        for sequence, count in counts[length - 1].items():
            contexts[sequence[:-1]] += count
        gains = []
        for sequence, count in counts[length - 1].items():
            if count < 2:
                continue
            cost = -math.log((count - DISCOUNT) / contexts[sequence[:-1]])
            shorter = costs.get(sequence[1:])
            if shorter is None:
                shorter = costs.get(sequence[2:], UNKNOWN) + SHORTER if length == 3 else UNKNOWN
            gains.append((-count * abs(shorter + SHORTER - cost), sequence, cost))
        for _, sequence, cost in sorted(gains)[:kept[length - 1]]:
            costs[sequence] = cost
    return costs


def sample(lines):
    lines = list(lines)
    random.Random(5).shuffle(lines)
    length = 0
    for end, line in enumerate(lines):
        length += len(line)
        if length > LEARNT_CHARACTERS:
            return lines[:end]
    return lines


def wrapped(parts):
    rows = [""]
    for part in parts:
        if len(rows[-1]) + len(part) > 90:
            rows.append("")
        rows[-1] += part
    return "\n".join(f'     u"{row}"' for row in rows)


HEAD = """// Written by tools/detection/generate_letter_sequences.py from the messages of Debian 12's packages.
#pragma once

#include "text/detection/script.h"

#include <cstdint>

namespace generalutilities::tables {

/// What is usual in a language. In the texts a digit tells how long the sequences are that follow,
/// and a capital what the last character of each costs after the ones before it: A is 0, B a step,
/// and so on. A blank is the border of a word.
struct LetterSequences {
    std::int32_t langId;
    detection::Script script;
    std::uint32_t codePage;  ///< the Windows page that is usual for it; 0 when there is none
    std::uint8_t rareness;   ///< what it costs before a letter is read
    const char16_t* symbols;
    const char16_t* letters;
};

using detection::Script;

inline constexpr LetterSequences Languages[] = {
"""


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("--packages", type=pathlib.Path, default=ROOT / "build/detection-texts",
                           help="where the packages are kept")
    arguments.add_argument("--output", type=pathlib.Path,
                           default=ROOT / "src/text/tables/letter_sequences.h")
    arguments.add_argument("--without", nargs="*", default=[], metavar="TAG",
                           help="languages to leave out, to see how unknown ones are read")
    options = arguments.parse_args()
    texts.fetch(options.packages)
    known = texts.Texts(options.packages)
    out = [HEAD]
    for tag, (lang_id, script, code_page, _) in texts.LANGUAGES.items():
        if tag.split("#")[0] in options.without:
            continue
        lines = sample(known.to_learn(tag))
        letters = letter_costs(lines, KEPT_EAST_ASIAN if script in ("Han", "Hangul") else KEPT)
        rareness = RARENESS if tag in texts.RARE else 0
        symbols = "".join(text_of(symbol_costs(lines)))
        out.append(f'    {{{lang_id}, Script::{script}, {code_page}, {rareness}, u"{symbols}",\n'
                   f"{wrapped(text_of(letters))}}},\n")
    out.append("};\n\n}  // namespace generalutilities::tables\n")
    options.output.write_text("".join(out), "utf-8")


if __name__ == "__main__":
    main()
