#include <generalutilities/tagged/tag_scan.h>

#include "tagged/tag_units.h"

namespace generalutilities {

TagKind KindOfTag(std::u16string_view tag) {
    return ClassifyTag(tag, 0, TagUnits(tag).FindNameEnd(0));
}

const char* TagFault::Words() const {
    return kind == Kind::CodeElementNotClosed ? "<ut> tag opened that is never closed"
                                              : "tag opened, but never closed";
}

std::optional<TagFault> ScanTags(std::u16string_view text, TagScan& scan) {
    scan.texts.clear();
    scan.tags.clear();
    TagUnits units(text);
    std::size_t start = 0;
    for (;;) {
        const std::size_t open = units.FindOpen(start);
        // Space and `>` are sought together: one of them alone may be missing from here to the end,
        // and looking for it anew behind every tag would take the square of the text's length.
        std::size_t position = open == NoUnit ? NoUnit : units.FindNameEnd(open);
        if (position == NoUnit) {
            scan.texts.push_back(text.substr(start));
            return std::nullopt;
        }
        if (IsCodeElement(text, open, position)) {
            position = units.FindCodeElementEnd(position);
            if (position == NoUnit) {
                return TagFault{TagFault::Kind::CodeElementNotClosed, open};
            }
        }
        position = units.FindClose(position);
        if (position == NoUnit) {
            return TagFault{TagFault::Kind::TagNotClosed, open};
        }
        scan.texts.push_back(text.substr(start, open - start));
        scan.tags.push_back(text.substr(open, position + 1 - open));
        start = position + 1;
    }
}

std::u16string JoinTagScan(const TagScan& scan) {
    std::size_t length = 0;
    for (const auto* parts : {&scan.texts, &scan.tags}) {
        for (const std::u16string_view part : *parts) {
            length += part.size();
        }
    }
    std::u16string text;
    text.reserve(length);
    for (std::size_t i = 0; i < scan.texts.size(); ++i) {
        text += scan.texts[i];
        if (i < scan.tags.size()) {
            text += scan.tags[i];
        }
    }
    return text;
}

}  // namespace generalutilities
