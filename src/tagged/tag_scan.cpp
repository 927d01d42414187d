#include <generalutilities/tagged/tag_scan.h>

#include "tagged/tag_search.h"

namespace generalutilities {

TagKind KindOfTag(std::u16string_view tag) {
    return ClassifyTag(tag, 0, FindNameEnd(tag, 0));
}

const char* TagFault::Words() const {
    return kind == Kind::CodeElementNotClosed ? "<ut> tag opened that is never closed"
                                              : "tag opened, but never closed";
}

bool TagCursor::Fail(TagFault::Kind kind) {
    fault = TagFault{kind, tagStart};
    return false;
}

bool TagCursor::Next() {
    runStart = end;
    tagStart = FindAnyUnit(text, runStart, u'<');
    // Space and `>` are sought together: one of them alone may be missing from here to the end, and
    // looking for it anew behind every tag would take the square of the text's length.
    std::size_t position = tagStart == NoUnit ? NoUnit : FindNameEnd(text, tagStart);
    if (position == NoUnit) {
        tagStart = end = text.size();
        return false;
    }
    if (ClassifyTag(text, tagStart, position) == TagKind::CodeElement) {
        position = FindCodeElementEnd(text, position);
        if (position == NoUnit) {
            return Fail(TagFault::Kind::CodeElementNotClosed);
        }
    }
    position = FindAnyUnit(text, position, u'>');
    if (position == NoUnit) {
        return Fail(TagFault::Kind::TagNotClosed);
    }
    end = position + 1;
    return true;
}

std::optional<TagFault> ScanTags(std::u16string_view text, TagScan& scan) {
    scan.texts.clear();
    scan.tags.clear();
    TagCursor cursor(text);
    while (cursor.Next()) {
        scan.texts.push_back(cursor.Run());
        scan.tags.push_back(cursor.Tag());
    }
    if (!cursor.Fault()) {
        scan.texts.push_back(cursor.Run());
    }
    return cursor.Fault();
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
