#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

/// Windows code pages by number: which ones are served, and converters between one of them and
/// UTF-16. docs/code-pages.md says what serves each.
///
/// A converter never approximates: a character is in a page when its bytes decode to the same
/// character again. What a page cannot hold becomes a question mark for each code unit, or U+FFFD
/// in the Unicode encodings; bytes without a character become U+FFFD. Every call stands alone: half
/// a character or an open escape sequence at the end of one call is no part of the next.
namespace generalutilities {

/// The system's ANSI code page, a constant of this build.
inline constexpr std::uint32_t SystemAnsiCodePage = 1252;

/// What a converter of a page stands on.
enum class CodePageService {
    None,    ///< the number is known and nothing serves it: such a page behaves as an unknown one
    Icu,     ///< an ICU converter
    Iconv,   ///< a charset of the C library
    BuiltIn  ///< a rule of our own
};

/// A number that is known, and what serves it.
struct CodePageDescription {
    std::uint32_t number;
    CodePageService service;
    const char* converter;  ///< its name in ICU or iconv; empty for the other services
    const char* name;       ///< in English
};

/// All numbers that are known, in ascending order.
std::span<const CodePageDescription> KnownCodePages();

/// Converts between one code page and UTF-16. To be used by one thread at a time; converters of one
/// page on different threads do not disturb each other.
///
/// Conversion is a matter of two calls, one to measure and one to convert into room of that size.
class CodePageConverter {
  public:
    static constexpr std::size_t NotFound = static_cast<std::size_t>(-1);

    virtual ~CodePageConverter() = default;

    /// How many code units the bytes make.
    virtual std::size_t MeasureUnits(std::string_view bytes) = 0;
    /// Writes as many units as `MeasureUnits` says.
    virtual void ToUnits(std::string_view bytes, char16_t* units) = 0;

    /// How many bytes the text makes.
    virtual std::size_t MeasureBytes(std::u16string_view text) = 0;
    /// Writes as many bytes as `MeasureBytes` says.
    virtual void ToBytes(std::u16string_view text, char* bytes) = 0;

    /// The offset of the first bytes that stand for no character; `NotFound` when all do.
    virtual std::size_t FindUndefinedBytes(std::string_view bytes) = 0;
    /// The index of the first code unit that the page cannot hold; `NotFound` when it holds all.
    virtual std::size_t FindForeignUnit(std::u16string_view text) = 0;
    /// The offset of the bytes that make the code unit at `index`; the number of bytes behind the
    /// last one.
    virtual std::size_t OffsetOfUnit(std::string_view bytes, std::size_t index) = 0;
};

/// A converter of this page; null when the page is not served. Throws `std::bad_alloc`.
std::unique_ptr<CodePageConverter> OpenCodePage(std::uint32_t number);

}  // namespace generalutilities
