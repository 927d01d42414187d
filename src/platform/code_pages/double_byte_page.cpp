#include "platform/code_pages/double_byte_page.h"

#include "platform/code_pages/ascii_blocks.h"

#include <algorithm>

namespace generalutilities::code_pages {

namespace {

constexpr char16_t Replacement = 0xFFFD;
constexpr std::size_t BlockSize = 256;

}  // namespace

DoubleByteTable::DoubleByteTable(const PageContent& page)
    : single(page.single), pairs(page.pairs), blocks{}, codes(BlockSize, '?') {
    std::replace(single.begin(), single.end(), PageContent::Undefined, Replacement);
    std::replace(pairs.begin(), pairs.end(), PageContent::Undefined, Replacement);
    for (std::size_t upper = 0; upper < blocks.size(); ++upper) {
        const auto first = page.codes.begin() + static_cast<std::ptrdiff_t>(upper * BlockSize);
        const auto end = first + BlockSize;
        if (std::any_of(first, end, [](auto code) { return code != PageContent::NoCode; })) {
            blocks[upper] = static_cast<std::uint32_t>(codes.size());
            std::replace_copy(first, end, std::back_inserter(codes), PageContent::NoCode,
                              std::uint16_t{'?'});
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
        for (const std::size_t end = std::min(bytes.size(), i + AsciiBlock); i < end; ++count) {
            i += CharacterAt(bytes, i).length;
        }
    }
    return count;
}

void DoubleByteConverter::ToUnits(std::string_view bytes, char16_t* units) {
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t ascii = WidenAscii(bytes.data() + i, bytes.size() - i, units);
        i += ascii;
        units += ascii;
        for (const std::size_t end = std::min(bytes.size(), i + AsciiBlock); i < end;) {
            const Character character = CharacterAt(bytes, i);
            *units++ = character.unit;
            i += character.length;
        }
    }
}

std::size_t DoubleByteConverter::MeasureBytes(std::u16string_view text) {
    std::size_t count = text.size();
    for (std::size_t i = 0; i < text.size();) {
        i += SkipAscii(text.data() + i, text.size() - i);
        for (const std::size_t end = std::min(text.size(), i + AsciiBlock); i < end; ++i) {
            count += table.CodeOf(text[i]) > 0xFF ? 1 : 0;
        }
    }
    return count;
}

void DoubleByteConverter::ToBytes(std::u16string_view text, char* bytes) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t ascii = NarrowAscii(text.data() + i, text.size() - i, bytes);
        i += ascii;
        bytes += ascii;
        for (const std::size_t end = std::min(text.size(), i + AsciiBlock); i < end; ++i) {
            const std::uint16_t code = table.CodeOf(text[i]);
            if (code > 0xFF) {
                *bytes++ = static_cast<char>(code >> 8);
            }
            *bytes++ = static_cast<char>(code & 0xFF);
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
