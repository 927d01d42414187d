// Segments as tables of cases write them: records parted by "¦", each a letter for its kind, its
// segment's number if that is not 7, a blank, and its text or ∅: "T one¦C <b>¦T ∅".

#pragma once

#include <generalutilities/itd/text_forms.h>
#include <generalutilities/itd/text_part.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace generalutilities {

struct RecordKind {
    char16_t letter;
    std::uint32_t f2;
};
/// Text, a code, a file line, the last record of a section, and one that only looks like text.
inline constexpr RecordKind RecordKinds[] = {
    {u'T', 0x20}, {u'C', 1}, {u'F', ItdFileLine}, {u'L', ItdLastOfSection}, {u'B', 0x80000020}};

inline std::vector<std::u16string> Split(std::u16string_view text, char16_t at) {
    std::vector<std::u16string> parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(at), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

inline std::uint32_t KindOf(char16_t letter) {
    return std::ranges::find(RecordKinds, letter, &RecordKind::letter)->f2;
}

inline ItdSegment SegmentOf(ItdDocument& document, std::u16string_view notation,
                            std::uint32_t sid = 7) {
    std::vector<ItdRecord> records;
    const std::vector<std::u16string> parts = Split(notation, u'¦');
    for (const std::u16string& part : parts) {
        const std::u16string_view text = std::u16string_view(part).substr(2);
        records.push_back({{0, KindOf(part[0]), 0, sid}, text == u"∅" ? u"" : text});
    }
    return document.Store(records);
}

inline std::u16string NotationOf(const ItdSegment& segment) {
    std::u16string notation;
    for (const ItdRecord& record : segment) {
        notation += notation.empty() ? u"" : u"¦";
        for (const RecordKind& kind : RecordKinds) {
            notation += kind.f2 == record.block.f2 ? std::u16string(1, kind.letter) : u"";
        }
        if (record.block.sid != 7) {
            notation += static_cast<char16_t>(u'0' + record.block.sid);
        }
        (notation += u' ') += record.text.empty() ? u"∅" : record.text;
    }
    return notation;
}

/// A code string from one with heads as "[T]" and the tags of texts as "‹" and "›".
inline std::u16string CodeString(std::u16string_view notation) {
    std::u16string codes;
    for (std::size_t i = 0; i < notation.size(); ++i) {
        if (notation[i] == u'[') {
            AppendBlockTag(codes, {0, KindOf(notation[i + 1]), 0, 7});
            i += 2;
        } else {
            codes += notation[i] == u'‹'   ? u"<ut>"
                     : notation[i] == u'›' ? u"</ut>"
                                           : notation.substr(i, 1);
        }
    }
    return codes;
}

}  // namespace generalutilities
