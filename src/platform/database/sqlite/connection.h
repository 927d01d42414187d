#pragma once

#include <generalutilities/database.h>

#include "platform/database/sqlite/dialect.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <vector>

/// One open SQLite file: its prepared statements, its transactions, and what last went wrong.
///
/// No statement stays in the middle of its rows when an operation ends, so nothing of ours ever
/// stands in the way of a DROP TABLE, of a commit, or of another process.
namespace generalutilities::sqlite {

/// How long a locked file is waited for before an operation fails.
inline constexpr int DefaultBusyTimeout = 5000;  // milliseconds

/// Replaces the time for the files opened from now on; for tests and impatient hosts.
void SetBusyTimeout(int milliseconds);

struct CloseFile {
    void operator()(sqlite3* opened) const { sqlite3_close_v2(opened); }
};
using OpenFileHandle = std::unique_ptr<sqlite3, CloseFile>;

class Connection;

/// A prepared statement on loan from its connection, to which it returns, reset, at the end.
class Statement {
  public:
    Statement() = default;
    Statement(Statement&& other) noexcept = default;
    Statement& operator=(Statement&& other) noexcept;
    ~Statement() { Return(); }

    explicit operator bool() const { return entry != nullptr; }
    sqlite3_stmt* Get() const { return entry->handle; }

  private:
    friend class Connection;
    struct Entry {
        std::string sql;
        std::size_t hash = 0;
        sqlite3_stmt* handle = nullptr;
        Entry() = default;
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;
        ~Entry() { sqlite3_finalize(handle); }
    };
    void Return();

    std::unique_ptr<Entry> entry;
    Connection* connection = nullptr;
};

/// Resets a statement at the end of the operation that steps it.
class ResetAtEnd {
  public:
    explicit ResetAtEnd(const Statement& stepped) : statement(stepped) {}
    ~ResetAtEnd() { sqlite3_reset(statement.Get()); }
    ResetAtEnd(const ResetAtEnd&) = delete;
    ResetAtEnd& operator=(const ResetAtEnd&) = delete;

  private:
    const Statement& statement;
};

enum class Step { Row, Done, Failed };

/// Throws `std::bad_alloc` if that is what SQLite's `status` says.
inline void CheckMemory(int status) {
    if (status == SQLITE_NOMEM || status == SQLITE_IOERR_NOMEM) {
        throw std::bad_alloc();
    }
}

class Connection {
  public:
    /// At most this many statements are kept prepared while nobody uses them.
    static constexpr std::size_t StatementsKept = 64;

    /// Takes over `opened`; `file` is its name for messages.
    Connection(OpenFileHandle opened, std::string file);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// To be called once before texts are read or written: learns how the file keeps them.
    bool ReadEncoding();

    sqlite3* Handle() const { return database.get(); }
    bool KeepsUtf8() const { return utf8; }
    /// Whether the bytes of a text in the file are the code units of this machine.
    bool KeepsCodeUnits() const { return codeUnits; }

    /// A statement of this text, prepared now or earlier; an empty one on failure, which is
    /// recorded with `work` ("reading a row") as what failed.
    Statement Prepare(std::string_view sql, const char* work);
    /// The same without recording a failure.
    Statement TryPrepare(std::string_view sql);

    /// The next row, with a failure recorded. The statement must be reset before the operation
    /// ends.
    Step Next(const Statement& statement, const char* work);
    /// Runs to the end and resets; true without a failure.
    bool Run(const Statement& statement, const char* work);
    /// Prepares and runs a statement without parameters.
    bool Run(std::string_view sql, const char* work);

    bool Bind(const Statement& statement, const std::vector<Literal>& literals, const char* work);

    /// A number that grows with every change made through this connection: values that were read
    /// under another number may be out of date.
    std::uint64_t Generation() const { return generation; }
    void Changed() { ++generation; }

    bool BeginTrans();
    /// A failure leaves the level open.
    bool CommitTrans();
    /// Leaves the innermost level in any case. Where there is no memory to undo the outermost one,
    /// that is made up for in front of the next statement.
    bool Rollback() noexcept;
    /// False, with a failure, in a transaction that is lost: SQLite undid it by itself, or
    /// something in it failed that has nothing to do with what was asked for, such as the disk.
    /// What follows must not be written alone.
    bool MayWrite();

    /// Records the failure of SQLite's `status` while `work` was done. Always false; throws
    /// `std::bad_alloc` if the failure is that memory ran out.
    bool Fail(int status, const char* work);
    bool Fail(DatabaseFailure::Kind kind, std::string_view description);
    const DatabaseFailure& LastFailure() const { return failure; }

    /// Runs `operation`; when memory runs out in it, records that and passes the exception on.
    template <typename Operation>
    auto Guard(Operation&& operation) -> decltype(operation()) {
        try {
            return operation();
        } catch (const std::bad_alloc&) {
            FailOutOfMemory();
            throw;
        }
    }

    std::size_t StatementsIdle() const { return idle.size(); }

  private:
    friend class Statement;
    void Keep(std::unique_ptr<Statement::Entry> entry);
    int PrepareEntry(std::string_view sql, Statement& statement);
    void FailOutOfMemory() noexcept;
    void Succeeded(const Statement& statement);
    bool UndoAll() noexcept;

    OpenFileHandle database;  ///< stands first: statements go before it
    std::string fileName;
    DatabaseFailure failure;
    std::vector<std::unique_ptr<Statement::Entry>> idle;  ///< the latest used stand last
    std::uint64_t generation = 0;
    std::size_t transactionDepth = 0;
    bool transactionLost = false;
    bool undoPending = false;   ///< left, but not undone
    bool waitedInVain = false;  ///< the file was locked to the end of the wait: do not wait again
    bool writeWaitedInVain = false;  ///< ... for writing
    bool utf8 = false;
    bool codeUnits = false;
    int busyTimeout;
};

/// What failed, why, and what to try, in one or two sentences.
DatabaseFailure DescribeFailure(int status, std::string_view message, std::string_view work,
                                std::string_view file);

/// A failure of this engine with words of our own.
DatabaseFailure MakeFailure(DatabaseFailure::Kind kind, std::string_view description);

}  // namespace generalutilities::sqlite
