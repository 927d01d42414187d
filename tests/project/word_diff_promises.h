#pragma once

#include <generalutilities/project/word_diff.h>

#include <string_view>

namespace generalutilities {

/// Whether a comparison of words is what it promises to be: stretches that are equal and others by
/// turns, none empty, which make up both texts.
inline bool KeepsPromises(std::u16string_view oldText, std::u16string_view newText) {
    const auto stretches = CompareWords(oldText, newText, 1033);
    std::size_t oldAt = 0;
    std::size_t newAt = 0;
    for (std::size_t i = 0; i < stretches.size(); ++i) {
        const DiffStretch& stretch = stretches[i];
        const bool inOrder = stretch.oldFirst == oldAt && stretch.newFirst == newAt &&
                             stretch.oldLength + stretch.newLength > 0 &&
                             (i == 0 || stretch.same != stretches[i - 1].same);
        if (!inOrder || (stretch.same && oldText.substr(oldAt, stretch.oldLength) !=
                                             newText.substr(newAt, stretch.newLength))) {
            return false;
        }
        oldAt += stretch.oldLength;
        newAt += stretch.newLength;
    }
    const bool allSame = stretches.empty() || (stretches.size() == 1 && stretches[0].same);
    return oldAt == oldText.size() && newAt == newText.size() && allSame == (oldText == newText);
}

}  // namespace generalutilities
