// SQLite's result codes as kinds of failure and as words for the person in front of the screen.

#include "platform/database/sqlite/connection.h"
#include "platform/files/utf8.h"

namespace generalutilities::sqlite {

namespace {

using Kind = DatabaseFailure::Kind;

Kind KindOf(int status, std::string_view message) {
    switch (status & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return Kind::Locked;
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_CANTOPEN:  // the file is open: the journal beside it could not be made
            return Kind::ReadOnly;
        case SQLITE_FULL:
            return Kind::DiskFull;
        case SQLITE_CORRUPT:
            return Kind::Corrupt;
        case SQLITE_NOTADB:
            return Kind::NotAProject;
        case SQLITE_NOMEM:
            return Kind::OutOfMemory;
        case SQLITE_ERROR:
            return message.rfind("no such ", 0) == 0 ? Kind::NotFound : Kind::Query;
        case SQLITE_RANGE:
        case SQLITE_MISMATCH:
        case SQLITE_CONSTRAINT:
        case SQLITE_TOOBIG:
        case SQLITE_AUTH:
            return Kind::Query;
        default:
            return Kind::Other;
    }
}

std::string AdviceFor(Kind kind, std::string_view file) {
    const std::string quoted = "\"" + std::string(file) + "\"";
    switch (kind) {
        case Kind::Locked:
            return "Another program is using " + quoted +
                   ". Close the project there, or try again later.";
        case Kind::ReadOnly:
            return "Make " + quoted + " and its folder writable, or work on a copy.";
        case Kind::DiskFull:
            return "Free some space on the disk of " + quoted + " and try again.";
        case Kind::Corrupt:
            return "The file " + quoted + " is damaged. Restore it from a backup.";
        case Kind::NotAProject:
            return "The file " + quoted + " is no project database.";
        default:
            return {};
    }
}

}  // namespace

DatabaseFailure DescribeFailure(int status, std::string_view message, std::string_view work,
                                std::string_view file) {
    const Kind kind = KindOf(status, message);
    std::string description(work);
    description += " failed: ";
    description += message;
    description += '.';
    if (const std::string advice = AdviceFor(kind, file); !advice.empty()) {
        description += ' ';
        description += advice;
    }
    return MakeFailure(kind, description);
}

DatabaseFailure MakeFailure(DatabaseFailure::Kind kind, std::string_view description) {
    return {kind, files::FromUtf8(description), u"SQLite"};
}

}  // namespace generalutilities::sqlite
