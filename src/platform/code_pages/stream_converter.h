#pragma once

#include <generalutilities/code_pages.h>

#include "platform/code_pages/icu_handle.h"

namespace generalutilities::code_pages {

/// A page that no small table holds: escape sequences, shifts, more than two bytes a character.
/// The ICU converter belongs to this object alone, and starts afresh at every call.
class StreamConverter final : public CodePageConverter {
  public:
    /// Null where ICU has no converter of this name.
    static std::unique_ptr<CodePageConverter> Open(const char* converterName);

    explicit StreamConverter(IcuHandle opened);

    std::size_t MeasureUnits(std::string_view bytes) override;
    void ToUnits(std::string_view bytes, char16_t* units) override;
    std::size_t MeasureBytes(std::u16string_view text) override;
    void ToBytes(std::u16string_view text, char* bytes) override;
    std::size_t FindUndefinedBytes(std::string_view bytes) override;
    std::size_t FindForeignUnit(std::u16string_view text) override;
    std::size_t OffsetOfUnit(std::string_view bytes, std::size_t index) override;

  private:
    IcuHandle converter;
    const char16_t* mark;  ///< one unit: U+FFFD where the page has it, else the question mark
};

}  // namespace generalutilities::code_pages
