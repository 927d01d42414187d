#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// One code page as plain data: what each byte, and each pair of bytes, decodes to.
///
/// A converter is asked about every byte once, when its page is first used; after that decoding
/// reads constants, keeps no state from call to call, and needs no lock. Bytes below 0x80 stand for
/// themselves in every page served: the IBM forms of some converters, which turn the control
/// characters round, and the won sign of 1361 are not what the Windows pages of these numbers do.
namespace generalutilities::code_pages {

class DecodeTable {
  public:
    /// From the converter of this name; null where there is none.
    static std::unique_ptr<const DecodeTable> FromIcu(const char* converterName);
    static std::unique_ptr<const DecodeTable> FromIconv(const char* charsetName);
    /// The symbol page: 0x20 to 0xFF lie at U+F020 to U+F0FF of the private use area.
    static std::unique_ptr<const DecodeTable> Symbol();

    void AppendDecoded(std::string_view bytes, std::u16string& text) const;

  private:
    /// Stands in `single` for a byte that begins a pair, and in `pairs` for an undefined pair.
    /// No page maps anything to this noncharacter.
    static constexpr char16_t None = 0xFFFF;
    static constexpr char16_t Replacement = 0xFFFD;

    template <class Decoder>
    static std::unique_ptr<const DecodeTable> Build(Decoder& decoder);
    static std::size_t PairIndex(unsigned char lead, unsigned char trail) {
        return static_cast<std::size_t>(lead - 0x80) << 8 | trail;
    }

    std::array<char16_t, 256> single{};
    std::vector<char16_t> pairs;  ///< by `PairIndex`; empty for a page of single bytes
};

}  // namespace generalutilities::code_pages
