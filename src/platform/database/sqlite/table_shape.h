#pragma once

#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/value.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What a recordset needs to know of its table and of the columns it shows.
namespace generalutilities::sqlite {

struct Field {
    std::u16string name;  ///< as the caller knows it: the alias or the column
    std::string column;   ///< the column that it stands for; empty for an expression
    ColumnKind kind = ColumnKind::Any;
};

struct TableShape {
    std::string name;
    std::string table;  ///< the name, quoted
    std::string rowId;  ///< the name by which the rowid goes, which no column hides
    std::vector<Field> fields;
};

/// The fields of a prepared SELECT.
std::vector<Field> FieldsOf(const Statement& select);

/// The shape of a prepared SELECT that shows plain columns of the one table `table` (unquoted);
/// null if it shows anything else, or if that is a view or a table without rowids.
std::shared_ptr<TableShape> ShapeOf(Connection& connection, const Statement& select,
                                    std::string_view table);

/// The position of the field of that name, in any case of ASCII letters; -1 if there is none.
int FindField(const std::vector<Field>& fields, std::u16string_view name);

/// Binds a name of the schema. It must stay valid until the statement has run.
void BindName(const Statement& statement, int parameter, std::string_view name);

}  // namespace generalutilities::sqlite
