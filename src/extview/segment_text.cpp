// Both clean-ups read the text once from left to right and copy what stays.

#include <generalutilities/extview/segment_text.h>

namespace generalutilities {

namespace {

constexpr char16_t ShownBegin = 0x0006;
constexpr char16_t HiddenBegin = 0x0007;
constexpr char16_t HiddenEnd = 0x0008;

bool IsCodeMarker(char16_t unit) {
    return unit >= ShownBegin && unit <= HiddenEnd;
}

}  // namespace

// Codes may nest or be cut off. Each open code ends at the first end mark behind it that no earlier
// open code has taken; since all of them wait for the same next mark, their number is all that has
// to be known. A U+0007 that ends one takes everything up to the next U+0008 with it, if there is
// one: what is open inside such a hidden text never begins.
std::u16string StripCodeMarkers(std::u16string_view text) {
    std::u16string stripped;
    stripped.reserve(text.size());
    std::size_t openCodes = 0;
    bool hiddenMayEnd = true;  // until a search for U+0008 has come back empty-handed
    std::size_t position = 0;
    while (position < text.size()) {
        std::size_t marker = position;
        while (marker < text.size() && !IsCodeMarker(text[marker])) {
            ++marker;
        }
        stripped.append(text, position, marker - position);
        if (marker == text.size()) {
            break;
        }
        position = marker + 1;
        if (text[marker] == ShownBegin) {
            ++openCodes;
            continue;
        }
        if (openCodes == 0) {
            continue;
        }
        --openCodes;
        if (text[marker] == HiddenBegin && hiddenMayEnd) {
            const std::size_t end = text.find(HiddenEnd, position);
            if (end == std::u16string_view::npos) {
                hiddenMayEnd = false;
            } else {
                position = end + 1;
            }
        }
    }
    return stripped;
}

std::u16string StripBraces(std::u16string_view text) {
    std::u16string stripped;
    stripped.reserve(text.size());
    std::size_t kept = 0;  // what stands before this index is in `stripped` or has been dropped
    std::size_t searched = 0;
    for (;;) {
        const std::size_t brace = text.find(u'{', searched);
        if (brace == std::u16string_view::npos) {
            break;
        }
        std::size_t backslashes = brace;
        while (backslashes > searched && text[backslashes - 1] == u'\\') {
            --backslashes;
        }
        searched = brace + 1;
        if ((brace - backslashes) % 2 != 0) {
            continue;
        }
        stripped.append(text, kept, brace - kept);
        const std::size_t end = text.find(u'}', searched);
        if (end == std::u16string_view::npos) {
            return stripped;
        }
        kept = searched = end + 1;
    }
    return stripped.append(text, kept);
}

}  // namespace generalutilities
