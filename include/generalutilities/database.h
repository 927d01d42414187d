#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// What the external view asks of a project's database, as abstract classes.
///
/// An engine implements these four classes; the built-in one keeps a project in an SQLite file. A
/// host that keeps its projects elsewhere derives its own and hands them over in an
/// `IProjectDatabase` (`automation/project_database.h`).
///
/// Conventions. Names and SQL texts are UTF-16 and names compare without regard to case. SQL is in
/// the Jet dialect (`\` is integer division, `Mod` the remainder, -1 is a true yes/no value, texts
/// stand in single or double quotes). An operation that fails gives false, null or nothing, and
/// `Database::LastFailure` says why; the one exception that is thrown is `std::bad_alloc`. One
/// database with its recordsets is used by one thread at a time.
namespace generalutilities {

/// What went wrong in the latest failing operation of a database.
struct DatabaseFailure {
    enum class Kind {
        None,
        NotFound,     ///< no such file, table, column or index
        NotAProject,  ///< the file is no database, or one that lacks what a project must have
        Locked,       ///< another process holds the file, also after the wait
        ReadOnly,     ///< the file or its folder cannot be written
        DiskFull,
        Corrupt,  ///< the file is damaged
        Query,    ///< the SQL text is wrong
        OutOfMemory,
        Other,
    };
    Kind kind = Kind::None;
    std::u16string description;  ///< for people: what failed and, where known, what to try
    std::u16string source;       ///< the engine, such as "SQLite"
};

/// The value of a field: database null, yes/no, 32-bit integer, floating-point number, or text.
/// A text is a view into the recordset, valid until that recordset moves, changes or closes.
using FieldValue = std::variant<std::monostate, bool, std::int32_t, double, std::u16string_view>;

/// How rows are opened.
enum class RecordsetType : std::int32_t {
    Table = 1,    ///< a whole table by name; has `SetIndex` and `Seek`
    Dynaset = 2,  ///< a query: membership is fixed at opening, values are read live at each row
};

/// The rows of a table or of a query, with one current row.
///
/// After opening, the current row is the first one, or there is none and `Bof` and `Eof` are both
/// true. A row that has been deleted since a dynaset was opened reads as null in every field.
class Recordset {
  public:
    virtual ~Recordset() = default;

    virtual bool Bof() = 0;
    virtual bool Eof() = 0;

    /// The number of rows; for a dynaset the number fixed at opening.
    virtual std::int32_t RecordCount() = 0;

    virtual bool MoveFirst() = 0;
    virtual bool MoveLast() = 0;
    /// To the next row; behind the last one `Eof` becomes true. Fails when `Eof` was true already.
    virtual bool MoveNext() = 0;

    /// The position of a field, by column name or alias, for the calls below; nothing if absent.
    virtual std::optional<int> FieldIndex(std::u16string_view name) = 0;

    /// The value of a field in the current row; null without a current row or for a bad position.
    virtual FieldValue GetValue(int field) = 0;

    /// Starts a new row, with the defaults of the table. `PutValue` fills it, `Update` writes it.
    virtual bool AddNew() = 0;
    /// Starts a change of the current row. `PutValue` changes it, `Update` writes it.
    virtual bool Edit() = 0;
    /// Sets a field of the row started by `AddNew` or `Edit`; fails without one.
    virtual bool PutValue(int field, const FieldValue& value) = 0;
    virtual bool Update() = 0;

    /// Names the index that `Seek` uses; fails if the table has no such index.
    virtual bool SetIndex(std::u16string_view name) = 0;
    /// Moves to the first row whose index key equals `key`. The result says whether the search
    /// could be made; `NoMatch` then says whether it found a row. Without a match there is no
    /// current row.
    virtual bool Seek(std::u16string_view key) = 0;
    virtual bool NoMatch() = 0;
};

/// A column of a table to be created.
struct FieldDefinition {
    enum class Type : std::int32_t { YesNo = 1, Long = 4, Text = 10, LongText = 12 };

    std::u16string name;
    Type type = Type::Text;
    /// The default of a new row. For texts this is the default's *expression*: two double quote
    /// characters stand for the empty text.
    std::variant<std::monostate, bool, std::int32_t, std::u16string> defaultValue = {};
    bool allowZeroLength = true;
    /// A storage hint (the property "UnicodeCompression"); an engine without such a choice ignores
    /// it.
    bool unicodeCompression = false;
};

/// A table to be created.
struct TableDefinition {
    std::u16string name;
    std::vector<FieldDefinition> fields;
};

/// An open project.
class Database {
  public:
    virtual ~Database() = default;

    /// Opens a table by name or the rows of a SELECT; null when that fails.
    virtual std::unique_ptr<Recordset> OpenRecordset(std::u16string_view name,
                                                     RecordsetType type) = 0;

    /// Runs an action query.
    virtual bool Execute(std::u16string_view query) = 0;

    /// Transactions nest; only the outermost commit makes the work visible to others. Where
    /// something in a transaction failed for want of memory or on the disk, no commit succeeds: it
    /// has to be rolled back.
    virtual bool BeginTrans() = 0;
    /// Without success the transaction stays open.
    virtual bool CommitTrans() = 0;
    /// Undoes everything since the matching `BeginTrans`, and leaves it in any case.
    virtual bool Rollback() noexcept = 0;

    virtual bool CreateTable(const TableDefinition& table) = 0;

    /// The names of the user's tables, and of the columns of a table (empty for an unknown table).
    virtual std::vector<std::u16string> TableNames() = 0;
    virtual std::vector<std::u16string> ColumnNames(std::u16string_view table) = 0;

    /// The failure of the latest operation that failed; `Kind::None` before any.
    virtual const DatabaseFailure& LastFailure() const = 0;
};

/// How a project file is opened.
enum class OpenMode {
    ReadWrite,  ///< falls back to reading alone where the file cannot be written
    Create,     ///< a new, empty project file; fails if the file exists
};

/// Opens the project at `location`; a location that is a path names an SQLite file. Null when that
/// fails, with the reason in `failure`. A file without the table `Pairs` is no project.
std::unique_ptr<Database> OpenDatabase(std::u16string_view location, OpenMode mode,
                                       DatabaseFailure& failure);

}  // namespace generalutilities
