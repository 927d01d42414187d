#include "platform/database/sqlite/live_recordset.h"

#include <algorithm>
#include <utility>

namespace generalutilities::sqlite {

namespace {

constexpr char Work[] = "Reading a row";

}  // namespace

LiveRecordset::LiveRecordset(std::shared_ptr<Connection> opened,
                             std::shared_ptr<const TableShape> ofTable)
    : connection(std::move(opened)),
      shape(std::move(ofTable)),
      slots(shape->fields.size(), NotAsked),
      writer(*connection, *shape) {
    byRowId.tail = "WHERE " + shape->rowId + " = ?1";
}

bool LiveRecordset::IsField(int field) const {
    return field >= 0 && static_cast<std::size_t>(field) < slots.size();
}

std::optional<int> LiveRecordset::FieldIndex(std::u16string_view name) {
    return connection->Guard([&]() -> std::optional<int> {
        const int field = FindField(shape->fields, name);
        if (field < 0) {
            connection->Fail(DatabaseFailure::Kind::NotFound, "There is no field of this name.");
            return std::nullopt;
        }
        Ask(static_cast<std::size_t>(field));
        return field;
    });
}

void LiveRecordset::Ask(std::size_t field) {
    if (slots[field] != NotAsked) {
        return;
    }
    asked.reserve(asked.size() + 1);  // all of it or, without memory, nothing
    kinds.push_back(shape->fields[field].kind);
    asked.push_back(field);
    slots[field] = asked.size() - 1;
    if (handedOut) {
        retired.push_back(std::move(block));
    }
    block = RowBlock();
}

FieldValue LiveRecordset::GetValue(int field) {
    return connection->Guard([&]() -> FieldValue {
        if (!IsField(field)) {
            return {};
        }
        Ask(static_cast<std::size_t>(field));
        if (!MakeCurrent()) {
            return {};
        }
        handedOut = true;
        return block.Get(rowInBlock, slots[static_cast<std::size_t>(field)]);
    });
}

bool LiveRecordset::MakeCurrent() {
    const std::optional<std::int64_t> rowId = CurrentRowId();
    if (!rowId) {
        return false;
    }
    const bool held = rowInBlock < block.Rows() && block.RowId(rowInBlock) == *rowId;
    if (held && IsFresh()) {
        return true;
    }
    return held && handedOut ? ReadCurrentAgain() : ReadCurrent();
}

bool LiveRecordset::ReadCurrentAgain() {
    const std::int64_t rowId = block.RowId(rowInBlock);
    RowBlock old = std::move(block);
    block = RowBlock();
    const std::size_t row = std::exchange(rowInBlock, 0);
    BeginBlock(false);
    if (!ReadRow(rowId)) {
        retired.push_back(std::move(old));
        return false;
    }
    if (old.Equals(row, block)) {
        // Views of the old block stay good, and a row that is looked at again and again between
        // changes elsewhere costs no memory.
        old.DropBehind(row);
        block = std::move(old);
        rowInBlock = row;
    } else {
        retired.push_back(std::move(old));
    }
    return true;
}

void LiveRecordset::LeaveRow() {
    handedOut = false;
    retired.clear();
    writer.Drop();
}

bool LiveRecordset::StepInBlock() {
    if (!IsFresh() || rowInBlock + 1 >= block.Rows()) {
        return false;
    }
    ++rowInBlock;
    return true;
}

std::size_t LiveRecordset::BeginBlock(bool continues) {
    window = continues && IsFresh() ? std::min(2 * window, LargestWindow) : 1;
    block.Clear();
    rowInBlock = 0;
    blockGeneration = connection->Generation();
    return window;
}

bool LiveRecordset::BlockIsFull(std::size_t rowsWanted) const {
    return block.Rows() >= rowsWanted || block.TextUnits() >= LargestTexts;
}

bool LiveRecordset::Prepare(RowQuery& query) {
    if (query.statement && query.fields == asked.size()) {
        return true;
    }
    std::string sql = "SELECT " + shape->rowId;
    for (const std::size_t field : asked) {
        sql += ", " + QuoteName(shape->fields[field].column);
    }
    sql += " FROM " + shape->table + " " + query.tail;
    query.statement = Statement();
    query.statement = connection->Prepare(sql, Work);
    query.fields = asked.size();
    return static_cast<bool>(query.statement);
}

void LiveRecordset::TakeRow(const RowQuery& query) {
    block.Append(sqlite3_column_int64(query.statement.Get(), 0), query.statement.Get(), 1, kinds,
                 connection->KeepsCodeUnits());
}

bool LiveRecordset::ReadRow(std::int64_t rowId) {
    if (!Prepare(byRowId)) {
        return false;
    }
    const ResetAtEnd reset(byRowId.statement);
    sqlite3_bind_int64(byRowId.statement.Get(), 1, rowId);
    const Step step = connection->Next(byRowId.statement, Work);
    if (step == Step::Row) {
        TakeRow(byRowId);
    } else if (step == Step::Done) {
        TakeMissing(rowId);
    }
    return step != Step::Failed;
}

bool LiveRecordset::AddNew() {
    return connection->Guard([&] {
        editedRow = 0;
        writer.Start(RowWriter::Change::Add);
        return true;
    });
}

bool LiveRecordset::Edit() {
    return connection->Guard([&] {
        editedRow = CurrentRowId();
        if (!editedRow) {
            return connection->Fail(DatabaseFailure::Kind::Other,
                                    "There is no current row to change.");
        }
        writer.Start(RowWriter::Change::Edit);
        return true;
    });
}

bool LiveRecordset::PutValue(int field, const FieldValue& value) {
    return connection->Guard([&] {
        if (writer.Started() == RowWriter::Change::None) {
            return connection->Fail(DatabaseFailure::Kind::Other,
                                    "A value is set only behind AddNew or Edit.");
        }
        if (!IsField(field)) {
            return connection->Fail(DatabaseFailure::Kind::NotFound,
                                    "There is no field at this position.");
        }
        writer.Set(static_cast<std::size_t>(field), value);
        return true;
    });
}

bool LiveRecordset::Update() {
    return connection->Guard([&] {
        if (writer.Started() == RowWriter::Change::None) {
            return connection->Fail(DatabaseFailure::Kind::Other,
                                    "There is nothing to write without AddNew or Edit.");
        }
        handedOut = false;
        retired.clear();
        return writer.Write(editedRow.value_or(0));
    });
}

ReadSpan::ReadSpan(Connection& opened)
    : connection(opened), begun(sqlite3_get_autocommit(opened.Handle()) != 0) {
    begun = begun && connection.Run("BEGIN", Work);
}

ReadSpan::~ReadSpan() {
    if (begun) {
        // It has read alone, so there is nothing that could fail to be written.
        sqlite3_exec(connection.Handle(), "COMMIT", nullptr, nullptr, nullptr);
    }
}

}  // namespace generalutilities::sqlite
