#include "extview/text_digest.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <random>

namespace generalutilities {

namespace {

__extension__ using Product = unsigned __int128;

/// Both halves of a product, folded onto each other.
std::uint64_t Mix(std::uint64_t left, std::uint64_t right) {
    const Product product = static_cast<Product>(left) * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

}  // namespace

TextDigest::TextDigest() {
    std::random_device random;
    for (std::uint64_t& word : secret) {
        word = std::uint64_t{random()} << 32 | random();
    }
}

TextDigest::Value TextDigest::Of(std::initializer_list<std::u16string_view> texts) const {
    Value value{secret[0], secret[1]};
    const auto take = [&](std::uint64_t low, std::uint64_t high) {
        value.first = Mix(low ^ secret[2], high ^ secret[3] ^ value.first);
        value.second = Mix(low ^ secret[4] ^ value.second, high ^ secret[5]);
    };
    constexpr std::size_t UnitsAtOnce = 8;
    for (std::u16string_view text : texts) {
        take(text.size(), 0);
        while (!text.empty()) {
            const std::size_t count = std::min(text.size(), UnitsAtOnce);
            std::uint64_t words[2] = {};
            std::memcpy(words, text.data(), count * sizeof(char16_t));
            take(words[0], words[1]);
            text.remove_prefix(count);
        }
    }
    return value;
}

}  // namespace generalutilities
