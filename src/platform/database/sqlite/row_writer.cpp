#include "platform/database/sqlite/row_writer.h"

#include "platform/database/sqlite/value.h"

#include <variant>

namespace generalutilities::sqlite {

namespace {

constexpr char Work[] = "Writing a row";

}  // namespace

void RowWriter::Start(Change kind) {
    pending.resize(shape.fields.size());
    for (Pending& field : pending) {
        field.set = false;
    }
    change = kind;
}

void RowWriter::Set(std::size_t field, const FieldValue& value) {
    Pending& entry = pending[field];
    const auto* text = std::get_if<std::u16string_view>(&value);
    if (text != nullptr) {
        entry.text.assign(*text);
    } else {
        entry.value = value;
    }
    entry.isText = text != nullptr;
    entry.set = true;
}

std::string RowWriter::SqlText() const {
    std::string names;
    std::string values;
    int parameter = 0;
    for (std::size_t i = 0; i < pending.size(); ++i) {
        if (!pending[i].set) {
            continue;
        }
        const char* comma = parameter > 0 ? ", " : "";
        const std::string mark = "?" + std::to_string(++parameter);
        names += comma + QuoteName(shape.fields[i].column);
        if (change == Change::Edit) {
            names += " = " + mark;
        }
        values += comma + mark;
    }
    if (change == Change::Edit) {
        return "UPDATE " + shape.table + " SET " + names + " WHERE " + shape.rowId + " = ?" +
               std::to_string(parameter + 1);
    }
    return "INSERT INTO " + shape.table +
           (parameter > 0 ? " (" + names + ") VALUES (" + values + ")" : " DEFAULT VALUES");
}

bool RowWriter::PrepareFor() {
    form.assign(1, change == Change::Edit ? 'E' : 'A');
    for (const Pending& field : pending) {
        form += field.set ? '1' : '0';
    }
    if (!statement || form != preparedFor) {
        statement = Statement();
        statement = connection.Prepare(SqlText(), Work);
        preparedFor = form;
    }
    return static_cast<bool>(statement);
}

bool RowWriter::Write(std::int64_t rowId) {
    if (!connection.MayWrite()) {
        return false;
    }
    if (!PrepareFor()) {
        return false;
    }
    int parameter = 0;
    int status = SQLITE_OK;
    for (std::size_t i = 0; i < pending.size() && status == SQLITE_OK; ++i) {
        if (pending[i].set) {
            const FieldValue value = pending[i].isText
                                         ? FieldValue(std::u16string_view(pending[i].text))
                                         : pending[i].value;
            status = BindField(statement.Get(), ++parameter, value, shape.fields[i].kind,
                               connection.KeepsUtf8());
        }
    }
    if (change == Change::Edit && parameter == 0) {
        change = Change::None;
        return true;
    }
    if (change == Change::Edit && status == SQLITE_OK) {
        status = sqlite3_bind_int64(statement.Get(), parameter + 1, rowId);
    }
    if (status != SQLITE_OK) {
        return connection.Fail(status, Work);
    }
    if (!connection.Run(statement, Work)) {
        return false;
    }
    if (change == Change::Edit && sqlite3_changes64(connection.Handle()) == 0) {
        return connection.Fail(DatabaseFailure::Kind::NotFound,
                               "The row has been deleted since it was read.");
    }
    change = Change::None;
    return true;
}

}  // namespace generalutilities::sqlite
