// Both scanners and the index key on any text: the first two bytes are the language identifier, the
// others code units, lone surrogates and U+0000 included. Tokens must cover the text without a gap.

#include <generalutilities/text/words.h>

#include "text_input.h"

#include <algorithm>
#include <vector>

namespace {

using namespace generalutilities;

std::u16string_view TextOf(std::u16string_view text, const TextToken& token) {
    return text.substr(static_cast<std::size_t>(token.first),
                       static_cast<std::size_t>(token.end - token.first));
}

void CheckToken(std::u16string_view text, const TextToken& token, std::size_t position) {
    Require(token.first == static_cast<std::int32_t>(position) && token.first < token.end);
    Require(static_cast<std::size_t>(token.end) <= text.size());
    const std::u16string_view content = TextOf(text, token);
    if (token.type == qlnwtDBCS) {
        Require(content.size() == 1);
    } else if (token.type == qlnwtCode) {
        const std::u16string_view digits = content.substr(1, content.size() - 2);
        Require(content.front() == u'{' && content.back() == u'}' && !digits.empty());
        Require(digits.find_first_not_of(u"0123456789") == digits.npos);
    } else {
        Require(token.type == qlnwtWord || token.type == qlnwtDigit ||
                token.type == qlnwtSeparator);
    }
}

void CheckStepWalk(std::u16string_view text, const WordParser& parser) {
    std::size_t position = 0;
    while (position < text.size()) {
        const auto token = parser.ParseStep(text, position);
        Require(token.has_value());
        CheckToken(text, *token, position);
        position = static_cast<std::size_t>(token->end);
    }
    Require(!parser.ParseStep(text, position).has_value());
    for (position = 0; position < std::min<std::size_t>(text.size(), 64); ++position) {
        CheckToken(text, parser.ParseStep(text, position).value(), position);
    }
}

void CheckAll(std::u16string_view text, const WordParser& parser) {
    std::vector<TextToken> tokens;
    parser.ParseAll(text, tokens);
    std::size_t position = 0;
    for (const TextToken& token : tokens) {
        CheckToken(text, token, position);
        position = static_cast<std::size_t>(token.end);
    }
    Require(position == text.size());
}

void CheckKeys(std::u16string_view text, std::int32_t langId) {
    const std::u16string folded = FoldBlanksAndCodes(text);
    Require(folded.size() <= text.size() && FoldBlanksAndCodes(folded) == folded);
    Require(folded.find(u"  ") == folded.npos);
    const std::u16string longest = ToIndex(text, langId, 0x7FFFFFFF);
    Require(longest.size() <= text.size());
    for (std::int32_t size = 1; size <= 8; ++size) {
        const std::u16string key = ToIndex(text, langId, size);
        Require(key.size() <= static_cast<std::size_t>(size) && longest.starts_with(key));
        Require(key.empty() == longest.empty() && (key.empty() || key.back() != u' '));
    }
    const std::size_t length = std::min(text.find(u'\0'), text.size());
    Require(SimplifyString(text, langId).size() == length);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    const std::int32_t langId = data[0] | data[1] << 8;
    const std::u16string text = TextFrom(data + 2, size - 2);
    const WordParser parser(langId);
    CheckStepWalk(text, parser);
    CheckAll(text, parser);
    CheckKeys(text, langId);
    return 0;
}
