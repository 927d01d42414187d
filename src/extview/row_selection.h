#pragma once

#include <generalutilities/database.h>

#include <cstdint>
#include <string>
#include <string_view>

/// Which rows of the project an export takes: the options decoded, and the SQL texts made of them.
namespace generalutilities {

/// The bits of `ExportOptions`, one by one.
struct ExportFlags {
    bool onlyUntranslated = false;
    bool onlyTranslated = false;
    bool uniquePairsOnly = false;
    bool skipLocked = false;
    bool skipExact = false;
    bool skipGuaranteed = false;
    bool onlyWithComments = false;
    bool onlyPending = false;
    bool removeCodes = false;
    bool copySourceToEmptyTarget = false;
    bool sortBySource = false;
    bool lockedIsPerfect = false;
    bool guaranteedIsPerfect = false;
    bool showIdColumn = false;
    bool colorAllRows = false;
    bool showFileColumn = false;
    bool useFileSpec = false;  ///< never without `showFileColumn`
    bool hideReadOnlyColumns = false;
    bool showStatusColumn = false;
    bool showStatusValue = false;
    bool colorStatusCell = false;
};

ExportFlags DecodeOptions(std::int32_t exportOptions);

/// The SQL texts of one export, in the Jet dialect.
struct RowQueries {
    std::u16string mainQuery;  ///< the rows that go out, in their order

    /// The rows of the same selection with one source key, in no stated order: the key, quoted by
    /// `QuoteSql`, stands between the two texts.
    std::u16string duplicateQuery;
    std::u16string duplicateTail;

    std::u16string rowsQuery;  ///< the same rows for the duplicate pass, in no stated order

    std::u16string whereClause;  ///< the selection without the conditions on `Done` and `Selected`
};

RowQueries BuildQueries(const ExportFlags& flags, std::int32_t fileId, std::int32_t targetLangId,
                        std::u16string_view lexiconOrderBy);

/// Doubles each single quote, for a text between single quotes.
std::u16string QuoteSql(std::u16string_view text);

/// Whether a language is written from right to left.
bool IsRightToLeft(std::int32_t langId);

/// The language identifier of the project's source texts; 1033 when the project does not tell.
std::int32_t ReadSourceLanguage(Database& database);

/// The name or the whole path of a file of the project; empty for an unknown identifier.
std::u16string FileNameOf(Database& database, std::int32_t fileId);
std::u16string FileSpecOf(Database& database, std::int32_t fileId);

}  // namespace generalutilities
