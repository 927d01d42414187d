#pragma once

#include "text/char_tables.h"
#include "text/flat_tables.h"
#include "text/fold_into.h"

#include <algorithm>

/// The folds as rules on one code unit, for the loops that both forms of a fold are made of.
namespace generalutilities {

enum class Case { Kept, Upper, Lower };

inline constexpr char16_t SharpS = 0x00DF;

/// Accents first, and then the case of each unit of the result.
template <bool WithoutAccents, Case To>
struct FoldRule {
    static constexpr bool RemovesAccents = WithoutAccents;
    static constexpr Case ToCase = To;

    /// The one unit that a unit becomes; where Grows holds for it, it only stands for several.
    static char16_t Map(char16_t unit) {
        return Cased(WithoutAccents ? flat::Unaccented[unit] : unit);
    }

    /// A sharp s never comes out of another unit. A surrogate that does numbers a sequence.
    static bool Grows(char16_t unit, char16_t mapped) {
        return (To == Case::Upper && mapped == SharpS) ||
               (WithoutAccents && IsFoldSequence(mapped) && mapped != unit);
    }

    /// The number of units that a growing unit becomes.
    static std::size_t Length(char16_t unit) {
        return unit == SharpS ? 2 : AccentFoldSequenceLength(AccentFoldEntry(unit));
    }

    /// Writes what a growing unit becomes; the end of that.
    static char16_t* Write(char16_t unit, char16_t* out) {
        if (unit == SharpS) {
            return std::fill_n(out, 2, u'S');
        }
        const std::uint16_t* sequence = AccentFoldSequence(AccentFoldEntry(unit));
        return std::transform(sequence, sequence + Length(unit), out, Cased);
    }

  private:
    static char16_t Cased(char16_t unit) {
        return To == Case::Upper ? flat::Upper[unit] : To == Case::Lower ? flat::Lower[unit] : unit;
    }
};

/// Calls `function` with the rule of a fold.
template <typename Function>
auto WithRule(Fold fold, Function function) {
    switch (fold) {
        case Fold::Upper:
            return function(FoldRule<false, Case::Upper>());
        case Fold::Lower:
            return function(FoldRule<false, Case::Lower>());
        case Fold::DeAccent:
            return function(FoldRule<true, Case::Kept>());
        default:
            return function(FoldRule<true, Case::Upper>());
    }
}

/// Maps units up to the first that grows; how many.
template <typename Rule>
std::size_t MapUnits(const char16_t* units, std::size_t count, char16_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = Rule::Map(units[i]);
        if (Rule::Grows(units[i], out[i])) [[unlikely]] {
            return i;
        }
    }
    return count;
}

}  // namespace generalutilities
