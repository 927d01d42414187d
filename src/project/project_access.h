#pragma once

#include <generalutilities/database.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

/// The project's tables as the functions of this room use them: what the database cannot do becomes
/// an `Error` with words, instead of an empty answer.
namespace generalutilities {

/// Throws the `Error` for a failure of the database; `doing` says what was tried, on what.
[[noreturn]] void ThrowDatabaseFailure(const DatabaseFailure& failure, std::string_view doing);

/// An open table or query. Texts that it gives are valid until it moves, changes or closes.
class TableReader {
  public:
    /// Throws when it cannot be opened.
    TableReader(Database& opened, std::u16string_view name, RecordsetType type);

    /// The position of a column; throws when there is none.
    int Field(std::u16string_view column);

    bool AtEnd() { return recordset->Eof(); }
    void MoveNext();
    /// To the row with this key in the index `iID`; false if there is none.
    bool Seek(std::u16string_view key);
    std::uint64_t Count();

    std::u16string_view Text(int field);  ///< empty for null
    std::int32_t Long(int field);         ///< 0 for null
    bool Bool(int field);

    void AddNew();
    void Edit();
    void Put(int field, const FieldValue& value);
    void Update();

  private:
    [[noreturn]] void Fail(std::string_view doing);

    Database& database;
    std::string name;  ///< for messages
    std::unique_ptr<Recordset> recordset;
    bool hasIndex = false;
};

/// A transaction that is undone unless it is committed.
class ProjectTransaction {
  public:
    explicit ProjectTransaction(Database& opened);
    ~ProjectTransaction();
    ProjectTransaction(const ProjectTransaction&) = delete;
    ProjectTransaction& operator=(const ProjectTransaction&) = delete;
    void Commit();

  private:
    Database& database;
    bool isOpen = true;
};

/// The name of a language's column: "Target_1036".
std::u16string LanguageColumn(std::u16string_view name, std::int32_t langId);

/// Throws when the project does not have this target language, and names those that it has.
void RequireLanguage(Database& database, std::int32_t langId);

/// Whether the project has this table.
bool HasTable(Database& database, std::u16string_view table);

/// "fr-FR (1036)", for messages.
std::string LanguageForMessage(std::int32_t langId);

}  // namespace generalutilities
