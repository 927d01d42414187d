#include "platform/code_pages/single_byte_page.h"

#include "platform/code_pages/ascii_blocks.h"

#include <algorithm>

namespace generalutilities::code_pages {

namespace {

constexpr char16_t Replacement = 0xFFFD;

}  // namespace

SingleByteTable::SingleByteTable(const PageContent& page)
    : characters(page.single), bytes(page.codes.size()), holdsAscii(true) {
    std::replace(characters.begin(), characters.end(), PageContent::Undefined, Replacement);
    const std::uint16_t mark = page.codes[u'?'];
    questionMark = static_cast<unsigned char>(mark == PageContent::NoCode ? '?' : mark);
    for (std::size_t unit = 0; unit < bytes.size(); ++unit) {
        const std::uint16_t code = page.codes[unit];
        bytes[unit] = code == PageContent::NoCode ? questionMark : static_cast<unsigned char>(code);
    }
    for (std::size_t byte = 0; byte < 0x80; ++byte) {
        holdsAscii = holdsAscii && characters[byte] == byte;
    }
}

namespace {

/// One array read a character. The tables and the result cannot overlap, which the compiler would
/// otherwise have to assume of bytes.
template <class Entry, class From, class To>
void LookUp(const Entry* __restrict table, const From* __restrict from, std::size_t length,
            To* __restrict to) {
    std::size_t i = 0;
    for (; i + 8 <= length; i += 8) {
        to[i] = static_cast<To>(table[from[i]]);
        to[i + 1] = static_cast<To>(table[from[i + 1]]);
        to[i + 2] = static_cast<To>(table[from[i + 2]]);
        to[i + 3] = static_cast<To>(table[from[i + 3]]);
        to[i + 4] = static_cast<To>(table[from[i + 4]]);
        to[i + 5] = static_cast<To>(table[from[i + 5]]);
        to[i + 6] = static_cast<To>(table[from[i + 6]]);
        to[i + 7] = static_cast<To>(table[from[i + 7]]);
    }
    for (; i < length; ++i) {
        to[i] = static_cast<To>(table[from[i]]);
    }
}

}  // namespace

// Blocks of ASCII go by vectors; any other block, and the rest, goes through the table.

void SingleByteConverter::ToUnits(std::string_view bytes, char16_t* units) {
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t ascii =
            table.holdsAscii ? WidenAscii(bytes.data() + i, bytes.size() - i, units + i) : 0;
        i += ascii;
        const std::size_t length = std::min(bytes.size() - i, PlainRun(ascii));
        LookUp(table.characters.data(), reinterpret_cast<const unsigned char*>(bytes.data()) + i,
               length, units + i);
        i += length;
    }
}

void SingleByteConverter::ToBytes(std::u16string_view text, char* bytes) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t ascii =
            table.holdsAscii ? NarrowAscii(text.data() + i, text.size() - i, bytes + i) : 0;
        i += ascii;
        const std::size_t length = std::min(text.size() - i, PlainRun(ascii));
        LookUp(table.bytes.data(), text.data() + i, length, bytes + i);
        i += length;
    }
}

std::size_t SingleByteConverter::FindUndefinedBytes(std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (table.characters[static_cast<unsigned char>(bytes[i])] == Replacement) {
            return i;
        }
    }
    return NotFound;
}

std::size_t SingleByteConverter::FindForeignUnit(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (table.holdsAscii) {
            i += SkipAscii(text.data() + i, text.size() - i);
        }
        if (i == text.size()) {
            break;
        }
        const unsigned char byte = table.bytes[text[i]];
        if (byte == table.questionMark && table.characters[byte] != text[i]) {
            return i;
        }
    }
    return NotFound;
}

std::size_t SingleByteConverter::OffsetOfUnit(std::string_view bytes, std::size_t index) {
    return std::min(bytes.size(), index);
}

}  // namespace generalutilities::code_pages
