// Index keys: a text without its inline codes and numbers, from the first word to the last.

#include <generalutilities/text/words.h>

#include "text/word_scan.h"

#include <algorithm>

namespace generalutilities {

std::u16string FoldBlanksAndCodes(std::u16string_view text) {
    std::u16string result(text);  // never grows, so the result is written over the copy
    std::size_t length = 0;
    std::size_t backslashes = 0;
    bool behindBlank = false;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t code = backslashes % 2 == 0 ? PlaceholderLength(text, i) : 0;
        const bool blank = code > 0 || text[i] == u' ';
        if (!blank) {
            result[length++] = text[i];
        } else if (!behindBlank) {
            result[length++] = u' ';
        }
        if (text[i] != u' ') {  // blanks between backslashes and a brace do not count
            backslashes = text[i] == u'\\' ? backslashes + 1 : 0;
        }
        behindBlank = blank;
        i += code > 0 ? code : 1;
    }
    result.resize(length);
    return result;
}

namespace {

/// Takes the pieces of a key and cuts at its size. A space is written only when a code unit behind
/// it has room, and spaces that meet become one.
class KeyWriter {
  public:
    explicit KeyWriter(std::size_t keySize) : size(keySize) {}

    void Add(std::u16string_view piece) {
        for (const char16_t unit : piece) {
            if (unit == u' ' && !key.empty() && key.back() == u' ') {
                continue;
            }
            full = full || key.size() >= (unit == u' ' ? size - 1 : size);
            if (full) {
                return;
            }
            key.push_back(unit);
        }
    }

    std::u16string key;

  private:
    std::size_t size;
    bool full = false;
};

}  // namespace

std::u16string ToIndex(std::u16string_view text, std::int32_t langId, std::int32_t indexSize) {
    if (indexSize <= 0) {
        return {};
    }
    const std::u16string folded = FoldBlanksAndCodes(text.substr(0, text.find(u'\0')));
    std::vector<TextToken> tokens;
    WordParser(langId).ParseAll(folded, tokens);

    const auto isWord = [](const TextToken& token) {
        return token.type == qlnwtWord || token.type == qlnwtDBCS;
    };
    const auto first = std::find_if(tokens.begin(), tokens.end(), isWord);
    const auto end = std::find_if(tokens.rbegin(), tokens.rend(), isWord).base();
    const auto size = static_cast<std::size_t>(indexSize);
    KeyWriter writer(size);
    writer.key.reserve(std::min(size, folded.size()));
    for (auto token = first; token < end; ++token) {
        if (token->type == qlnwtCode) {
            writer.Add(u" ");
        } else if (token->type != qlnwtDigit) {
            writer.Add(std::u16string_view(folded).substr(
                static_cast<std::size_t>(token->first),
                static_cast<std::size_t>(token->end - token->first)));
        }
    }
    return writer.key;
}

}  // namespace generalutilities
