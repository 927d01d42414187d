#pragma once

#include <random>
#include <string>

/// Texts of pieces in random order.
namespace generalutilities {

inline std::u16string RandomTags(std::mt19937& random,
                                 std::initializer_list<const char16_t*> pieces, std::size_t most) {
    std::u16string text;
    for (std::size_t count = random() % (most + 1); count > 0; --count) {
        text += pieces.begin()[random() % pieces.size()];
    }
    return text;
}

}  // namespace generalutilities
