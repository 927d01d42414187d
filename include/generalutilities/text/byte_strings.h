#pragma once

#include <generalutilities/code_pages.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <unordered_map>

/// Conversion between Unicode text and byte strings for clients that have only strings to hold
/// bytes in.
namespace generalutilities {

/// How a string of code units holds bytes.
enum class ByteTextForm {
    AnsiText,  ///< text that gives the bytes when it is encoded in the system's ANSI code page
    Widened    ///< a code unit for each byte; the high half does not count, and is 0 in results
};

/// The code pages that are not converted: a string of theirs is copied as it is.
constexpr bool IsPassThrough(std::int32_t codePage) {
    return codePage == 0 || codePage == 1200 || codePage == 50000;
}

/// Converts and keeps a converter for each code page that was asked for. For one thread at a time.
///
/// Each conversion asks once for room of the size of the result and says whether there is one:
/// without a converter, and when nothing comes of the input, it is false and no room was asked for.
/// Room that cannot be given is null and ends in `std::bad_alloc`.
class ByteStringConversion {
  public:
    using RoomForUnits = std::function<char16_t*(std::size_t units)>;
    using RoomForBytes = std::function<char*(std::size_t bytes)>;

    bool ToUnicode(std::int32_t codePage, std::string_view bytes, const RoomForUnits& room);
    bool ToUnicode(std::int32_t codePage, std::u16string_view byteText, ByteTextForm form,
                   const RoomForUnits& room);

    bool FromUnicode(std::int32_t codePage, std::u16string_view text, const RoomForBytes& room);
    bool FromUnicode(std::int32_t codePage, std::u16string_view text, ByteTextForm form,
                     const RoomForUnits& room);

  private:
    /// Null for a page that is not served, of which nothing is kept.
    CodePageConverter* Converter(std::int32_t codePage);

    std::unordered_map<std::int32_t, std::unique_ptr<CodePageConverter>> converters;
};

}  // namespace generalutilities
