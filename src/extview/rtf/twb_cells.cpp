#include "extview/rtf/twb_cells.h"

#include <vector>

namespace generalutilities::rtf {

namespace {

constexpr std::u16string_view EndMark = u"<0}";

/// The marks that are known without something of another style around them.
constexpr std::u16string_view KnownMarks[] = {EndMark, u"<}0{>", u"{0>"};

/// Entries shorter than this are one mark at most.
constexpr std::size_t ShortestPair = 6;

std::u16string_view MarkAtEnd(std::u16string_view text) {
    for (const std::u16string_view mark : KnownMarks) {
        if (text.ends_with(mark)) {
            return mark;
        }
    }
    return {};
}

}  // namespace

bool TwbCells::Add(std::int32_t style, std::u16string_view text) {
    const bool isExternal = style == styles.external;
    const bool isMark = style == styles.mark;
    const bool isInternal = style == styles.internal;
    if (isWaiting && !isExternal) {
        return false;
    }
    if (isExternal) {
        isWaiting = false;
    }
    if (isExternal || isMark) {
        isTextOpen = false;
    }

    if (style == previousStyle && count > 0) {
        (isInternal ? codes : Last()).append(text);
    } else {
        if (isInternal) {
            codes = text;
            if (!isTextOpen) {
                Open({});
                isTextOpen = true;
            }
        } else if (isExternal || isMark) {
            if (previousStyle == styles.internal && previousStyle != -1) {
                FlushCodes();
            }
            Open(text);
        } else if (isTextOpen) {
            FlushCodes();
            Last().append(text);
        } else {
            Open(text);
            isTextOpen = true;
        }
        previousStyle = style;
    }

    if (!isMark) {
        return false;
    }
    SplitMarks();
    return count >= LeastCells && Last() == EndMark;
}

void TwbCells::Open(std::u16string_view text) {
    ++count;
    Last().assign(text);
}

/// Adds the placeholders of the codes to the last cell; what stands between codes is dropped.
void TwbCells::FlushCodes() {
    constexpr std::u16string_view Start = u"<c:";
    std::u16string_view rest = codes;
    for (std::size_t at = 0; (at = rest.find(Start)) != rest.npos;) {
        rest.remove_prefix(at + Start.size());
        const std::size_t end = rest.find(u'>');
        if (end == rest.npos) {
            break;
        }
        Last().append(u"{").append(rest, 0, end).append(u"}");
        rest.remove_prefix(end + 1);
    }
    codes.clear();
}

/// Cuts the marks at the end of the last cell apart, with an empty text before each.
void TwbCells::SplitMarks() {
    std::u16string& cell = Last();
    std::vector<std::u16string_view> marks;  // from the last one
    std::u16string_view left = cell;
    while (left.size() >= ShortestPair) {
        const std::u16string_view mark = MarkAtEnd(left);
        if (mark.empty()) {
            break;
        }
        marks.push_back(mark);
        left.remove_suffix(mark.size());
    }
    cell.resize(left.size());
    for (auto mark = marks.rbegin(); mark != marks.rend(); ++mark) {
        Open({});
        Open(*mark);
    }
}

}  // namespace generalutilities::rtf
