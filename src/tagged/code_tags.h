#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

/// The tags of a segment while they become codes.
namespace generalutilities {

struct CodeTag {
    std::u16string_view text;  ///< grows when the tags behind it are merged into it
    std::size_t id;            ///< the same for the same code, in all texts
    bool joinsNext;            ///< the next tag of its text follows with nothing between
    bool absorbed = false;     ///< merged into the one before it: no tag any more
};

struct CodeTags {
    std::vector<CodeTag> tags;      ///< of all texts, text by text
    std::vector<std::size_t> ends;  ///< for each text, the index behind its last tag
    std::size_t idCount = 0;        ///< ids are 0, 1, ... up to here
    bool anyJoined = false;

    std::size_t Begin(std::size_t text) const { return text == 0 ? 0 : ends[text - 1]; }
};

/// Makes one code of two that stand side by side in one text and that no text speaks against:
/// repeated from the first tag of the first text to the last of the last. For `a` codes A and `b`
/// codes B in the text at hand, another text agrees if it has fewer of each, or if at least one of
/// its first `a` codes A stands right in front of a B. Then all such neighbours in all texts become
/// codes of a new id.
///
/// A merge costs the logarithm of the number of tags; a question costs that for each text with one
/// of the two codes, or once where no other text ever had as many of them as the text at hand.
void MergeNeighbours(CodeTags& codes);

}  // namespace generalutilities
