#pragma once

#include "platform/database/sqlite/live_recordset.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace generalutilities::sqlite {

/// The rows that a query gave when it was opened: their rowids are kept, eight bytes a row, and
/// their values are read where the walk stands.
class Dynaset final : public LiveRecordset {
  public:
    Dynaset(std::shared_ptr<Connection> opened, std::shared_ptr<const TableShape> ofTable,
            std::vector<std::int64_t> rowIds);

    bool Bof() override { return keys.empty(); }
    bool Eof() override { return position >= keys.size(); }
    std::int32_t RecordCount() override;
    bool MoveFirst() override { return MoveTo(0); }
    bool MoveLast() override { return MoveTo(keys.empty() ? 0 : keys.size() - 1); }
    bool MoveNext() override;
    bool SetIndex(std::u16string_view name) override;
    bool Seek(std::u16string_view key) override;
    bool NoMatch() override { return true; }

  private:
    std::optional<std::int64_t> CurrentRowId() override;
    bool ReadCurrent() override;
    bool LiesClose(std::size_t count) const;
    void ReadStretch(std::size_t count);
    bool MoveTo(std::size_t row);
    bool FailWithoutIndex();

    const std::vector<std::int64_t> keys;
    std::size_t position = 0;
    std::size_t blockEnd = 0;  ///< the position behind the rows that were read last
    RowQuery stretch;
};

}  // namespace generalutilities::sqlite
