#pragma once

#include <compare>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace generalutilities {

/// Stands for texts that are too many to keep: equal texts have equal digests, and others differ.
/// The 128 bits depend on a secret drawn for each object, so that nobody can write two texts into a
/// project that are taken for one; by chance it happens to one pair of 10^38.
class TextDigest {
  public:
    struct Value {
        std::uint64_t first = 0;
        std::uint64_t second = 0;
        auto operator<=>(const Value&) const = default;
    };

    TextDigest();

    /// The digest of texts one behind the other; where one ends counts.
    Value Of(std::initializer_list<std::u16string_view> texts) const;

  private:
    std::uint64_t secret[6];
};

}  // namespace generalutilities
