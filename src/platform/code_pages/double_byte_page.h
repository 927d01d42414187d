#pragma once

#include <generalutilities/code_pages.h>

#include "platform/code_pages/page_content.h"

#include <array>
#include <vector>

namespace generalutilities::code_pages {

/// A page of one or two bytes a character, as constants. Bytes below 0x80 stand for themselves.
struct DoubleByteTable {
    explicit DoubleByteTable(const PageContent& page);

    bool Holds(char16_t unit) const { return codes[unit] != '?' || unit == u'?'; }

    std::array<char16_t, 256> single;  ///< `PageContent::Lead` where a pair begins
    std::vector<char16_t> pairs;       ///< by `PageContent::PairIndex`
    /// By code unit, as the bytes lie in memory: the second byte of a pair, which is never 0, on
    /// top. A unit without a code has that of the question mark.
    std::vector<std::uint16_t> codes;
};

/// Of two bytes that begin like a pair and are none, the second is a character of its own if it is
/// below 0x80; both together are one U+FFFD else.
class DoubleByteConverter final : public CodePageConverter {
  public:
    explicit DoubleByteConverter(const DoubleByteTable& constants) : table(constants) {}

    std::size_t MeasureUnits(std::string_view bytes) override;
    void ToUnits(std::string_view bytes, char16_t* units) override;
    std::size_t MeasureBytes(std::u16string_view text) override;
    void ToBytes(std::u16string_view text, char* bytes) override;
    std::size_t FindUndefinedBytes(std::string_view bytes) override;
    std::size_t FindForeignUnit(std::u16string_view text) override;
    std::size_t OffsetOfUnit(std::string_view bytes, std::size_t index) override;

  private:
    struct Character {
        char16_t unit;
        std::size_t length;  ///< in bytes
    };
    Character CharacterAt(std::string_view bytes, std::size_t offset) const;

    const DoubleByteTable& table;
};

}  // namespace generalutilities::code_pages
