#pragma once

#include <string_view>

namespace generalutilities {

/// The edit distance of two strings: the least sum of costs that makes one of the other, where
/// inserting, deleting and replacing a code unit cost 1.0 each, and replacing one by its other case
/// (both have the same small letter) costs `casePenalty`.
///
/// Costs are added as doubles from the beginning of the strings to their end, so the result is the
/// same on every machine, to the last bit. Any penalty is accepted: from 2.0 on the case of a unit
/// is changed by deleting and inserting, a penalty that is not a number counts as such a one, and
/// one below zero rewards a change of case. The arguments may be swapped.
///
/// Time is at most in proportion to the product of the lengths, memory to their sum;
/// std::bad_alloc when there is not so much.
double EditDistance(std::u16string_view first, std::u16string_view second,
                    double casePenalty = 1.0);

}  // namespace generalutilities
