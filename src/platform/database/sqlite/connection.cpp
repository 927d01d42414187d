#include "platform/database/sqlite/connection.h"

#include "platform/database/sqlite/value.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <functional>
#include <utility>
#include <variant>

namespace generalutilities::sqlite {

namespace {

constexpr char UndoWork[] = "Undoing a transaction";

std::atomic<int> busyTimeoutOfNewFiles = DefaultBusyTimeout;

/// True for a failure that lies in what was asked for, or that passes: the next request in the same
/// transaction may well succeed.
bool IsOfTheRequest(DatabaseFailure::Kind kind) {
    using Kind = DatabaseFailure::Kind;
    return kind == Kind::Query || kind == Kind::NotFound || kind == Kind::Locked;
}

}  // namespace

void SetBusyTimeout(int milliseconds) {
    busyTimeoutOfNewFiles = milliseconds;
}

Statement& Statement::operator=(Statement&& other) noexcept {
    if (this != &other) {
        Return();
        entry = std::move(other.entry);
        connection = other.connection;
    }
    return *this;
}

void Statement::Return() {
    if (entry) {
        connection->Keep(std::move(entry));
    }
}

Connection::Connection(OpenFileHandle opened, std::string file)
    : database(std::move(opened)), fileName(std::move(file)), busyTimeout(busyTimeoutOfNewFiles) {
    idle.reserve(StatementsKept + 1);
    sqlite3_extended_result_codes(database.get(), 1);
    sqlite3_busy_timeout(database.get(), busyTimeout);
    // A project file may come from anywhere: its schema must not be able to do harm.
    sqlite3_db_config(database.get(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database.get(), SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database.get(), SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
    // Without these two a name in quotes that names nothing would silently be a text.
    sqlite3_db_config(database.get(), SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(database.get(), SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    sqlite3_limit(database.get(), SQLITE_LIMIT_ATTACHED, 0);
}

bool Connection::ReadEncoding() {
    const Statement statement = Prepare("PRAGMA encoding", "Opening it");
    if (!statement || Next(statement, "Opening it") != Step::Row) {
        return false;
    }
    const unsigned char* text = sqlite3_column_text(statement.Get(), 0);
    const std::string_view name = text != nullptr ? reinterpret_cast<const char*>(text) : "";
    utf8 = name == "UTF-8";
    codeUnits = name == (std::endian::native == std::endian::little ? "UTF-16le" : "UTF-16be");
    return true;
}

int Connection::PrepareEntry(std::string_view sql, Statement& statement) {
    if (undoPending && !UndoAll()) {
        return SQLITE_NOMEM;
    }
    const std::size_t hash = std::hash<std::string_view>()(sql);
    const auto found = std::find_if(idle.rbegin(), idle.rend(), [&](const auto& entry) {
        return entry->hash == hash && entry->sql == sql;
    });
    statement.connection = this;
    if (found != idle.rend()) {
        statement.entry = std::move(*found);
        idle.erase(std::next(found).base());
        return SQLITE_OK;
    }
    auto entry = std::make_unique<Statement::Entry>();
    entry->sql = sql;
    entry->hash = hash;
    if (sql.size() > 0x7FFFFFFF) {
        return SQLITE_TOOBIG;
    }
    const int status =
        sqlite3_prepare_v3(database.get(), entry->sql.data(), static_cast<int>(entry->sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &entry->handle, nullptr);
    if (status == SQLITE_OK && entry->handle != nullptr) {
        statement.entry = std::move(entry);
    }
    return status;
}

Statement Connection::Prepare(std::string_view sql, const char* work) {
    Statement statement;
    if (const int status = PrepareEntry(sql, statement); status != SQLITE_OK) {
        Fail(status, work);
    }
    return statement;
}

Statement Connection::TryPrepare(std::string_view sql) {
    Statement statement;
    PrepareEntry(sql, statement);
    return statement;
}

void Connection::Keep(std::unique_ptr<Statement::Entry> entry) {
    sqlite3_reset(entry->handle);
    sqlite3_clear_bindings(entry->handle);
    idle.push_back(std::move(entry));
    if (idle.size() > StatementsKept) {
        idle.erase(idle.begin());
    }
}

Step Connection::Next(const Statement& statement, const char* work) {
    const int status = sqlite3_step(statement.Get());
    if (status == SQLITE_ROW || status == SQLITE_DONE) {
        Succeeded(statement);
        return status == SQLITE_ROW ? Step::Row : Step::Done;
    }
    Fail(status, work);
    writeWaitedInVain = waitedInVain && sqlite3_stmt_readonly(statement.Get()) == 0;
    sqlite3_reset(statement.Get());
    return Step::Failed;
}

bool Connection::Run(const Statement& statement, const char* work) {
    Step step = Step::Row;
    while (step == Step::Row) {
        step = Next(statement, work);
    }
    if (sqlite3_stmt_readonly(statement.Get()) == 0) {
        Changed();
    }
    return sqlite3_reset(statement.Get()) == SQLITE_OK && step == Step::Done;
}

bool Connection::Run(std::string_view sql, const char* work) {
    const Statement statement = Prepare(sql, work);
    return statement && Run(statement, work);
}

bool Connection::Bind(const Statement& statement, const std::vector<Literal>& literals,
                      const char* work) {
    const int count = sqlite3_bind_parameter_count(statement.Get());
    for (int i = 0; i < count && static_cast<std::size_t>(i) < literals.size(); ++i) {
        const Literal& literal = literals[static_cast<std::size_t>(i)];
        int status = SQLITE_OK;
        if (const auto* integer = std::get_if<std::int64_t>(&literal)) {
            status = sqlite3_bind_int64(statement.Get(), i + 1, *integer);
        } else if (const auto* real = std::get_if<double>(&literal)) {
            status = sqlite3_bind_double(statement.Get(), i + 1, *real);
        } else {
            status = BindText(statement.Get(), i + 1, std::get<std::u16string>(literal), utf8);
        }
        if (status != SQLITE_OK) {
            return Fail(status, work);
        }
    }
    return true;
}

bool Connection::BeginTrans() {
    if (!MayWrite()) {
        return false;
    }
    // The outermost one takes the write lock at once: a transaction that reads first and writes
    // later could be refused in its middle, without the wait.
    const std::string sql = transactionDepth == 0
                                ? "BEGIN IMMEDIATE"
                                : "SAVEPOINT level" + std::to_string(transactionDepth);
    if (!Run(sql, "Beginning a transaction")) {
        return false;
    }
    ++transactionDepth;
    return true;
}

bool Connection::CommitTrans() {
    if (transactionDepth == 0) {
        return Fail(DatabaseFailure::Kind::Other, "No transaction is open.");
    }
    const std::string sql =
        transactionDepth == 1 ? "COMMIT" : "RELEASE level" + std::to_string(transactionDepth - 1);
    if (!MayWrite() || !Run(sql, "Committing a transaction")) {
        return false;
    }
    --transactionDepth;
    return true;
}

bool Connection::Rollback() noexcept {
    try {
        if (transactionDepth == 0) {
            return Fail(DatabaseFailure::Kind::Other, "No transaction is open.");
        }
        Changed();
        --transactionDepth;
        if (transactionDepth == 0) {
            transactionLost = false;
            return UndoAll();
        }
        if (!MayWrite()) {
            return true;  // The outermost level undoes everything.
        }
        transactionLost = true;
        const std::string level = "level" + std::to_string(transactionDepth);
        transactionLost =
            !Run("ROLLBACK TO " + level, UndoWork) || !Run("RELEASE " + level, UndoWork);
        return !transactionLost;
    } catch (const std::bad_alloc&) {
        FailOutOfMemory();
        return false;
    }
}

bool Connection::UndoAll() noexcept {
    undoPending = sqlite3_get_autocommit(database.get()) == 0 &&
                  sqlite3_exec(database.get(), "ROLLBACK", nullptr, nullptr, nullptr) != SQLITE_OK;
    return !undoPending;
}

bool Connection::MayWrite() {
    if (transactionDepth > 0 && sqlite3_get_autocommit(database.get()) != 0) {
        transactionLost = true;
    }
    return !transactionLost || Fail(DatabaseFailure::Kind::Other,
                                    "The transaction has to be undone after an earlier failure.");
}

bool Connection::Fail(int status, const char* work) {
    CheckMemory(status);
    const char* message = (sqlite3_errcode(database.get()) & 0xFF) == (status & 0xFF)
                              ? sqlite3_errmsg(database.get())
                              : sqlite3_errstr(status);
    failure = DescribeFailure(status, message, work, fileName);
    if (transactionDepth > 0 && !IsOfTheRequest(failure.kind)) {
        transactionLost = true;
    }
    if (failure.kind == DatabaseFailure::Kind::Locked && !waitedInVain) {
        // A caller who goes on after this would wait anew for every row.
        waitedInVain = true;
        writeWaitedInVain = false;
        sqlite3_busy_timeout(database.get(), 0);
    }
    return false;
}

bool Connection::Fail(DatabaseFailure::Kind kind, std::string_view description) {
    failure = MakeFailure(kind, description);
    return false;
}

void Connection::FailOutOfMemory() noexcept {
    failure = {DatabaseFailure::Kind::OutOfMemory, {}, {}};  // Words would need memory.
    transactionLost = transactionDepth > 0;
}

void Connection::Succeeded(const Statement& statement) {
    // That one can read says nothing about writing.
    if (waitedInVain && (!writeWaitedInVain || sqlite3_stmt_readonly(statement.Get()) == 0)) {
        waitedInVain = false;
        sqlite3_busy_timeout(database.get(), busyTimeout);
    }
}

}  // namespace generalutilities::sqlite
