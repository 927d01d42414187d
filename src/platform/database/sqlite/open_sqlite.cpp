// Opening a project file. The file is looked at before SQLite sees it, because SQLite would create
// a missing file, take an empty one for a database, and know nothing of what a project must hold.

#include "platform/database/sqlite/open_sqlite.h"

#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/sqlite_database.h"
#include "platform/database/sqlite/table_shape.h"
#include "platform/files/files.h"
#include "platform/files/utf8.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace generalutilities::sqlite {

namespace {

using Kind = DatabaseFailure::Kind;

/// Marks a file as ours for programs that tell files by their content. ("GUpj")
constexpr char NewFileSql[] = "PRAGMA encoding = 'UTF-16le'; PRAGMA application_id = 1196781674;";

class Opener {
  public:
    Opener(std::u16string_view path, DatabaseFailure& reason)
        : name(files::ToUtf8Lossy(path)), nativePath(files::ToNativePath(path)), failure(reason) {}

    std::unique_ptr<Database> Open() {
        if (!CheckFile() || !OpenConnection() || !CheckProject()) {
            return nullptr;
        }
        return std::make_unique<SqliteDatabase>(connection);
    }

    std::unique_ptr<Database> Create() {
        if (!CreateFile()) {
            return nullptr;
        }
        try {
            if (OpenConnection() && PrepareNewFile()) {
                return std::make_unique<SqliteDatabase>(connection);
            }
        } catch (const std::bad_alloc&) {
            unlink(nativePath.c_str());
            throw;
        }
        unlink(nativePath.c_str());
        return nullptr;
    }

  private:
    bool Fail(Kind kind, std::string_view rest) {
        failure = MakeFailure(kind, "The project file \"" + name + "\" " + std::string(rest));
        return false;
    }

    bool FailBySystem(int error, std::string_view what) {
        const std::string rest = std::string(what) + ": " + std::strerror(error) + ".";
        switch (error) {
            case ENOENT:
            case ENOTDIR:
                return Fail(Kind::NotFound, rest + " Check the path.");
            case EACCES:
            case EPERM:
            case EROFS:
                return Fail(Kind::ReadOnly,
                            rest + " Check the permissions of the file and folder.");
            case ENOSPC:
            case EDQUOT:
                return Fail(Kind::DiskFull, rest + " Free some space on that disk.");
            default:
                return Fail(Kind::Other, rest);
        }
    }

    bool CheckFile() {
        struct stat status = {};
        if (stat(nativePath.c_str(), &status) != 0) {
            return FailBySystem(errno, "cannot be opened");
        }
        if (S_ISDIR(status.st_mode)) {
            return Fail(Kind::NotAProject, "is a folder. Name the project file inside it.");
        }
        if (!S_ISREG(status.st_mode)) {
            return Fail(Kind::NotAProject, "is no ordinary file.");
        }
        // Opening it to see would, at the closing, drop the locks that this process holds on it.
        if (faccessat(AT_FDCWD, nativePath.c_str(), R_OK, AT_EACCESS) != 0) {
            return FailBySystem(errno, "cannot be read");
        }
        if (status.st_size == 0) {
            return Fail(Kind::NotAProject,
                        "is empty. Restore it from a backup, or create the project anew.");
        }
        return true;
    }

    bool CreateFile() {
        const int descriptor =
            open(nativePath.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor < 0) {
            return errno == EEXIST ? Fail(Kind::Other,
                                          "exists already. Choose another name or remove it first.")
                                   : FailBySystem(errno, "cannot be created");
        }
        close(descriptor);
        return true;
    }

    bool OpenConnection() {
        // The prefix keeps SQLite from seeing a name of its own (":memory:", "file:...").
        const std::string path = nativePath.front() == '/' ? nativePath : "./" + nativePath;
        sqlite3* database = nullptr;
        // Falls back to reading alone by itself where the file cannot be written.
        const int status = sqlite3_open_v2(path.c_str(), &database,
                                           SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
        OpenFileHandle opened(database);
        CheckMemory(status);
        if (status != SQLITE_OK) {
            return Fail(Kind::Other,
                        std::string("cannot be opened: ") + sqlite3_errstr(status) + ".");
        }
        connection = std::make_shared<Connection>(std::move(opened), name);
        return true;
    }

    bool CheckProject() {
        if (!connection->ReadEncoding()) {
            return FailByConnection();
        }
        const Statement table = connection->Prepare(
            "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = 'Pairs' COLLATE NOCASE",
            "Opening it");
        if (!table) {
            return FailByConnection();
        }
        const Step step = connection->Next(table, "Opening it");
        if (step == Step::Failed) {
            return FailByConnection();
        }
        if (step == Step::Done) {
            return Fail(
                Kind::NotAProject,
                "is a database without the table \"Pairs\", so it is no project. Check that "
                "it is the right file.");
        }
        for (const char* column : {"ID", "Source"}) {
            const int status =
                sqlite3_table_column_metadata(connection->Handle(), "main", "Pairs", column,
                                              nullptr, nullptr, nullptr, nullptr, nullptr);
            CheckMemory(status);
            if (status != SQLITE_OK) {
                return Fail(Kind::NotAProject,
                            "has a table \"Pairs\" without the column \"" + std::string(column) +
                                "\", so it is no project. Check that it is the right file.");
            }
        }
        return true;
    }

    bool FailByConnection() {
        const DatabaseFailure& reason = connection->LastFailure();
        if (reason.kind == Kind::NotAProject) {
            return Fail(Kind::NotAProject,
                        "is no database. Check that it is the right file, or restore it from a "
                        "backup.");
        }
        return Fail(reason.kind, "cannot be opened. " + files::ToUtf8Lossy(reason.description));
    }

    bool PrepareNewFile() {
        const int status =
            sqlite3_exec(connection->Handle(), NewFileSql, nullptr, nullptr, nullptr);
        if (status != SQLITE_OK) {
            connection->Fail(status, "Writing its first page");
            return FailByConnection();
        }
        return connection->ReadEncoding() || FailByConnection();
    }

    std::string name;
    std::string nativePath;
    DatabaseFailure& failure;
    std::shared_ptr<Connection> connection;
};

}  // namespace

std::unique_ptr<Database> OpenFile(std::u16string_view path, OpenMode mode,
                                   DatabaseFailure& failure) {
    try {
        Opener opener(path, failure);
        return mode == OpenMode::Create ? opener.Create() : opener.Open();
    } catch (const std::bad_alloc&) {
        failure = {};
        failure.kind = Kind::OutOfMemory;
        return nullptr;
    }
}

}  // namespace generalutilities::sqlite
