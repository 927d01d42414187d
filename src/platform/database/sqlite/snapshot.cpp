#include "platform/database/sqlite/snapshot.h"

#include <algorithm>
#include <limits>

namespace generalutilities::sqlite {

std::int32_t Snapshot::RecordCount() {
    constexpr std::size_t Most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(rows.Rows(), Most));
}

bool Snapshot::MoveFirst() {
    position = 0;
    return !Eof();
}

bool Snapshot::MoveLast() {
    position = rows.Rows() > 0 ? rows.Rows() - 1 : 0;
    return !Eof();
}

bool Snapshot::MoveNext() {
    if (Eof()) {
        return false;
    }
    ++position;
    return true;
}

std::optional<int> Snapshot::FieldIndex(std::u16string_view name) {
    const int field = FindField(fields, name);
    return field < 0 ? std::nullopt : std::optional(field);
}

FieldValue Snapshot::GetValue(int field) {
    const bool valid = field >= 0 && static_cast<std::size_t>(field) < fields.size() && !Eof();
    return valid ? rows.Get(position, static_cast<std::size_t>(field)) : FieldValue();
}

bool Snapshot::FailReadOnly() {
    return connection->Fail(
        DatabaseFailure::Kind::Other,
        "This query cannot be changed through its rows: it is no plain selection of one table.");
}

}  // namespace generalutilities::sqlite
