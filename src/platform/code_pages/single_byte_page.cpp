#include "platform/code_pages/single_byte_page.h"

#include "platform/code_pages/ascii_blocks.h"

#include <algorithm>

namespace generalutilities::code_pages {

namespace {

constexpr char16_t Replacement = 0xFFFD;

/// How far to go by rows before looking for ASCII again: rows are fast with ASCII, too.
constexpr std::size_t RowRun = 1024;

std::array<char16_t, 256> Characters(const PageContent& page) {
    auto characters = page.single;
    std::replace(characters.begin(), characters.end(), PageContent::Undefined, Replacement);
    return characters;
}

unsigned char QuestionMark(const PageContent& page) {
    const std::uint16_t mark = page.codes[u'?'];
    return static_cast<unsigned char>(mark == PageContent::NoCode ? '?' : mark);
}

std::vector<unsigned char> Bytes(const PageContent& page) {
    const unsigned char questionMark = QuestionMark(page);
    std::vector<unsigned char> bytes;
    bytes.reserve(page.codes.size());
    for (const std::uint16_t code : page.codes) {
        bytes.push_back(code == PageContent::NoCode ? questionMark
                                                    : static_cast<unsigned char>(code));
    }
    return bytes;
}

bool HoldsAscii(const std::array<char16_t, 256>& characters) {
    for (std::size_t byte = 0; byte < 0x80; ++byte) {
        if (characters[byte] != byte) {
            return false;
        }
    }
    return true;
}

/// Of the upper halves the one of which most characters lie in rows, beside those that have tables
/// of their own.
CharacterRows ScriptRows(const SingleByteTable& table) {
    CharacterRows best(1, table.bytes, table.characters);
    for (unsigned upper = 2; upper < 0x100; ++upper) {
        const CharacterRows rows(static_cast<std::uint8_t>(upper), table.bytes, table.characters);
        if (upper != PunctuationRows::Upper && rows.count > best.count) {
            best = rows;
        }
    }
    return best;
}

}  // namespace

SingleByteTable::SingleByteTable(const PageContent& page)
    : characters(Characters(page)),
      questionMark(QuestionMark(page)),
      bytes(Bytes(page)),
      holdsAscii(HoldsAscii(characters)),
      byteRows(characters),
      latinRows(0, bytes, characters),
      scriptRows(ScriptRows(*this)),
      punctuation(bytes, characters) {}

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

// Blocks of ASCII are copied; others go by rows, and what is left goes through the table. A page
// without ASCII has nothing in rows.

void SingleByteConverter::ToUnits(std::string_view bytes, char16_t* units) {
    const auto* const raw = reinterpret_cast<const unsigned char*>(bytes.data());
    std::size_t i = 0;
    while (table.holdsAscii && i < bytes.size()) {
        i += WidenAscii(bytes.data() + i, bytes.size() - i, units + i);
        if (i == bytes.size()) {
            return;
        }
        const std::size_t length = std::min(bytes.size() - i, RowRun);
        const std::size_t done =
            DecodeByRows(table.byteRows, table.characters, bytes.data() + i, length, units + i);
        LookUp(table.characters.data(), raw + i + done, length - done, units + i + done);
        i += length;
    }
    LookUp(table.characters.data(), raw + i, bytes.size() - i, units + i);
}

void SingleByteConverter::ToBytes(std::u16string_view text, char* bytes) {
    std::size_t i = 0;
    while (table.holdsAscii && i < text.size()) {
        i += NarrowAscii(text.data() + i, text.size() - i, bytes + i);
        if (i == text.size()) {
            return;
        }
        const std::size_t length = std::min(text.size() - i, RowRun);
        const std::size_t done =
            EncodeByRows(table.latinRows, table.scriptRows, table.punctuation, table.bytes.data(),
                         text.data() + i, length, bytes + i);
        LookUp(table.bytes.data(), text.data() + i + done, length - done, bytes + i + done);
        i += length;
    }
    LookUp(table.bytes.data(), text.data() + i, text.size() - i, bytes + i);
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
