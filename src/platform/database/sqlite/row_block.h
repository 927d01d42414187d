#pragma once

#include <generalutilities/database.h>

#include "platform/database/sqlite/value.h"

#include <cstddef>
#include <cstdint>
#include <sqlite3.h>
#include <vector>

/// Rows copied out of a statement: the values of a few columns, all texts in one buffer.
///
/// Copying is what lets a statement be reset right behind its row, and it is what a view given to a
/// caller points into.
namespace generalutilities::sqlite {

class RowBlock {
  public:
    void Clear();

    /// Adds the statement's current row: its columns from `firstColumn` on, one for each of
    /// `kinds`. `codeUnits` is what the connection says of its texts.
    void Append(std::int64_t rowId, sqlite3_stmt* statement, int firstColumn,
                const std::vector<ColumnKind>& kinds, bool codeUnits);
    /// Adds a row that reads as null in each of `width` columns.
    void AppendMissing(std::int64_t rowId, std::size_t width);

    std::size_t Rows() const { return rowIds.size(); }
    std::int64_t RowId(std::size_t row) const { return rowIds[row]; }
    /// A text is a view into this block, valid until the block changes.
    FieldValue Get(std::size_t row, std::size_t column) const;

    /// Forgets the rows behind `row`; views of the others stay valid.
    void DropBehind(std::size_t row);
    /// Whether the first row of `other` has the values of `row` here.
    bool Equals(std::size_t row, const RowBlock& other) const;

    /// The size of the texts held, to bound how far to read ahead.
    std::size_t TextUnits() const { return texts.size(); }

  private:
    enum class Type : std::uint8_t { Null, Bool, Integer, Real, Text };
    struct Cell {
        Type type = Type::Null;
        union {
            std::int32_t integer = 0;
            double real;
            std::size_t offset;
        };
        std::size_t length = 0;
    };

    Cell Read(sqlite3_stmt* statement, int column, ColumnKind kind, bool codeUnits);
    Cell ReadText(sqlite3_stmt* statement, int column, bool codeUnits);

    std::size_t width = 0;
    std::vector<std::int64_t> rowIds;
    std::vector<Cell> cells;
    std::vector<char16_t> texts;  ///< no string: a short one would move away under the views
};

}  // namespace generalutilities::sqlite
