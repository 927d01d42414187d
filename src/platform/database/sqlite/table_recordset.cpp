#include "platform/database/sqlite/table_recordset.h"

#include "platform/files/utf8.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace generalutilities::sqlite {

namespace {

constexpr char ReadWork[] = "Reading a row";
constexpr char SeekWork[] = "Seeking a row";

/// A text that is not null.
std::string ColumnText(const Statement& statement, int column) {
    const unsigned char* text = sqlite3_column_text(statement.Get(), column);
    return text != nullptr ? reinterpret_cast<const char*>(text) : throw std::bad_alloc();
}

}  // namespace

TableRecordset::TableRecordset(std::shared_ptr<Connection> opened,
                               std::shared_ptr<const TableShape> ofTable)
    : LiveRecordset(std::move(opened), std::move(ofTable)) {
    const std::string& name = shape->rowId;
    first.tail = "ORDER BY " + name + " LIMIT 1";
    last.tail = "ORDER BY " + name + " DESC LIMIT 1";
    following.tail = "WHERE " + name + " > ?1 ORDER BY " + name + " LIMIT ?2";
}

std::optional<std::int64_t> TableRecordset::CurrentRowId() {
    return place == Place::Row ? std::optional(rowId) : std::nullopt;
}

bool TableRecordset::ReadCurrent() {
    BeginBlock(false);
    return ReadRow(rowId);
}

/// Reads the first row of a query, whose parameters are bound, as the whole block.
Step TableRecordset::TakeFirst(RowQuery& query) {
    const ResetAtEnd reset(query.statement);
    BeginBlock(false);
    const Step step = connection->Next(query.statement, ReadWork);
    if (step == Step::Row) {
        TakeRow(query);
        rowId = block.RowId(0);
        place = Place::Row;
    }
    return step;
}

bool TableRecordset::MoveToEnd(RowQuery& query) {
    return connection->Guard([&] {
        LeaveRow();
        if (!Prepare(query)) {
            return false;
        }
        const Step step = TakeFirst(query);
        if (step == Step::Done) {
            place = Place::Empty;
            connection->Fail(DatabaseFailure::Kind::NotFound, "The table has no rows.");
        }
        return step == Step::Row;
    });
}

bool TableRecordset::MoveFirst() {
    return MoveToEnd(first);
}

bool TableRecordset::MoveLast() {
    return MoveToEnd(last);
}

bool TableRecordset::MoveNext() {
    return connection->Guard([&] {
        if (place != Place::Row) {
            return connection->Fail(DatabaseFailure::Kind::NotFound, "There is no further row.");
        }
        LeaveRow();
        if (StepInBlock()) {
            rowId = block.RowId(rowInBlock);
            return true;
        }
        if (!Prepare(following)) {
            return false;
        }
        const ResetAtEnd reset(following.statement);
        const std::size_t count = BeginBlock(true);
        sqlite3_bind_int64(following.statement.Get(), 1, rowId);
        sqlite3_bind_int64(following.statement.Get(), 2, static_cast<std::int64_t>(count));
        Step step = Step::Row;
        while (step == Step::Row && !BlockIsFull(count)) {
            step = connection->Next(following.statement, ReadWork);
            if (step == Step::Row) {
                TakeRow(following);
            }
        }
        if (block.Rows() > 0) {
            rowId = block.RowId(0);
        } else if (step == Step::Done) {
            place = Place::Behind;
        }
        return block.Rows() > 0 || step == Step::Done;
    });
}

std::int32_t TableRecordset::RecordCount() {
    return connection->Guard([&]() -> std::int32_t {
        const Statement statement =
            connection->Prepare("SELECT COUNT(*) FROM " + shape->table, "Counting rows");
        if (!statement || connection->Next(statement, "Counting rows") != Step::Row) {
            return 0;
        }
        constexpr std::int64_t Most = std::numeric_limits<std::int32_t>::max();
        return static_cast<std::int32_t>(
            std::min(std::int64_t{sqlite3_column_int64(statement.Get(), 0)}, Most));
    });
}

bool TableRecordset::SetIndex(std::u16string_view name) {
    return connection->Guard([&] {
        hasIndex = false;
        const Statement statement = connection->Prepare(
            "SELECT x.name, x.coll FROM sqlite_schema AS s, pragma_index_xinfo(s.name) AS x "
            "WHERE s.type = 'index' AND s.tbl_name = ?1 COLLATE NOCASE "
            "AND s.name = ?2 COLLATE NOCASE AND x.seqno = 0 AND x.cid >= 0",
            SeekWork);
        if (!statement) {
            return false;
        }
        const std::string index = files::ToUtf8Lossy(name);
        BindName(statement, 1, shape->name);
        BindName(statement, 2, index);
        const Step step = connection->Next(statement, SeekWork);
        if (step == Step::Done) {
            connection->Fail(DatabaseFailure::Kind::NotFound,
                             "The table " + shape->table + " has no index \"" + index + "\".");
        }
        if (step != Step::Row) {
            return false;
        }
        // With the index's own collation the search is one that the index can serve.
        byKey = RowQuery();
        byKey.tail = "WHERE " + QuoteName(ColumnText(statement, 0)) + " COLLATE " +
                     QuoteName(ColumnText(statement, 1)) + " = ?1 ORDER BY " + shape->rowId +
                     " LIMIT 1";
        hasIndex = true;
        return true;
    });
}

bool TableRecordset::Seek(std::u16string_view key) {
    return connection->Guard([&] {
        LeaveRow();
        noMatch = true;
        if (!hasIndex) {
            return connection->Fail(DatabaseFailure::Kind::Other,
                                    "No index has been set to seek by.");
        }
        if (!Prepare(byKey)) {
            return false;
        }
        if (const int status = BindText(byKey.statement.Get(), 1, key, connection->KeepsUtf8());
            status != SQLITE_OK) {
            return connection->Fail(status, SeekWork);
        }
        const Step step = TakeFirst(byKey);
        if (step == Step::Done) {
            place = Place::Nowhere;
        }
        noMatch = step != Step::Row;
        return step != Step::Failed;
    });
}

}  // namespace generalutilities::sqlite
