#include "project_checks.h"

#include <generalutilities/project/contents.h>

#include "failure.h"
#include "language.h"
#include "unicode.h"

#include <algorithm>

namespace generalutilities::cli {
namespace {

/// Column names compare without regard to case, as everywhere in a project.
bool HasColumn(const std::vector<std::u16string>& columns, std::string_view name) {
    const auto lower = [](auto c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; };
    return std::any_of(columns.begin(), columns.end(), [&](const std::u16string& column) {
        return std::equal(column.begin(), column.end(), name.begin(), name.end(),
                          [&](char16_t a, char b) { return lower(a) == lower(b); });
    });
}

/// Changes nothing, and fails as a change would.
bool TryToChange(Database& database) {
    return database.Execute(u"UPDATE Pairs SET Done = 0 WHERE ID IS NULL");
}

[[noreturn]] void FailToChange(const OpenProject& project) {
    const DatabaseFailure& failure = project.database->LastFailure();
    throw Failure(project.path + ": the project cannot be changed: " + ToUtf8(failure.description),
                  failure.source.empty() ? "GeneralUtilities" : ToUtf8(failure.source),
                  failure.kind == DatabaseFailure::Kind::ReadOnly   ? ErrorWriteProtected
                  : failure.kind == DatabaseFailure::Kind::Locked   ? ErrorLockViolation
                  : failure.kind == DatabaseFailure::Kind::DiskFull ? ErrorDiskFull
                                                                    : E_FAIL);
}

}  // namespace

void RequireLanguage(const OpenProject& project, std::int32_t langId) {
    const std::vector<std::u16string> columns = project.database->ColumnNames(u"Pairs");
    const std::string suffix = "_" + std::to_string(langId);
    std::string missing;
    const auto require = [&](const std::string& name) {
        if (!HasColumn(columns, name)) {
            missing += (missing.empty() ? "" : ", ") + name;
        }
    };
    for (const char* name : {"ID", "Source", "Source2Index", "Done", "FileID", "Selected"}) {
        require(name);
    }
    if (!missing.empty()) {
        throw Failure(project.path + ": the table Pairs has no column " + missing +
                      "; this is no complete project");
    }
    for (const char* name : {"Target", "Status", "Comments", "Percentage"}) {
        require(name + suffix);
    }
    if (missing.empty()) {
        return;
    }
    std::string languages;
    for (const std::int32_t language : ProjectLanguages(*project.database)) {
        languages += (languages.empty() ? "" : ", ") + LanguageName(language);
    }
    throw Failure(project.path + ": no columns for the language " + LanguageName(langId) +
                  " (missing: " + missing + "); the project has " + languages);
}

bool IsWritable(const OpenProject& project) {
    if (TryToChange(*project.database)) {
        return true;
    }
    if (project.database->LastFailure().kind != DatabaseFailure::Kind::ReadOnly) {
        FailToChange(project);
    }
    return false;
}

void RequireWritable(const OpenProject& project) {
    if (!TryToChange(*project.database)) {
        FailToChange(project);
    }
}

}  // namespace generalutilities::cli
