#include <generalutilities/extview/source_key.h>
#include <generalutilities/text/words.h>

#include "text/char_tables.h"
#include "text/flat_tables.h"

#include <algorithm>

namespace generalutilities {

namespace {

constexpr std::size_t SourceKeySize = 50;

void TrimBlanks(std::u16string& text) {
    text.erase(text.find_last_not_of(u' ') + 1);
    text.erase(0, text.find_first_not_of(u' '));
}

// Appends a separator run; blanks that follow one another, also across tokens, become one.
void AppendFoldingBlanks(std::u16string& text, std::u16string_view separators) {
    for (const char16_t unit : separators) {
        if (unit != u' ' || text.empty() || text.back() != u' ') {
            text.push_back(unit);
        }
    }
}

}  // namespace

std::u16string MakeSourceKey(std::u16string_view text, std::int32_t langId) {
    const std::u16string folded = FoldBlanksAndCodes(text);
    const std::u16string_view foldedText = folded;
    const WordParser parser(langId);
    std::u16string key;
    std::u16string pending;  // the separators since the last word: they count if a word follows
    bool wordSeen = false;
    std::size_t position = 0;
    while (key.size() < SourceKeySize) {
        const auto token = parser.ParseStep(folded, position);
        if (!token) {
            break;
        }
        position = static_cast<std::size_t>(token->end);
        const auto first = static_cast<std::size_t>(token->first);
        const std::u16string_view tokenText = foldedText.substr(first, position - first);
        if (token->type == qlnwtWord || token->type == qlnwtDBCS) {
            key.append(pending).append(tokenText);
            pending.clear();
            wordSeen = true;
        } else if (token->type == qlnwtSeparator && wordSeen) {
            AppendFoldingBlanks(pending, tokenText);
        }
    }
    if (key.size() > SourceKeySize) {
        key.resize(SourceKeySize);
    }
    TrimBlanks(key);
    return key;
}

std::u16string CompareForm(std::u16string_view text, std::int32_t langId) {
    std::u16string form;
    const auto isNumber = [](char16_t unit) {
        return (flat::Classes[unit] & charclass::Number) != 0;
    };
    if (std::none_of(text.begin(), text.end(), isNumber)) {
        form = text;  // no token is a number
        TrimBlanks(form);
        return form;
    }
    const WordParser parser(langId);
    form.reserve(text.size());
    std::size_t position = 0;
    while (const auto token = parser.ParseStep(text, position)) {
        position = static_cast<std::size_t>(token->end);
        if (token->type != qlnwtDigit) {
            const auto first = static_cast<std::size_t>(token->first);
            form.append(text, first, position - first);
        }
    }
    TrimBlanks(form);
    return form;
}

}  // namespace generalutilities
