// None of the bytes that are looked for here is the second byte of a character in any double-byte
// page.

#include "text/detection/excerpt.h"

#include <algorithm>

namespace generalutilities::detection {

namespace {

constexpr std::size_t ExcerptSize = 8 << 10;
constexpr std::size_t MarkupSize = 64 << 10;
constexpr std::size_t LeadSize = 512;  ///< ASCII text before the first other character

constexpr std::size_t LongestReference = 10;

bool IsBlank(char byte) {
    return byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t';
}

char LowerAscii(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

bool IsAsciiLetter(char byte) {
    return LowerAscii(byte) >= 'a' && LowerAscii(byte) <= 'z';
}

/// At most `size` bytes, cut behind a blank where one is near the end.
std::string_view Cut(std::string_view bytes, std::size_t size) {
    if (bytes.size() <= size) {
        return bytes;
    }
    std::size_t end = size;
    while (end > size - LeadSize && !IsBlank(bytes[end - 1])) {
        --end;
    }
    return bytes.substr(0, end > size - LeadSize ? end : size);
}

std::string_view FromFirstBeyondAscii(std::string_view bytes) {
    const auto first = std::ranges::find_if(bytes, [](char byte) { return (byte & 0x80) != 0; });
    const auto offset = static_cast<std::size_t>(first - bytes.begin());
    if (first == bytes.end() || offset <= LeadSize) {
        return bytes;
    }
    return bytes.substr(offset - LeadSize);
}

bool StartsWithName(std::string_view bytes, std::string_view name) {
    return bytes.size() >= name.size() &&
           std::ranges::equal(bytes.substr(0, name.size()), name, {}, LowerAscii);
}

/// The end of the tag that starts at `at`, or of the element where its content is no text.
/// 0 when no tag starts here.
std::size_t EndOfTag(std::string_view bytes, std::size_t at) {
    const std::string_view tag = bytes.substr(at + 1);
    if (tag.empty() ||
        !(IsAsciiLetter(tag[0]) || tag[0] == '/' || tag[0] == '!' || tag[0] == '?')) {
        return 0;
    }
    std::string_view last = ">";
    if (tag.starts_with("!--")) {
        last = "-->";
    } else if (StartsWithName(tag, "script")) {
        last = "</script>";
    } else if (StartsWithName(tag, "style")) {
        last = "</style>";
    }
    const auto start =
        std::search(tag.begin(), tag.end(), last.begin(), last.end(),
                    [](char byte, char sought) { return LowerAscii(byte) == sought; });
    const auto length = static_cast<std::size_t>(start - tag.begin()) + last.size();
    return at + 1 + std::min(length, tag.size());
}

/// The end of the character reference that starts at `at`; 0 when none does.
std::size_t EndOfReference(std::string_view bytes, std::size_t at) {
    const std::size_t end = bytes.substr(at, LongestReference).find(';');
    const bool named =
        end != bytes.npos && end > 1 && (IsAsciiLetter(bytes[at + 1]) || bytes[at + 1] == '#');
    return named ? at + end + 1 : 0;
}

}  // namespace

std::string_view PlainExcerpt(std::string_view bytes) {
    return Cut(FromFirstBeyondAscii(bytes), ExcerptSize);
}

std::string MarkupExcerpt(std::string_view bytes) {
    const std::string_view source = Cut(FromFirstBeyondAscii(bytes), MarkupSize);
    std::string text;
    for (std::size_t at = 0; at < source.size() && text.size() < ExcerptSize;) {
        if (source[at] == '<') {
            if (const std::size_t end = EndOfTag(source, at); end != 0) {
                text += ' ';
                at = end;
                continue;
            }
        } else if (source[at] == '&') {
            if (const std::size_t end = EndOfReference(source, at); end != 0) {
                text += ' ';
                at = end;
                continue;
            }
        }
        text += source[at++];
    }
    return text;
}

}  // namespace generalutilities::detection
