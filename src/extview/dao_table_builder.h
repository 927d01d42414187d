#pragma once

#include <generalutilities/database.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace generalutilities {

/// Builds one table of the project, replacing an earlier one of that name.
class DaoTableBuilder {
  public:
    void Attach(Database& opened);

    /// Starts the definition of a table. With `dropFirst` a table of that name goes first; a
    /// failing drop stops nothing and is told to the debug output alone. False without a database.
    bool Create(std::u16string_view name, bool dropFirst);

    /// `defaultValue` is the expression of the default: two double quotes for the empty text.
    void AddTextField(std::u16string_view name, std::u16string_view defaultValue);
    void AddMemoField(std::u16string_view name, std::u16string_view defaultValue,
                      bool allowZeroLength, bool compress);
    void AddBooleanField(std::u16string_view name, bool defaultValue);
    void AddLongField(std::u16string_view name, std::int32_t defaultValue);

    /// Creates the table in the project.
    bool Commit();

  private:
    Database* database = nullptr;  ///< not owned
    TableDefinition table;
};

/// Where diagnostics go that no caller is told: by default nowhere. A test or a host sets a
/// function; an empty one restores the default. Set it before work starts: it is process-wide.
void SetDebugOutput(std::function<void(std::u16string_view)> output);
void DebugOutput(std::u16string_view text);

}  // namespace generalutilities
