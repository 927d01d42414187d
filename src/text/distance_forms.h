#pragma once

#include <generalutilities/text/distance.h>

namespace generalutilities {

/// `EditDistance` in the form that is asked for, so that both can be tested: with vectors where the
/// processor has them, which HasAvx2() says, or without.
double EditDistance(std::u16string_view first, std::u16string_view second, double casePenalty,
                    bool vectors);

}  // namespace generalutilities
