#include "extview/rtf/twb_import.h"

#include <algorithm>

namespace generalutilities {

namespace {

enum Cell : std::size_t { IdCell = 0, SourceCell = 2, TargetCell = 4 };

/// The identifier in "<ID ", the identifier, "> "; keeps what it is without "ID" or ">".
void ReadId(std::u16string_view cell, std::u16string& id) {
    constexpr std::size_t WordAndBlank = 3;
    const std::size_t word = cell.find(u"ID");
    const std::size_t end = cell.rfind(u'>');
    if (word == cell.npos || end == cell.npos) {
        return;
    }
    const std::size_t start = std::min(word + WordAndBlank, end);
    id.assign(cell, start, end - start);
}

}  // namespace

rtf::TwbStyles rtf::FindTwbStyles(const StyleNames& names) {
    TwbStyles styles;
    for (const auto& [number, name] : names) {
        if (name == "tw4winMark") {
            styles.mark = number;
        } else if (name == "tw4winExternal") {
            styles.external = number;
        } else if (name == "tw4winInternal") {
            styles.internal = number;
        }
    }
    return styles;
}

bool CTWBImport::OpenFile() {
    lastPercent = -1;
    cells.SetStyles({});
    Reset();
    controlWords.Clear();
    return Open(sourceFile);
}

void CTWBImport::CloseFile() {
    Close();
}

bool CTWBImport::ReadHeader() {
    if (!Prepare()) {
        return false;
    }
    const rtf::TwbStyles styles = rtf::FindTwbStyles(styleNames);
    cells.SetStyles(styles);
    return styles.mark != -1 && styles.external != -1;
}

bool CTWBImport::NextRow(std::u16string& id, std::u16string& source, std::u16string& target,
                         std::u16string& comments, std::int32_t& status) {
    cells.BeginRow();
    if (!Parse()) {
        return false;
    }
    ReportPosition(Position(), FileSize(), lastPercent);
    ReadId(cells[IdCell], id);
    // Swapped, not copied: the buffers of the row before serve for the next one.
    source.swap(cells[SourceCell]);
    target.swap(cells[TargetCell]);
    comments.clear();
    status = -1;
    return true;
}

bool CTWBImport::IsTWBFile(std::u16string_view fileName) {
    sourceFile = fileName;
    std::u16string id, source, target, comments;
    std::int32_t status = -1;
    const bool isOne = OpenFile() && ReadHeader() && NextRow(id, source, target, comments, status);
    CloseFile();
    return isOne;
}

bool CTWBImport::OnText(std::u16string& text, std::uint32_t, std::uint32_t) {
    return !cells.Add(CurrentStyle(), text);
}

}  // namespace generalutilities
