#pragma once

#include <cstddef>
#include <cstdint>

/// What the code units of a stretch of text are, a bit each, for scanning without a branch a unit.
namespace generalutilities {

/// The first unit is in the lowest bit; what has no bit set is an ordinary separator.
struct WordMasks {
    static constexpr std::size_t Units = 64;

    std::uint64_t letters = 0;
    std::uint64_t eastAsian = 0;
    std::uint64_t special = 0;  ///< numbers, "&" and "'", whose neighbours decide

    /// Moves on by `count` units. Nothing is known of those that come in: they are special.
    void Skip(std::size_t count) {
        const bool all = count >= Units;
        letters = all ? 0 : letters >> count;
        eastAsian = all ? 0 : eastAsian >> count;
        special = all ? ~std::uint64_t{0} : ~(~special >> count);
    }
};

/// The masks of the 64 units from `units` on.
WordMasks FindWordMasks(const char16_t* units) noexcept;

/// Its two forms, which give the same answers. The second one needs HasAvx2() (cpu.h).
WordMasks FindWordMasksPlainly(const char16_t* units) noexcept;
WordMasks FindWordMasksByBlocks(const char16_t* units) noexcept;

}  // namespace generalutilities
