// A host's work on a text that went out and came back: plain text made segment text and plain
// again, words compared, hidden parts of codes restored. U+FFFF parts the stored from the
// returned text.

#include <generalutilities/extview/segment_text.h>
#include <generalutilities/project/line_ends.h>
#include <generalutilities/project/segment_codes.h>

#include "project/word_diff_promises.h"
#include "text_input.h"

#include <algorithm>

using namespace generalutilities;

namespace {

void CheckPlainText(std::u16string_view text, std::u16string_view other) {
    if (HasCodeMarkers(text) || HasCodeMarkers(other)) {
        return;
    }
    for (const TextForm form : {TextForm::Plain, TextForm::Placeholders}) {
        SegmentTextMaker maker(form);
        const std::u16string source = maker.Source(text);
        Require(PlainText(source) == text);
        const std::u16string target = maker.Translation(other);
        Require(PlainText(target) == other);
        // What a reviewer returns unchanged is restored to what was stored.
        std::u16string restored;
        std::u16string missing;
        Require(RestoreHiddenCodes(StripCodeMarkers(target), target, source, restored, missing));
        Require(restored == target);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string text = TextFrom(data, size);
    const std::u16string_view whole(text);
    const std::size_t end = std::min(whole.find(u'\uFFFF'), whole.size());
    const std::u16string_view stored = whole.substr(0, end);
    const std::u16string_view returned = whole.substr(std::min(end + 1, whole.size()));

    CheckPlainText(stored, returned);
    Require(KeepsPromises(stored, returned));
    PlainText(stored);
    Require(CompareCodes(stored, stored).empty());
    Require(CompareCodes(stored, returned).empty() == CompareCodes(returned, stored).empty());
    Require(EqualButForLineEnds(returned, WithLineEndsOf(returned, stored)));

    std::u16string restored;
    std::u16string missing;
    if (RestoreHiddenCodes(returned, stored, u"", restored, missing) && !HasCodeMarkers(returned)) {
        Require(StripCodeMarkers(restored) == returned);
    }
    return 0;
}
