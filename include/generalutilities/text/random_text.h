#pragma once

#include <generalutilities/text/char_sets.h>

#include <cstddef>
#include <cstdint>

/// Random texts of one script, for filling forms and for tests of fonts and code pages.
namespace generalutilities {

/// A linear congruential generator of 15-bit numbers. The same seed gives the same sequence
/// everywhere; nothing that must not be guessed may rest on it.
class RandomSource {
  public:
    static constexpr std::uint32_t Largest = 32767;

    explicit RandomSource(std::uint32_t seed = 1) : state(seed) {}

    /// The next number, 0 to `Largest`.
    std::uint32_t Next() {
        state = state * 214013 + 2531011;
        return state >> 16 & Largest;
    }

  private:
    std::uint32_t state;
};

/// Writes `length` members of a set that has some, drawn evenly and independently of each other;
/// the last member alone is rare. What comes out may hold unassigned characters and marks without a
/// base.
void GenerateText(CharSet& set, RandomSource& random, char16_t* out, std::size_t length);

}  // namespace generalutilities
