#pragma once

#include "extview/dao_recordset.h"
#include "extview/row_selection.h"

#include <optional>
#include <string>
#include <string_view>

namespace generalutilities {

/// The rows of a query of the duplicate pass, with what makes two of them equal.
class DuplicateRows {
  public:
    DuplicateRows(std::int32_t sourceLanguage, std::int32_t targetLanguage)
        : sourceLangId(sourceLanguage), targetLangId(targetLanguage) {}

    /// False when the query gives no recordset; one without rows is open and empty.
    bool Open(Database& database, std::u16string_view query);
    bool IsEmpty() { return rows.IsEmpty(); }
    std::int32_t Count() { return rows.Count(); }
    bool MoveFirst() { return rows.MoveFirst(); }
    bool MoveNext() { return rows.MoveNext(); }

    std::u16string_view Id() { return Text(IdPosition); }
    std::u16string_view Source() { return Text(SourcePosition); }
    /// The key that the project has for the row; nothing without one, or if the query has none.
    std::optional<std::u16string_view> StoredKey() { return rows.GetString(KeyPosition); }
    /// Rows with equal forms of both are an equal pair.
    std::u16string SourceForm();
    std::u16string TargetForm();

    bool IsDone() { return rows.GetBool(DonePosition); }
    void MarkDone();

  private:
    enum Position { SourcePosition = 1, TargetPosition, DonePosition, IdPosition, KeyPosition };

    std::u16string_view Text(Position position) {
        return rows.GetString(position).value_or(std::u16string_view());
    }

    const std::int32_t sourceLangId;
    const std::int32_t targetLangId;
    DaoRecordset rows;
};

}  // namespace generalutilities
