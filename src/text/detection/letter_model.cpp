// A letter costs what it costs after the two letters before it: the more, the rarer it is there. A
// blank begins and ends each word.

#include "text/detection/letter_model.h"

#include "text/char_tables.h"
#include "text/tables/letter_sequences.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace generalutilities::detection {

namespace {

constexpr Cost CostStep = 4;  ///< between two classes of the table
constexpr Cost UnknownLetter = 100;
constexpr Cost UnknownSymbol = 105;
constexpr Cost ForeignLetter = 10;
constexpr Cost ForeignLatinWord = 10;
constexpr Cost ForeignWord = 60;
constexpr Cost ScriptChangeInWord = 60;
constexpr Cost SymbolInWord = 60;
constexpr Cost CapitalInWord = 30;
constexpr Cost Capital = 6;

bool IsCapital(char16_t unit) {
    return (CharCategory(unit) & 0x7F) == 0x10;
}

/// Joiners, marks of direction and the soft hyphen stand inside of words without being letters.
bool IsTransparent(char16_t unit) {
    return (CharCategory(unit) & 0x7F) == 0x39;
}

/// What a character that is no letter costs whatever the language; nothing for the symbols that
/// languages use differently.
std::optional<Cost> CommonCost(char16_t unit) {
    if (unit == u' ' || (unit >= 0x09 && unit <= 0x0D)) {
        return 15;
    }
    if (unit < 0x20 || unit == 0x7F) {
        return 120;
    }
    if (unit < 0x7F) {
        return 40;
    }
    if (unit < 0xA0) {
        return 150;
    }
    if (unit >= 0xE000 && unit <= 0xF8FF) {
        return 160;
    }
    if (unit == 0xFFFD) {
        return 200;
    }
    return IsTransparent(unit) ? std::optional<Cost>(30) : std::nullopt;
}

/// Marks that may well stand between two letters: apostrophes, hyphens and the Catalan dot.
bool JoinsLetters(char16_t unit) {
    return unit < 0x80 || unit == 0x00B7 || (unit >= 0x2010 && unit <= 0x2019);
}

/// Reads one text of the table: a digit gives the length of the sequences that follow, a capital
/// their cost.
void ReadSequences(const char16_t* text, std::size_t language,
                   std::vector<CostTable::Entry>& entries) {
    std::size_t length = 1;
    Cost cost = 0;
    while (*text != 0) {
        if (*text >= u'1' && *text <= u'3') {
            length = static_cast<std::size_t>(*text++ - u'0');
        } else if (*text >= u'A' && *text <= u'Z') {
            cost = static_cast<Cost>(*text++ - u'A') * CostStep;
        } else {
            entries.push_back({{text, length}, language, cost});
            text += length;
        }
    }
}

}  // namespace

/// The languages of one script and what they list.
struct LetterModel::ScriptGroup {
    std::vector<std::size_t> members;  ///< indexes into `LetterModel::languages`
    CostTable costs;
};

LetterModel::LetterModel() {
    std::array<std::vector<CostTable::Entry>, ScriptCount> letters;
    std::array<std::vector<std::size_t>, ScriptCount> members;
    std::vector<CostTable::Entry> symbolEntries;
    for (const tables::LetterSequences& row : tables::Languages) {
        const auto script = static_cast<std::size_t>(row.script);
        ReadSequences(row.letters, members[script].size(), letters[script]);
        ReadSequences(row.symbols, languages.size(), symbolEntries);
        members[script].push_back(languages.size());
        languages.push_back({row.langId, row.script, row.codePage, row.rareness});
    }
    for (std::size_t script = 0; script < ScriptCount; ++script) {
        if (!members[script].empty()) {
            groups[script] = std::make_unique<ScriptGroup>(ScriptGroup{
                members[script], {members[script].size(), UnknownLetter, letters[script]}});
        }
    }
    symbols = std::make_unique<CostTable>(languages.size(), UnknownSymbol, symbolEntries);
}

LetterModel::~LetterModel() = default;

const LetterModel& LetterModel::Instance() {
    static const LetterModel model;
    return model;
}

/// Walks a text word by word. A word costs a language of its script what its letters cost; every
/// other language what it costs where it is cheapest, and something for being foreign.
class LetterModel::Walk {
  public:
    explicit Walk(const LetterModel& letterModel) : model(letterModel) {
        result.languages.resize(model.languages.size());
        for (std::size_t script = 0; script < ScriptCount; ++script) {
            if (model.groups[script]) {
                own[script].resize(model.groups[script]->members.size());
            }
        }
    }

    void Take(char16_t unit) {
        const Script script = ScriptOf(unit);
        if (script != Script::None) {
            TakeLetter(unit, script);
            return;
        }
        const std::optional<Cost> cost = CommonCost(unit);
        if (!IsTransparent(unit)) {
            inWord = word != Script::None && !JoinsLetters(unit);
            EndWord();
        }
        if (cost) {
            common += *cost;
        } else {
            model.symbols->Add(0, 0, unit, result.languages);
        }
    }

    TextCosts Finish() {
        EndWord();
        Cost everywhere = common;
        for (std::size_t script = 0; script < ScriptCount; ++script) {
            if (own[script].empty()) {
                own[script].push_back(UnknownLetter * result.letters[script]);
            }
            foreign[script] += *std::ranges::min_element(own[script]);
            everywhere += foreign[script];
        }
        for (std::size_t i = 0; i < model.languages.size(); ++i) {
            result.languages[i] += everywhere + model.languages[i].rareness;
        }
        for (std::size_t script = 0; script < ScriptCount; ++script) {
            const ScriptGroup* const group = model.groups[script].get();
            for (std::size_t i = 0; group != nullptr && i < own[script].size(); ++i) {
                result.languages[group->members[i]] += own[script][i];
                result.languages[group->members[i]] -= foreign[script];
            }
        }
        return std::move(result);
    }

  private:
    void TakeLetter(char16_t unit, Script script) {
        const auto index = static_cast<std::size_t>(script);
        if (word != Script::None && script != word) {
            EndWord();
            common += ScriptChangeInWord;
        }
        if (inWord) {
            common += SymbolInWord;
            inWord = false;
        }
        if (word == Script::None) {
            foreign[index] += script == Script::Latin ? ForeignLatinWord : ForeignWord;
            word = script;
        }
        foreign[index] += ForeignLetter;
        ++result.letters[index];
        const char16_t letter = LowerCase(unit);
        if (IsCapital(unit)) {
            common += afterSmall ? CapitalInWord : Capital;
        }
        afterSmall = !IsCapital(unit) && UpperCase(unit) != unit;
        Add(letter);
        before2 = before1;
        before1 = letter;
    }

    void EndWord() {
        if (word != Script::None) {
            Add(u' ');
        }
        word = Script::None;
        before2 = 0;
        before1 = u' ';
        afterSmall = false;
    }

    void Add(char16_t letter) {
        const auto index = static_cast<std::size_t>(word);
        if (model.groups[index]) {
            model.groups[index]->costs.Add(before2, before1, letter, own[index]);
        }
    }

    const LetterModel& model;
    TextCosts result;  ///< of symbols until it is finished
    std::array<std::vector<Cost>, ScriptCount> own;
    std::array<Cost, ScriptCount> foreign{};
    Cost common = 0;
    Script word = Script::None;  ///< of the word that has begun
    char16_t before2 = 0;
    char16_t before1 = u' ';
    bool afterSmall = false;
    bool inWord = false;  ///< a letter and then a symbol have come that does not end a word
};

TextCosts LetterModel::Rate(std::u16string_view text) const {
    Walk walk(*this);
    for (const char16_t unit : text) {
        walk.Take(unit);
    }
    return walk.Finish();
}

}  // namespace generalutilities::detection
