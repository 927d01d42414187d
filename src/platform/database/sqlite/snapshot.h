#pragma once

#include <generalutilities/database.h>

#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/row_block.h"
#include "platform/database/sqlite/table_shape.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace generalutilities::sqlite {

/// The answer of a query that is no plain selection of one table's rows (a count, a join, a view):
/// its values are read at opening, all of them, and nothing can be written.
class Snapshot final : public Recordset {
  public:
    Snapshot(std::shared_ptr<Connection> opened, std::vector<Field> ofQuery, RowBlock values)
        : connection(std::move(opened)), fields(std::move(ofQuery)), rows(std::move(values)) {}

    bool Bof() override { return rows.Rows() == 0; }
    bool Eof() override { return position >= rows.Rows(); }
    std::int32_t RecordCount() override;
    bool MoveFirst() override;
    bool MoveLast() override;
    bool MoveNext() override;
    std::optional<int> FieldIndex(std::u16string_view name) override;
    FieldValue GetValue(int field) override;
    bool AddNew() override { return FailReadOnly(); }
    bool Edit() override { return FailReadOnly(); }
    bool PutValue(int, const FieldValue&) override { return FailReadOnly(); }
    bool Update() override { return FailReadOnly(); }
    bool SetIndex(std::u16string_view) override { return FailReadOnly(); }
    bool Seek(std::u16string_view) override { return FailReadOnly(); }
    bool NoMatch() override { return true; }

  private:
    bool FailReadOnly();

    std::shared_ptr<Connection> connection;
    std::vector<Field> fields;
    RowBlock rows;
    std::size_t position = 0;
};

}  // namespace generalutilities::sqlite
