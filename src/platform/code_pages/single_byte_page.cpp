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

// Blocks of ASCII go by vectors; any other block, and the rest, goes through the table.

void SingleByteConverter::ToUnits(std::string_view bytes, char16_t* units) {
    for (std::size_t i = 0; i < bytes.size();) {
        if (table.holdsAscii) {
            i += WidenAscii(bytes.data() + i, bytes.size() - i, units + i);
        }
        for (const std::size_t end = std::min(bytes.size(), i + AsciiBlock); i < end; ++i) {
            units[i] = table.characters[static_cast<unsigned char>(bytes[i])];
        }
    }
}

void SingleByteConverter::ToBytes(std::u16string_view text, char* bytes) {
    for (std::size_t i = 0; i < text.size();) {
        if (table.holdsAscii) {
            i += NarrowAscii(text.data() + i, text.size() - i, bytes + i);
        }
        for (const std::size_t end = std::min(text.size(), i + AsciiBlock); i < end; ++i) {
            bytes[i] = static_cast<char>(table.bytes[text[i]]);
        }
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
