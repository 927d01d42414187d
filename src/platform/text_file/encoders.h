#pragma once

#include <cstddef>
#include <string_view>

/// The two byte forms of the export files, one bounded step at a time.
namespace generalutilities::text_file {

/// How far a step came: code units taken and bytes made.
struct EncodedStretch {
    std::size_t units = 0;
    std::size_t bytes = 0;
};

/// Room that a step needs at least; with less it may take nothing.
inline constexpr std::size_t MinimumRoom = 8;

/// The low byte of each unit.
EncodedStretch EncodeOneByte(std::u16string_view text, char* bytes, std::size_t room);

/// UTF-8 across calls: a text may end between the halves of a surrogate pair.
class Utf8Encoder {
  public:
    EncodedStretch Encode(std::u16string_view text, char* bytes, std::size_t room);
    /// What a text that ends here still owes: U+FFFD for half a pair. Gives the number of bytes.
    std::size_t Finish(char* bytes);

  private:
    char16_t waitingLead = 0;  ///< the last unit taken, if it was the first half of a pair
};

}  // namespace generalutilities::text_file
