#include "platform/database/sqlite/dynaset.h"

#include <algorithm>
#include <limits>

namespace generalutilities::sqlite {

Dynaset::Dynaset(std::shared_ptr<Connection> opened, std::shared_ptr<const TableShape> ofTable,
                 std::vector<std::int64_t> rowIds)
    : LiveRecordset(std::move(opened), std::move(ofTable)), keys(std::move(rowIds)) {
    stretch.tail = "WHERE " + shape->rowId + " BETWEEN ?1 AND ?2 ORDER BY " + shape->rowId;
}

std::int32_t Dynaset::RecordCount() {
    constexpr std::size_t Most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(keys.size(), Most));
}

std::optional<std::int64_t> Dynaset::CurrentRowId() {
    return position < keys.size() ? std::optional(keys[position]) : std::nullopt;
}

bool Dynaset::MoveTo(std::size_t row) {
    LeaveRow();
    position = row;
    return position < keys.size() ||
           connection->Fail(DatabaseFailure::Kind::NotFound, "The query gave no rows.");
}

bool Dynaset::MoveNext() {
    if (Eof()) {
        return connection->Fail(DatabaseFailure::Kind::NotFound, "There is no further row.");
    }
    LeaveRow();
    ++position;
    StepInBlock();
    return true;
}

bool Dynaset::ReadCurrent() {
    const std::size_t count = std::min(BeginBlock(position == blockEnd), keys.size() - position);
    blockEnd = position;
    if (LiesClose(count)) {
        ReadStretch(count);
        return blockEnd > position;
    }
    std::optional<ReadSpan> span;
    if (count > 1) {
        span.emplace(*connection);
    }
    while (blockEnd < position + count && !BlockIsFull(count)) {
        if (!ReadRow(keys[blockEnd])) {
            break;
        }
        ++blockEnd;
    }
    return blockEnd > position;
}

/// Whether the next rows lie in the file in their order and nearly without others between them.
bool Dynaset::LiesClose(std::size_t count) const {
    constexpr std::size_t WorthWhile = 8;
    const auto first = keys.begin() + static_cast<std::ptrdiff_t>(position);
    const auto end = first + static_cast<std::ptrdiff_t>(count);
    // The keys are all different, so that ascending ones cannot lie closer than one apart.
    return count >= WorthWhile && std::is_sorted(first, end) &&
           static_cast<std::uint64_t>(*(end - 1)) - static_cast<std::uint64_t>(*first) < 2 * count;
}

/// Reads such rows in one go.
void Dynaset::ReadStretch(std::size_t count) {
    if (!Prepare(stretch)) {
        return;
    }
    const ResetAtEnd reset(stretch.statement);
    const std::size_t end = position + count;
    sqlite3_bind_int64(stretch.statement.Get(), 1, keys[position]);
    sqlite3_bind_int64(stretch.statement.Get(), 2, keys[end - 1]);
    while (blockEnd < end && !BlockIsFull(count)) {
        const Step step = connection->Next(stretch.statement, "Reading a row");
        if (step == Step::Failed) {
            return;
        }
        const std::int64_t found = sqlite3_column_int64(stretch.statement.Get(), 0);
        while (blockEnd < end && (step == Step::Done || keys[blockEnd] < found)) {
            TakeMissing(keys[blockEnd++]);
        }
        if (blockEnd < end && keys[blockEnd] == found) {
            TakeRow(stretch);
            ++blockEnd;
        }
    }
}

bool Dynaset::SetIndex(std::u16string_view) {
    return FailWithoutIndex();
}

bool Dynaset::Seek(std::u16string_view) {
    return FailWithoutIndex();
}

bool Dynaset::FailWithoutIndex() {
    return connection->Fail(DatabaseFailure::Kind::Other,
                            "Only a table-type recordset has an index to seek by.");
}

}  // namespace generalutilities::sqlite
