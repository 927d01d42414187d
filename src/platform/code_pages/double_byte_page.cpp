#include "platform/code_pages/double_byte_page.h"

#include "platform/code_pages/ascii_blocks.h"

#include <algorithm>

namespace generalutilities::code_pages {

namespace {

constexpr char16_t Replacement = 0xFFFD;
/// How many bytes a code has.
std::size_t LengthOf(std::uint16_t code) {
    return code > 0xFF ? 2 : 1;
}

void Write(std::uint16_t code, char* bytes) {
    bytes[0] = static_cast<char>(code & 0xFF);
    bytes[1] = static_cast<char>(code >> 8);
}

}  // namespace

DoubleByteTable::DoubleByteTable(const PageContent& page)
    : single(page.single), pairs(page.pairs), codes(page.codes) {
    std::replace(single.begin(), single.end(), PageContent::Undefined, Replacement);
    std::replace(pairs.begin(), pairs.end(), PageContent::Undefined, Replacement);
    for (std::uint16_t& code : codes) {
        if (code == PageContent::NoCode) {
            code = '?';
        } else if (code > 0xFF) {
            code = static_cast<std::uint16_t>(code << 8 | code >> 8);
        }
    }
}

inline DoubleByteConverter::Character DoubleByteConverter::CharacterAt(std::string_view bytes,
                                                                       std::size_t offset) const {
    const auto lead = static_cast<unsigned char>(bytes[offset]);
    const char16_t unit = table.single[lead];
    if (unit != PageContent::Lead) {
        return {unit, 1};
    }
    if (offset + 1 == bytes.size()) {
        return {Replacement, 1};
    }
    const auto trail = static_cast<unsigned char>(bytes[offset + 1]);
    const char16_t pair = table.pairs[PageContent::PairIndex(lead, trail)];
    return {pair, pair != Replacement || trail >= 0x80 ? std::size_t{2} : std::size_t{1}};
}

std::size_t DoubleByteConverter::MeasureUnits(std::string_view bytes) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t ascii = SkipAscii(bytes.data() + i, bytes.size() - i);
        i += ascii;
        count += ascii;
        for (const std::size_t end = std::min(bytes.size(), i + PlainRun(ascii)); i < end;
             ++count) {
            i += CharacterAt(bytes, i).length;
        }
    }
    return count;
}

void DoubleByteConverter::ToUnits(std::string_view bytes, char16_t* units) {
    const char* next = bytes.data();
    const char* const end = next + bytes.size();
    // Counted from the pair 0x8000.
    const char16_t* const pairs = table.pairs.data();
    while (next != end) {
        const std::size_t ascii = WidenAscii(next, static_cast<std::size_t>(end - next), units);
        next += ascii;
        units += ascii;
        // ASCII and whole pairs go the short way; how long a character is must not wait for the
        // table.
        const char* const stop =
            next + std::min(static_cast<std::size_t>(end - next), PlainRun(ascii));
        while (next < stop) {
            if (const auto lead = static_cast<unsigned char>(next[0]); lead < 0x80) {
                *units++ = lead;
                ++next;
                continue;
            }
            if (next + 1 != end) {
                const std::size_t code = static_cast<std::size_t>(next[0] & 0xFF) << 8 |
                                         static_cast<std::size_t>(next[1] & 0xFF);
                if (const char16_t pair = pairs[code - 0x8000]; pair != Replacement) [[likely]] {
                    *units++ = pair;
                    next += 2;
                    continue;
                }
            }
            const Character character =
                CharacterAt({next, static_cast<std::size_t>(end - next)}, 0);
            *units++ = character.unit;
            next += character.length;
        }
    }
}

std::size_t DoubleByteConverter::MeasureBytes(std::u16string_view text) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t ascii = SkipAscii(text.data() + i, text.size() - i);
        i += ascii;
        count += ascii;
        for (const std::size_t end = std::min(text.size(), i + PlainRun(ascii)); i < end; ++i) {
            count += LengthOf(table.codes[text[i]]);
        }
    }
    return count;
}

void DoubleByteConverter::ToBytes(std::u16string_view text, char* bytes) {
    const std::uint16_t* const codes = table.codes.data();
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t ascii = NarrowAscii(text.data() + i, text.size() - i, bytes);
        i += ascii;
        bytes += ascii;
        // Both bytes are written of every code, and the next code comes over the second one of a
        // single byte; only behind the last code there may be no room.
        const std::size_t end = std::min(text.size(), i + PlainRun(ascii));
        const std::size_t both = std::min(end, text.size() - 1);
        for (; i + 2 <= both; i += 2) {
            const std::uint16_t first = codes[text[i]];
            const std::uint16_t second = codes[text[i + 1]];
            const std::size_t firstLength = LengthOf(first);
            Write(first, bytes);
            Write(second, bytes + firstLength);
            bytes += firstLength + LengthOf(second);
        }
        for (; i < both; ++i) {
            const std::uint16_t code = codes[text[i]];
            Write(code, bytes);
            bytes += LengthOf(code);
        }
        if (i < end) {
            char last[2];
            Write(codes[text[i]], last);
            std::copy_n(last, LengthOf(codes[text[i++]]), bytes);
        }
    }
}

std::size_t DoubleByteConverter::FindUndefinedBytes(std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size();) {
        const Character character = CharacterAt(bytes, i);
        if (character.unit == Replacement) {
            return i;
        }
        i += character.length;
    }
    return NotFound;
}

std::size_t DoubleByteConverter::FindForeignUnit(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        i += SkipAscii(text.data() + i, text.size() - i);
        if (i < text.size() && !table.Holds(text[i])) {
            return i;
        }
    }
    return NotFound;
}

std::size_t DoubleByteConverter::OffsetOfUnit(std::string_view bytes, std::size_t index) {
    std::size_t offset = 0;
    for (; index > 0 && offset < bytes.size(); --index) {
        offset += CharacterAt(bytes, offset).length;
    }
    return offset;
}

}  // namespace generalutilities::code_pages
