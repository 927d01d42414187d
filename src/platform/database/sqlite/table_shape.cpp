#include "platform/database/sqlite/table_shape.h"

#include "platform/files/utf8.h"

#include <algorithm>
#include <array>

namespace generalutilities::sqlite {

namespace {

constexpr char Work[] = "Reading the structure of the project";

bool HasRow(Connection& connection, std::string_view sql, std::string_view first,
            std::string_view second = {}) {
    const Statement statement = connection.Prepare(sql, Work);
    if (!statement) {
        return false;
    }
    BindName(statement, 1, first);
    if (!second.empty()) {
        BindName(statement, 2, second);
    }
    return connection.Next(statement, Work) == Step::Row;
}

/// Empty for a view, a virtual table, a table without rowids, or one that hides all three names.
std::string RowIdName(Connection& connection, std::string_view table) {
    if (!HasRow(connection,
                "SELECT 1 FROM pragma_table_list(?1) WHERE schema = 'main' AND type = 'table' AND "
                "wr = 0",
                table)) {
        return {};
    }
    for (const char* name : {"rowid", "_rowid_", "oid"}) {
        if (!HasRow(connection,
                    "SELECT 1 FROM pragma_table_xinfo(?1) WHERE name = ?2 COLLATE NOCASE", table,
                    name)) {
            return name;
        }
    }
    return {};
}

char16_t Lower(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit;
}

}  // namespace

void BindName(const Statement& statement, int parameter, std::string_view name) {
    CheckMemory(sqlite3_bind_text64(statement.Get(), parameter, name.data(), name.size(),
                                    SQLITE_STATIC, SQLITE_UTF8));
}

std::vector<Field> FieldsOf(const Statement& select) {
    std::vector<Field> fields;
    const int count = sqlite3_column_count(select.Get());
    for (int i = 0; i < count; ++i) {
        const char* name = sqlite3_column_name(select.Get(), i);
        const char* column = sqlite3_column_origin_name(select.Get(), i);
        fields.push_back({files::FromUtf8(name != nullptr ? name : ""),
                          column != nullptr ? column : "",
                          KindOfType(sqlite3_column_decltype(select.Get(), i))});
    }
    return fields;
}

std::shared_ptr<TableShape> ShapeOf(Connection& connection, const Statement& select,
                                    std::string_view table) {
    const std::string name(table);
    const int count = sqlite3_column_count(select.Get());
    for (int i = 0; i < count; ++i) {
        const char* origin = sqlite3_column_table_name(select.Get(), i);
        if (origin == nullptr || sqlite3_stricmp(origin, name.c_str()) != 0) {
            return nullptr;
        }
    }
    std::string rowId = RowIdName(connection, table);
    if (rowId.empty()) {
        return nullptr;
    }
    return std::make_shared<TableShape>(
        TableShape{name, QuoteName(table), std::move(rowId), FieldsOf(select)});
}

int FindField(const std::vector<Field>& fields, std::u16string_view name) {
    const auto found = std::find_if(fields.begin(), fields.end(), [name](const Field& field) {
        return std::equal(field.name.begin(), field.name.end(), name.begin(), name.end(),
                          [](char16_t a, char16_t b) { return Lower(a) == Lower(b); });
    });
    return found == fields.end() ? -1 : static_cast<int>(found - fields.begin());
}

}  // namespace generalutilities::sqlite
