#pragma once

#include <generalutilities/code_pages.h>

#include "platform/code_pages/page_content.h"
#include "platform/code_pages/row_tables.h"

#include <array>
#include <vector>

namespace generalutilities::code_pages {

/// A page of one byte a character, as constants: one array read a character in both directions.
struct SingleByteTable {
    explicit SingleByteTable(const PageContent& page);

    std::array<char16_t, 256> characters;  ///< U+FFFD where there is none
    unsigned char questionMark;
    std::vector<unsigned char> bytes;  ///< by code unit; `questionMark` where there is none
    bool holdsAscii;                   ///< all bytes below 0x80 stand for themselves

    // The same once more by rows: of the bytes, of the characters below U+0100, and of those with
    // the upper half that has most of the others; and quotation marks and dashes.
    ByteRows byteRows;
    CharacterRows latinRows;
    CharacterRows scriptRows;
    PunctuationRows punctuation;
};

class SingleByteConverter final : public CodePageConverter {
  public:
    explicit SingleByteConverter(const SingleByteTable& constants) : table(constants) {}

    std::size_t MeasureUnits(std::string_view bytes) override { return bytes.size(); }
    void ToUnits(std::string_view bytes, char16_t* units) override;
    std::size_t MeasureBytes(std::u16string_view text) override { return text.size(); }
    void ToBytes(std::u16string_view text, char* bytes) override;
    std::size_t FindUndefinedBytes(std::string_view bytes) override;
    std::size_t FindForeignUnit(std::u16string_view text) override;
    std::size_t OffsetOfUnit(std::string_view bytes, std::size_t index) override;

  private:
    const SingleByteTable& table;
};

}  // namespace generalutilities::code_pages
