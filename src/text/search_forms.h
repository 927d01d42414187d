#pragma once

#include <generalutilities/text/search.h>

namespace generalutilities {

/// `FindText` in the form that is asked for, so that both can be tested: with vectors where the
/// processor has them, which HasAvx2() says, or without.
std::optional<TextMatch> FindText(std::u16string_view text, std::u16string_view sought,
                                  std::size_t start, SearchOptions options, bool vectors);

}  // namespace generalutilities
