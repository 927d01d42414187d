#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

/// What the reader takes from the head of a file: the fonts' code pages and the styles' names.
namespace generalutilities::rtf {

/// Walks bytes to the brace that closes a group whose opening brace has been passed. A brace with
/// an odd number of backslashes directly before it is none. The bytes may come in pieces.
class GroupWalk {
  public:
    /// The number of bytes up to and with the closing brace, or all of them if it is not among
    /// them.
    std::size_t Advance(std::string_view bytes);
    bool IsClosed() const { return depth == 0; }

  private:
    std::size_t depth = 1;
    bool escaped = false;  ///< an odd number of backslashes stands directly before the next byte
};

/// Font number to code page; -1 for a character set that is not known.
using FontCodePages = std::map<std::int32_t, std::int32_t>;
/// Style number to name. Styles of all kinds share one space of numbers.
using StyleNames = std::map<std::int32_t, std::string>;

/// Reads what stands behind `\fonttbl` in its group. A later entry for a font replaces an earlier
/// one.
void ReadFontTable(std::string_view table, FontCodePages& fontCodePages);

/// Reads what stands behind `\stylesheet` in its group. A number keeps its first name.
void ReadStyleSheet(std::string_view sheet, StyleNames& styleNames);

}  // namespace generalutilities::rtf
