#include "extview/rtf/twb_import.h"

#include <algorithm>

namespace generalutilities {

namespace {

enum Cell : std::size_t { IdCell = 0, SourceCell = 2, TargetCell = 4 };

}  // namespace

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
    return Prepare() && FindStyles();
}

bool CTWBImport::FindStyles() {
    rtf::TwbStyles styles;
    for (const auto& [number, name] : styleNames) {
        if (name == "tw4winMark") {
            styles.mark = number;
        } else if (name == "tw4winExternal") {
            styles.external = number;
        } else if (name == "tw4winInternal") {
            styles.internal = number;
        }
    }
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
    ReadId(id);
    // Swapped, not copied: the buffers of the row before serve for the next one.
    source.swap(cells[SourceCell]);
    target.swap(cells[TargetCell]);
    comments.clear();
    status = -1;
    return true;
}

/// The identifier stands three characters behind the start of "ID", before the last ">".
void CTWBImport::ReadId(std::u16string& id) {
    constexpr std::size_t WordAndBlank = 3;
    const std::u16string& cell = cells[IdCell];
    const std::size_t word = cell.find(u"ID");
    const std::size_t end = cell.rfind(u'>');
    if (word != cell.npos && end != cell.npos) {
        const std::size_t start = std::min(word + WordAndBlank, end);
        id.assign(cell, start, end - start);
    }
}

bool CTWBImport::IsTWBFile(std::u16string_view fileName) {
    sourceFile = fileName;
    std::u16string id, source, target, comments;
    std::int32_t status = -1;
    const bool isOne = OpenFile() && ReadHeader() && NextRow(id, source, target, comments, status);
    CloseFile();
    return isOne;
}

bool CTWBImport::IsBilingual() {
    std::u16string id, source, target, comments;
    std::int32_t status = -1;
    return FindStyles() && (NextRow(id, source, target, comments, status) ||
                            FindInFile(0, "\\row") == RtfFilePager::NotFound);
}

bool CTWBImport::OnText(std::u16string_view text, std::uint32_t, std::uint32_t) {
    return !cells.Add(CurrentStyle(), text);
}

}  // namespace generalutilities
