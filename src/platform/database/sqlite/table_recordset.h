#pragma once

#include "platform/database/sqlite/live_recordset.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace generalutilities::sqlite {

/// A whole table in the order of its rowids, and single rows of it by an index.
class TableRecordset final : public LiveRecordset {
  public:
    /// Not yet on a row: `MoveFirst` comes next.
    TableRecordset(std::shared_ptr<Connection> opened, std::shared_ptr<const TableShape> ofTable);

    bool Bof() override { return place == Place::Empty; }
    bool Eof() override { return place == Place::Empty || place == Place::Behind; }
    std::int32_t RecordCount() override;
    bool MoveFirst() override;
    bool MoveLast() override;
    bool MoveNext() override;
    bool SetIndex(std::u16string_view name) override;
    bool Seek(std::u16string_view key) override;
    bool NoMatch() override { return noMatch; }

  private:
    enum class Place {
        Empty,  ///< the table had no row at the latest look
        Row,
        Nowhere,  ///< behind a search without a match
        Behind,   ///< behind the last row
    };

    std::optional<std::int64_t> CurrentRowId() override;
    bool ReadCurrent() override;
    bool MoveToEnd(RowQuery& query);
    Step TakeFirst(RowQuery& query);

    Place place = Place::Empty;
    std::int64_t rowId = 0;
    bool noMatch = true;
    bool hasIndex = false;
    RowQuery first;
    RowQuery last;
    RowQuery following;
    RowQuery byKey;
};

}  // namespace generalutilities::sqlite
