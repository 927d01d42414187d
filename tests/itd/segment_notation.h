// Segments as tables of cases write them: records parted by "¦", each a letter for its kind, its
// segment's number if that is not 7, a blank, and its text: "T one¦C <b>¦T two".

#pragma once

#include <generalutilities/itd/text_forms.h>
#include <generalutilities/itd/text_part.h>

#include <span>
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
    for (std::size_t end = 0; end != text.npos && !text.empty(); text.remove_prefix(end + 1)) {
        end = text.find(at);
        parts.emplace_back(text.substr(0, end));
        if (end == text.npos) {
            break;
        }
    }
    return parts;
}

inline ItdSegment SegmentOf(ItdDocument& document, std::u16string_view notation,
                            std::uint32_t sid = 7) {
    std::vector<ItdRecord> records;
    const std::vector<std::u16string> parts = Split(notation, u'¦');
    for (const std::u16string& part : parts) {
        for (const RecordKind& kind : RecordKinds) {
            if (kind.letter == part[0]) {
                records.push_back({{0, kind.f2, 0, sid}, std::u16string_view(part).substr(2)});
            }
        }
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
        (notation += u' ') += record.text;
    }
    return notation;
}

/// Code strings with heads as "[T]" and the tags of texts as "‹" and "›": to their own form, or
/// back.
inline std::u16string CodeString(std::u16string text, bool back = false) {
    std::vector<std::pair<std::u16string, std::u16string>> pairs = {{u"‹", u"<ut>"},
                                                                    {u"›", u"</ut>"}};
    for (const RecordKind& kind : RecordKinds) {
        std::u16string tag;
        AppendBlockTag(tag, {0, kind.f2, 0, 7});
        pairs.emplace_back(std::u16string(u"[") + kind.letter + u']', tag);
    }
    for (auto& [from, to] : pairs) {
        if (back) {
            std::swap(from, to);
        }
        for (std::size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size()) {
            text.replace(at, from.size(), to);
        }
    }
    return text;
}

}  // namespace generalutilities
