#include "extview/rtf/rtf_import.h"

#include <algorithm>
#include <limits>

namespace generalutilities {

namespace {

constexpr std::size_t RequiredEntries = 3;
constexpr std::size_t EntriesWithComments = 4;
constexpr std::size_t EntriesWithStatus = 5;

}  // namespace

bool CRTFImport::OpenFile() {
    lastPercent = -1;
    Reset();
    controlWords.Clear();
    controlWords.Add("row");
    controlWords.Add("cell");
    cellCount = 0;
    OpenCell();
    return Open(sourceFile);
}

void CRTFImport::CloseFile() {
    Close();
    cells = {};
    cellCount = 0;
}

bool CRTFImport::ReadHeader() {
    if (!Prepare()) {
        return false;
    }
    std::u16string id, source, target, comments;
    std::int32_t status = -1;
    return NextRow(id, source, target, comments, status);
}

bool CRTFImport::ReadCells() {
    cellCount = 0;
    OpenCell();
    if (!Parse()) {
        return false;
    }
    ReportPosition(Position(), FileSize(), lastPercent);
    return true;
}

bool CRTFImport::NextRow(std::u16string& id, std::u16string& source, std::u16string& target,
                         std::u16string& comments, std::int32_t& status) {
    if (!ReadCells() || cellCount < RequiredEntries) {
        return false;
    }
    // Swapped, not copied: the buffers of the row before serve for the next one.
    id.swap(cells[0]);
    source.swap(cells[1]);
    target.swap(cells[2]);
    if (cellCount < EntriesWithComments) {
        return true;
    }
    comments.swap(cells[3]);
    status = cellCount < EntriesWithStatus ? -1 : StatusOf(cells[4]);
    return true;
}

std::int32_t CRTFImport::StatusOf(std::u16string_view cell) {
    std::size_t i = std::min(cell.find_first_not_of(u" \t\n\v\f\r"), cell.size());
    const bool negative = i < cell.size() && cell[i] == u'-';
    if (negative || (i < cell.size() && cell[i] == u'+')) {
        ++i;
    }
    const std::size_t digits = i;
    std::int64_t value = 0;
    for (; i < cell.size() && cell[i] >= u'0' && cell[i] <= u'9'; ++i) {
        value = std::min(value * 10 + (cell[i] - u'0'), std::int64_t{1} << 31);
    }
    if (i == digits) {
        return -1;
    }
    value =
        std::min<std::int64_t>(negative ? -value : value, std::numeric_limits<std::int32_t>::max());
    return static_cast<std::int32_t>(value);
}

bool CRTFImport::OnText(std::u16string_view text, std::uint32_t, std::uint32_t) {
    if (cellCount <= cells.size()) {
        cells[cellCount - 1].append(text);
    }
    return true;
}

bool CRTFImport::OnControlWord(std::string_view word) {
    if (word == "row") {
        return false;
    }
    OpenCell();
    return true;
}

void CRTFImport::OpenCell() {
    if (cellCount < cells.size()) {
        cells[cellCount].clear();
    }
    ++cellCount;
}

}  // namespace generalutilities
