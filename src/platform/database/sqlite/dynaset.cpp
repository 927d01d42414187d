#include "platform/database/sqlite/dynaset.h"

#include <algorithm>
#include <limits>

namespace generalutilities::sqlite {

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
    const std::size_t count = BeginBlock(position == blockEnd);
    std::optional<ReadSpan> span;
    if (count > 1) {
        span.emplace(*connection);
    }
    blockEnd = position;
    while (blockEnd < keys.size() && !BlockIsFull(count)) {
        if (!ReadRow(keys[blockEnd])) {
            break;
        }
        ++blockEnd;
    }
    return blockEnd > position;
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
