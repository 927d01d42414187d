#pragma once

#include <generalutilities/database.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace generalutilities {

/// A query or table of the project with its fields bound to numbers.
///
/// Quiet on purpose: on a closed recordset, an unbound position or a failed operation every call
/// gives false, 0 or nothing, because a row that cannot be read must not stop an export.
class DaoRecordset {
  public:
    /// Closes what is open and opens a query (dynaset) or a table by name.
    bool Open(Database& database, std::u16string_view name, bool dynaset);
    /// Closes what is open and takes over an open recordset; true if there is one.
    bool Attach(std::unique_ptr<Recordset> opened);
    void Close();

    /// True when closed, or when there is neither a first nor a last row.
    bool IsEmpty();
    /// To the first row; false when closed or empty.
    bool MoveFirst();
    /// To the next row; false when closed, at the end, or when the end is reached by this move.
    bool MoveNext();
    /// The number of rows; leaves the first row current. 0 when closed or empty.
    std::int32_t Count();

    /// Binds the field `name` to `position` (1 and up).
    bool BindField(int position, std::u16string_view name);

    /// The text of a field; nothing for database null or a value that is no text. The view is valid
    /// until the recordset moves, changes or closes.
    std::optional<std::u16string_view> GetString(int position);
    std::int32_t GetLong(int position);  ///< 0 unless the value is an integer
    bool GetBool(int position);          ///< true only for a yes/no value that is true

    bool SetString(int position, std::u16string_view text);
    bool SetLong(int position, std::int32_t value);
    bool SetBool(int position, bool value);

    bool AddNew();
    bool Edit();
    bool Update();

    bool SetIndex(std::u16string_view name);
    /// To the first row whose index key equals `key`; false if there is none.
    bool SeekEqual(std::u16string_view key);

  private:
    std::optional<int> Bound(int position) const;
    FieldValue Value(int position);
    bool SetValue(int position, const FieldValue& value);

    std::vector<std::optional<int>> fields;  ///< positions in `recordset`, bound from 1 on
    std::unique_ptr<Recordset> recordset;    ///< null when closed
};

}  // namespace generalutilities
