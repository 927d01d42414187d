#pragma once

#include <generalutilities/database.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// What a project holds: its languages, files and counts, and its rows.
namespace generalutilities {

/// The counts of one target language. Lexicon rows are not counted.
struct LanguageCounts {
    std::int32_t langId = 0;
    std::uint64_t translated = 0;
    std::uint64_t empty = 0;
    std::uint64_t withComments = 0;
    /// Rows per status bit, for each bit that any row has; locked rows stand under `StatusLocked`.
    std::map<std::int32_t, std::uint64_t> rowsPerStatusBit;
};

/// A file of the project, and how many segments it has.
struct FileCounts {
    std::int32_t id = 0;
    std::u16string name;
    std::u16string spec;
    std::uint64_t rows = 0;
};

/// All counts of a project.
struct ProjectInfo {
    std::int32_t sourceLanguage = 0;
    std::uint64_t rows = 0;  ///< segments, without the lexicon
    std::uint64_t lexiconRows = 0;
    std::vector<LanguageCounts> languages;
    std::vector<FileCounts> files;
    /// Rows of an import that wait to be taken over; nothing without such a table.
    std::optional<std::uint64_t> reimportedRows;
};

/// The target languages of a project, in the order of its columns. Throws `Error` when it has none
/// or is no project.
std::vector<std::int32_t> ProjectLanguages(Database& database);

/// The source language; 1033 when the project does not say.
std::int32_t ProjectSourceLanguage(Database& database);

/// Reads the project once. Throws `Error`.
ProjectInfo ReadProjectInfo(Database& database);

/// Which rows `ReadProjectRows` gives. All that are set must hold.
struct RowFilter {
    std::int32_t langId = 0;
    std::optional<std::int32_t> fileId;  ///< -1: the lexicon; nothing: all files
    bool onlyUntranslated = false;
    std::int32_t statusMask = 0;  ///< rows with any of these status bits; 0: all
    /// A part of source, target, comment or identifier, found without regard to case.
    std::u16string text;
    std::uint64_t skip = 0;              ///< matching rows to pass over first
    std::optional<std::uint64_t> limit;  ///< matching rows to give at most
};

/// A row; the texts are valid only during the call.
struct ProjectRow {
    std::u16string_view id;
    std::u16string_view source;
    std::u16string_view target;
    std::u16string_view comments;
    std::int32_t status = 0;
    std::int32_t percentage = 0;
    std::int32_t fileId = 0;
};

/// Gives the matching rows in the order of their identifiers, and returns how many it gave. Throws
/// `Error` for a language that the project does not have.
std::uint64_t ReadProjectRows(Database& database, const RowFilter& filter,
                              const std::function<void(const ProjectRow&)>& row);

}  // namespace generalutilities
