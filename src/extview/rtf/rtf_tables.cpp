#include "extview/rtf/rtf_tables.h"

#include "extview/rtf/byte_scan.h"
#include "extview/rtf/character_set.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace generalutilities::rtf {

namespace {

constexpr std::size_t Npos = std::string_view::npos;

/// Reads the digits at `offset` and steps behind them; nothing if there are none.
std::optional<std::int32_t> ReadNumber(std::string_view bytes, std::size_t& offset) {
    constexpr std::int64_t Limit = std::numeric_limits<std::int32_t>::max();
    const std::size_t start = offset;
    std::int64_t value = 0;
    for (; offset < bytes.size() && bytes[offset] >= '0' && bytes[offset] <= '9'; ++offset) {
        value = std::min(value * 10 + (bytes[offset] - '0'), Limit);
    }
    if (offset == start) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(value);
}

/// The number of the style whose entry begins, behind its first backslash, with `word`; nothing if
/// it is no paragraph or character style.
std::optional<std::int32_t> StyleNumber(std::string_view word) {
    std::size_t digits = 0;
    if (word.starts_with("s")) {
        digits = 1;
    } else if (word.starts_with("cs")) {
        digits = 2;
    } else if (word.starts_with("*")) {
        const std::size_t behind = word.find_first_not_of("\r\n", 1);
        if (behind == Npos || !word.substr(behind).starts_with("\\cs")) {
            return std::nullopt;
        }
        digits = behind + 3;
    } else {
        return std::nullopt;
    }
    return ReadNumber(word, digits).value_or(0);
}

}  // namespace

std::size_t GroupWalk::Advance(std::string_view bytes) {
    std::size_t i = 0;
    while (i < bytes.size() && depth > 0) {
        if (!escaped) {
            i += PlainLength(bytes.substr(i));
            if (i == bytes.size()) {
                break;
            }
        }
        const char byte = bytes[i++];
        const bool counts = !escaped;
        escaped = byte == '\\' && !escaped;
        if (byte == '{' && counts) {
            ++depth;
        } else if (byte == '}' && counts) {
            --depth;
        }
    }
    return i;
}

void ReadFontTable(std::string_view table, FontCodePages& fontCodePages) {
    constexpr std::string_view Font = "\\f";
    constexpr std::string_view CharacterSet = "\\fcharset";
    std::size_t offset = 0;
    for (;;) {
        std::size_t found = table.find(Font, offset);
        if (found == Npos) {
            return;
        }
        std::size_t behind = found + Font.size();
        if (const auto font = ReadNumber(table, behind)) {
            found = table.find(CharacterSet, behind);
            if (found == Npos) {
                return;
            }
            behind = found + CharacterSet.size();
            if (const auto characterSet = ReadNumber(table, behind)) {
                // Tables are mostly in order, and the end is then where the next entry belongs.
                fontCodePages.insert_or_assign(fontCodePages.end(), *font,
                                               CodePageOfCharacterSet(*characterSet));
            }
        }
        offset = table.find(';', found);
        if (offset == Npos) {
            return;
        }
    }
}

void ReadStyleSheet(std::string_view sheet, StyleNames& styleNames) {
    std::string_view name;
    std::size_t offset = 0;
    while ((offset = sheet.find('{', offset)) != Npos) {
        ++offset;
        GroupWalk walk;
        const std::size_t length = walk.Advance(sheet.substr(offset));
        const std::string_view entry = sheet.substr(offset, walk.IsClosed() ? length - 1 : length);
        offset += length;

        const std::size_t backslash = entry.find('\\');
        if (backslash == Npos) {
            continue;
        }
        const auto number = StyleNumber(entry.substr(backslash + 1));
        if (!number) {
            continue;
        }
        if (const std::size_t end = entry.rfind(';'); end != Npos) {
            const std::string_view before = entry.substr(0, end);
            const std::size_t blank = before.find_last_of(" \r\n");
            name = blank == Npos ? before : before.substr(blank + 1);
        }
        styleNames.try_emplace(styleNames.end(), *number, name);
    }
}

}  // namespace generalutilities::rtf
