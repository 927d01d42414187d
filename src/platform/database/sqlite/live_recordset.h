#pragma once

#include <generalutilities/database.h>

#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/row_block.h"
#include "platform/database/sqlite/row_writer.h"
#include "platform/database/sqlite/table_shape.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What table-type recordsets and dynasets share: reading the current row by its rowid, and
/// changing it or adding one.
///
/// Only the fields that somebody asked for by `FieldIndex` are read, so a project with thirty
/// target languages costs what the one in use costs. A straight walk reads in short runs ahead; a
/// change through the same connection makes what was read ahead worthless, and it is read again.
namespace generalutilities::sqlite {

class LiveRecordset : public Recordset {
  public:
    LiveRecordset(std::shared_ptr<Connection> opened, std::shared_ptr<const TableShape> ofTable);

    std::optional<int> FieldIndex(std::u16string_view name) final;
    FieldValue GetValue(int field) final;
    bool AddNew() final;
    bool Edit() final;
    bool PutValue(int field, const FieldValue& value) final;
    bool Update() final;

  protected:
    /// A SELECT of the rowid and the fields asked for, prepared when it is first used and again
    /// when more fields are asked for.
    struct RowQuery {
        std::string tail;  ///< what stands behind the table's name
        Statement statement;
        std::size_t fields = SIZE_MAX;
    };

    /// The rowid of the current row; nothing without one.
    virtual std::optional<std::int64_t> CurrentRowId() = 0;
    /// Reads the current row, and perhaps following ones, as rows of a new block.
    virtual bool ReadCurrent() = 0;

    /// To be called at every move: views of the row left behind end, and a started change is
    /// dropped.
    void LeaveRow();
    /// To the next row of the block if there is one that may still be used.
    bool StepInBlock();
    /// Empties the block. The result is the number of rows to read into it: it grows with each
    /// block that continues the one before.
    std::size_t BeginBlock(bool continues);
    bool BlockIsFull(std::size_t window) const;

    bool Prepare(RowQuery& query);
    /// Adds the row that the query's statement stands on to the block.
    void TakeRow(const RowQuery& query);
    /// Adds a row that is no longer there.
    void TakeMissing(std::int64_t rowId) { block.AppendMissing(rowId, kinds.size()); }
    /// Adds the row of that rowid to the block, one of nulls if there is none.
    bool ReadRow(std::int64_t rowId);

    const std::shared_ptr<Connection> connection;
    const std::shared_ptr<const TableShape> shape;
    RowBlock block;
    std::size_t rowInBlock = 0;  ///< the current row, when `block` holds it

  private:
    static constexpr std::size_t LargestWindow = 256;
    static constexpr std::size_t LargestTexts = std::size_t{128} * 1024;  // code units
    static constexpr std::size_t NotAsked = SIZE_MAX;

    bool IsFresh() const { return blockGeneration == connection->Generation(); }
    bool IsField(int field) const;
    bool MakeCurrent();
    bool ReadCurrentAgain();
    void Ask(std::size_t field);

    std::vector<std::size_t> slots;  ///< per field its column in the block
    std::vector<std::size_t> asked;  ///< per column its field
    std::vector<ColumnKind> kinds;   ///< per column
    std::uint64_t blockGeneration = 0;
    std::size_t window = 1;
    bool handedOut = false;         ///< views of the current row may be out
    std::vector<RowBlock> retired;  ///< earlier blocks that views of the current row point into
    RowQuery byRowId;
    RowWriter writer;
    std::optional<std::int64_t> editedRow;
};

/// Keeps one state of the file in view, and the file from being locked anew for each row, while
/// rows are read outside a transaction.
class ReadSpan {
  public:
    explicit ReadSpan(Connection& opened);
    ~ReadSpan();
    ReadSpan(const ReadSpan&) = delete;
    ReadSpan& operator=(const ReadSpan&) = delete;

  private:
    Connection& connection;
    bool begun;
};

}  // namespace generalutilities::sqlite
