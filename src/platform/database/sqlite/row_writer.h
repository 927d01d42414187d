#pragma once

#include <generalutilities/database.h>

#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/table_shape.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The row that is being written: values by field, then one INSERT or UPDATE of just those that
/// were set, so that the table's defaults fill the rest of a new row.
namespace generalutilities::sqlite {

class RowWriter {
  public:
    enum class Change { None, Add, Edit };

    RowWriter(Connection& opened, const TableShape& ofTable) : connection(opened), shape(ofTable) {}

    Change Started() const { return change; }
    void Start(Change kind);
    void Drop() { change = Change::None; }
    void Set(std::size_t field, const FieldValue& value);

    /// Writes what was set, to the row `rowId` when a change was started. On failure the values
    /// stay, for another try.
    bool Write(std::int64_t rowId);

  private:
    struct Pending {
        bool set = false;
        FieldValue value;  ///< unless it is a text
        bool isText = false;
        std::u16string text;  ///< keeps its memory from row to row
    };

    bool PrepareFor();
    std::string SqlText() const;

    Connection& connection;
    const TableShape& shape;
    Change change = Change::None;
    std::vector<Pending> pending;
    Statement statement;
    std::string preparedFor;  ///< the kind of change and the fields set that `statement` is for
    std::string form;
};

}  // namespace generalutilities::sqlite
