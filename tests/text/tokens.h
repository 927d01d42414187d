#pragma once

#include <generalutilities/text/words.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

/// Token lists as strings that a test can write down: "w:Hello|s:, |w:world", where w is a word, n
/// a number, s a separator run, e an East Asian unit and c a code.
namespace generalutilities {

inline std::vector<TextToken> StepTokens(std::u16string_view text, std::int32_t langId) {
    const WordParser parser(langId);
    std::vector<TextToken> tokens;
    std::size_t position = 0;
    while (const auto token = parser.ParseStep(text, position)) {
        tokens.push_back(*token);
        if (token->end <= token->first) {
            ADD_FAILURE() << "an empty token at " << position;
            break;
        }
        position = static_cast<std::size_t>(token->end);
    }
    return tokens;
}

inline std::vector<TextToken> AllTokens(std::u16string_view text, std::int32_t langId) {
    std::vector<TextToken> tokens(3);
    WordParser(langId).ParseAll(text, tokens);
    return tokens;
}

inline std::u16string Describe(std::u16string_view text, const std::vector<TextToken>& tokens) {
    std::u16string description;
    std::int32_t position = 0;
    for (const TextToken& token : tokens) {
        EXPECT_EQ(token.first, position) << "a gap or an overlap";
        position = token.end;
        description += description.empty() ? u"" : u"|";
        description += u"wnsec"[token.type];
        description += u':';
        description += text.substr(static_cast<std::size_t>(token.first),
                                   static_cast<std::size_t>(token.end - token.first));
    }
    EXPECT_EQ(static_cast<std::size_t>(position), text.size());
    return description;
}

/// Texts that cost the square of their length if a look-ahead or look-behind is repeated.
inline std::vector<std::u16string> HostileTexts() {
    constexpr std::size_t Size = 1'000'000;
    const auto repeat = [](std::u16string_view piece) {
        std::u16string text;
        while (text.size() < Size) {
            text += piece;
        }
        return text;
    };
    return {
        repeat(u"&"),    u' ' + repeat(u"&"),    u' ' + repeat(u"&") + u'a',
        repeat(u" &&&"), repeat(u"{"),           u'{' + repeat(u"1"),
        repeat(u"{1"),   repeat(u"\\") + u"{1}", repeat(u"\\{1}"),
        repeat(u".1"),   repeat(u" ."),          repeat(u"1,"),
        repeat(u"a'"),   repeat(u"'"),
    };
}

}  // namespace generalutilities
