#include "platform/database/sqlite/unchanged_rows.h"

#include "platform/database/sqlite/table_shape.h"
#include "platform/database/sqlite/value.h"

#include <variant>

namespace generalutilities::sqlite {

namespace {

bool IsYesNo(Connection& connection, const Translation& change) {
    const char* type = nullptr;
    return sqlite3_table_column_metadata(connection.Handle(), "main", change.table.c_str(),
                                         change.setColumn.c_str(), &type, nullptr, nullptr, nullptr,
                                         nullptr) == SQLITE_OK &&
           KindOfType(type) == ColumnKind::YesNo;
}

bool HasTriggers(Connection& connection, const std::string& table) {
    const Statement statement = connection.TryPrepare(
        "SELECT 1 FROM sqlite_schema WHERE type = 'trigger' AND tbl_name = ?1 COLLATE NOCASE");
    if (!statement) {
        return true;
    }
    BindName(statement, 1, table);
    return sqlite3_step(statement.Get()) != SQLITE_DONE;
}

}  // namespace

std::string SkipUnchangedRows(Connection& connection, const Translation& change) {
    if (change.setColumn.empty() || !std::holds_alternative<std::int64_t>(change.literals[0]) ||
        !IsYesNo(connection, change) || HasTriggers(connection, change.table)) {
        return change.text;
    }
    constexpr std::string_view Where = " WHERE ";
    const std::string condition = change.text.substr(change.setEnd);
    std::string text = change.text.substr(0, change.setEnd);
    text.append(Where).append(QuoteName(change.setColumn)).append(" IS NOT ?1");
    if (!condition.empty()) {
        text.append(" AND (").append(condition.substr(Where.size())).append(")");
    }
    return text;
}

}  // namespace generalutilities::sqlite
