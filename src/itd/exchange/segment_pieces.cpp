#include <generalutilities/itd/segment_pieces.h>

#include "text/decimal.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace generalutilities {
namespace {

constexpr std::u16string_view Digits = u"0123456789";

/// The unit of a backslash, "u" and four digits at `position`; nothing when these are not there.
std::optional<char16_t> EscapedUnit(std::u16string_view text, std::size_t position) {
    std::string digits;
    for (const char16_t unit : text.substr(std::min(position + 2, text.size()), 4)) {
        digits += unit < 0x80 ? static_cast<char>(unit) : '?';
    }
    std::uint16_t unit = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
    return digits.size() == 4 && error == std::errc() && end == digits.data() + 4
               ? std::optional(static_cast<char16_t>(unit))
               : std::nullopt;
}

}  // namespace

void AppendText(SegmentPieces& pieces, std::u16string_view text) {
    if (text.empty()) {
        return;
    }
    if (pieces.empty() || pieces.back().code != 0) {
        pieces.emplace_back();
    }
    pieces.back().text += text;
}

void AppendCode(SegmentPieces& pieces, std::uint32_t code) {
    pieces.push_back({{}, code});
}

bool IsHalfPair(std::u16string_view text, std::size_t position, std::size_t& length) {
    length = 1;
    if ((text[position] & 0xF800) != 0xD800) {
        return false;
    }
    const bool isPair = (text[position] & 0xFC00) == 0xD800 && position + 1 < text.size() &&
                        (text[position + 1] & 0xFC00) == 0xDC00;
    length = isPair ? 2 : 1;
    return !isPair;
}

std::u16string SegmentTextOf(const SegmentPieces& pieces) {
    constexpr char16_t Hex[] = u"0123456789ABCDEF";
    std::u16string result;
    for (const SegmentPiece& piece : pieces) {
        if (piece.code != 0) {
            result += u'{';
            AppendDecimal(result, piece.code);
            result += u'}';
        }
        std::size_t length = 1;
        for (std::size_t i = 0; i < piece.text.size(); i += length) {
            const char16_t unit = piece.text[i];
            if (IsHalfPair(piece.text, i, length) || unit == 0) {
                result += {u'\\',
                           u'u',
                           Hex[unit >> 12],
                           Hex[unit >> 8 & 0xF],
                           Hex[unit >> 4 & 0xF],
                           Hex[unit & 0xF]};
                continue;
            }
            if (unit == u'\\' || unit == u'{' || unit == u'}') {
                result += u'\\';
            }
            result.append(piece.text, i, length);
        }
    }
    return result;
}

std::string ParseSegmentText(std::u16string_view text, SegmentPieces& pieces) {
    pieces.clear();
    const auto at = [](std::size_t position) {
        return " at position " + std::to_string(position + 1);
    };
    std::size_t position = 0;
    while (position < text.size()) {
        const std::size_t plain = std::min(text.find_first_of(u"\\{}", position), text.size());
        AppendText(pieces, text.substr(position, plain - position));
        if (plain == text.size()) {
            break;
        }
        position = plain;
        if (text[position] == u'{') {
            const std::size_t end =
                std::min(text.find_first_not_of(Digits, position + 1), text.size());
            const std::uint32_t code = ParseNumber(text.substr(position + 1, end - position - 1));
            if (code == 0 || end == text.size() || text[end] != u'}') {
                return "the \"{\"" + at(position) +
                       " begins no code such as {1}; a brace is \"\\{\"";
            }
            AppendCode(pieces, code);
            position = end + 1;
        } else if (text[position] == u'}') {
            return "the \"}\"" + at(position) + " ends no code; a brace is \"\\}\"";
        } else if (position + 1 < text.size() &&
                   std::u16string_view(u"\\{}").find(text[position + 1]) != text.npos) {
            AppendText(pieces, text.substr(position + 1, 1));
            position += 2;
        } else if (const auto unit = EscapedUnit(text, position);
                   unit && text[position + 1] == u'u') {
            AppendText(pieces, {&*unit, 1});
            position += 6;
        } else {
            return "the backslash" + at(position) + " stands for nothing; a backslash is \"\\\\\"";
        }
    }
    return {};
}

std::uint32_t ParseNumber(std::u16string_view digits) {
    if (digits.empty() || digits.size() > 10 || digits.front() == u'0' ||
        digits.find_first_not_of(Digits) != digits.npos) {
        return 0;
    }
    std::uint64_t number = 0;
    for (const char16_t digit : digits) {
        number = number * 10 + static_cast<std::uint64_t>(digit - u'0');
    }
    return number <= UINT32_MAX ? static_cast<std::uint32_t>(number) : 0;
}

}  // namespace generalutilities
