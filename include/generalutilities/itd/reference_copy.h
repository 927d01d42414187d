#pragma once

#include <generalutilities/itd/envelope.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace generalutilities {

/// Tells whether a file is a copy of a reference file, up to the compressed text part. The
/// reference may be gone meanwhile.
class ReferenceCopy {
  public:
    /// Takes note of a reference with this envelope; false when it cannot be read.
    bool Remember(std::u16string_view path, const ItdArchiveHeader& archive);

    enum class Answer {
        IsCopy,
        IsOther,
        IsReference,  ///< the very file, by whatever name
        Unreadable,   ///< it cannot be opened or read
    };
    Answer Compare(std::u16string_view path) const;

    std::uint32_t LengthFieldOffset() const { return lengthFieldOffset; }

  private:
    std::u16string reference;
    std::uint32_t lengthFieldOffset = 0;
    std::vector<std::uint32_t> sums;  ///< of each block before `lengthFieldOffset`
};

}  // namespace generalutilities
