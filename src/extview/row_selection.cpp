#include "extview/row_selection.h"

#include <generalutilities/extview/export_options.h>

#include "extview/dao_recordset.h"
#include "text/decimal.h"

namespace generalutilities {

namespace {

constexpr std::int32_t DefaultSourceLanguage = 1033;
constexpr std::uint32_t SubLanguageFactor = 0x400U;
constexpr std::int32_t PrimaryLanguageMask = 0x3FF;

std::u16string FileTest(std::int32_t fileId) {
    switch (fileId) {
        case Lexicon:
            return u"FileID = -1";
        case AllFiles:
        case EveryFile:
            return u"FileID > -1";
        case FilesAndLexicon:
            return u"FileID <> 0";
        default:
            return u"FileID = " + Decimal(fileId);
    }
}

// A condition that is true for rows with a bit of the status word.
std::u16string StatusTest(const std::u16string& language, StatusBit bit) {
    return u" ((Status_" + language + u" \\ " + Decimal(bit) + u") Mod 2) = 1 ";
}

std::u16string ContentTest(const ExportFlags& flags, const std::u16string& language) {
    if (flags.onlyUntranslated) {
        return u" AND (Target_" + language + u"='' OR Target_" + language + u" IS NULL) ";
    }
    if (flags.onlyTranslated) {
        return u" AND NOT (Target_" + language + u"='' OR Target_" + language + u" IS NULL) ";
    }
    if (flags.onlyWithComments) {
        return u" AND NOT (Comments_" + language + u" = '' OR Comments_" + language + u" IS NULL) ";
    }
    if (flags.onlyPending) {
        return u" AND (" + StatusTest(language, StatusPending) + u") ";
    }
    return {};
}

std::u16string SkipTests(const ExportFlags& flags, const std::u16string& language) {
    const auto without = [&](StatusBit bit) {
        return u" AND NOT (" + StatusTest(language, bit) + u")";
    };
    std::u16string tests;
    if (flags.skipLocked) {
        tests += without(StatusLocked) + u" ";
    }
    if (flags.skipGuaranteed) {
        tests += without(StatusGuaranteed) + u" ";
    }
    if (flags.skipExact) {
        tests += without(StatusExact) + without(StatusExactExtra) + u" ";
    }
    return tests;
}

std::u16string Order(const ExportFlags& flags, std::int32_t fileId,
                     std::u16string_view lexiconOrderBy) {
    if (fileId != Lexicon) {
        return flags.sortBySource ? u" ORDER BY Source2index" : u" ORDER BY ID";
    }
    if (lexiconOrderBy.empty()) {
        return {};
    }
    return std::u16string(u" ORDER BY ").append(lexiconOrderBy);
}

// The one text of one row of `Files`.
std::u16string TextOfFile(Database& database, std::u16string_view column, std::int32_t fileId) {
    std::u16string query = u"SELECT ";
    query.append(column).append(u" FROM Files WHERE ID = ");
    AppendDecimal(query, fileId);
    DaoRecordset files;
    if (!files.Open(database, query, true) || files.IsEmpty()) {
        return {};
    }
    files.BindField(1, column);
    return std::u16string(files.GetString(1).value_or(std::u16string_view()));
}

}  // namespace

ExportFlags DecodeOptions(std::int32_t exportOptions) {
    const auto isSet = [exportOptions](ExportOption option) {
        return (exportOptions & option) != 0;
    };
    ExportFlags flags;
    flags.onlyUntranslated = isSet(OnlyUntranslated);
    flags.onlyTranslated = isSet(OnlyTranslated);
    flags.uniquePairsOnly = isSet(UniquePairsOnly);
    flags.skipLocked = isSet(SkipLocked);
    flags.skipExact = isSet(SkipExact);
    flags.skipGuaranteed = isSet(SkipGuaranteed);
    flags.onlyWithComments = isSet(OnlyWithComments);
    flags.onlyPending = isSet(OnlyPending);
    flags.removeCodes = isSet(RemoveCodes);
    flags.copySourceToEmptyTarget = isSet(CopySourceToEmptyTarget);
    flags.sortBySource = isSet(SortBySource);
    flags.lockedIsPerfect = isSet(LockedIsPerfect);
    flags.guaranteedIsPerfect = isSet(GuaranteedIsPerfect);
    flags.showIdColumn = isSet(ShowIdColumn);
    flags.colorAllRows = isSet(ColorAllRows);
    flags.showFileColumn = isSet(ShowFileColumn);
    flags.useFileSpec = flags.showFileColumn && isSet(UseFileSpec);
    flags.hideReadOnlyColumns = isSet(HideReadOnlyColumns);
    flags.showStatusColumn = isSet(ShowStatusColumn);
    flags.showStatusValue = isSet(ShowStatusValue);
    flags.colorStatusCell = isSet(ColorStatusCell);
    return flags;
}

// The double blanks between the pieces belong to the texts.
RowQueries BuildQueries(const ExportFlags& flags, std::int32_t fileId, std::int32_t targetLangId,
                        std::u16string_view lexiconOrderBy) {
    const std::u16string language = Decimal(targetLangId);
    const std::u16string selection =
        FileTest(fileId) + ContentTest(flags, language) + SkipTests(flags, language);
    const std::u16string exported = selection + u" AND Done = 0  AND Selected = -1 ";

    RowQueries queries;
    queries.whereClause = u"WHERE " + selection;
    queries.mainQuery = u"SELECT ID, Source, Target_" + language + u" As Target, Status_" +
                        language + u" As Status, Comments_" + language +
                        u" As Comments, Done, FileID, Percentage_" + language + u" As Percentage" +
                        (fileId == Lexicon ? u", LexWords, Freq" : u"") + u" FROM Pairs WHERE " +
                        exported + Order(flags, fileId, lexiconOrderBy);
    queries.duplicateQuery = u"SELECT ID, Source, Target_" + language +
                             u" As Target, Done FROM Pairs WHERE Source2Index = '";
    queries.duplicateTail = u"' AND " + exported;
    queries.rowsQuery = u"SELECT ID, Source, Target_" + language +
                        u" As Target, Done, Source2Index FROM Pairs WHERE " + exported;
    return queries;
}

std::u16string QuoteSql(std::u16string_view text) {
    std::u16string quoted;
    quoted.reserve(text.size());
    for (const char16_t unit : text) {
        quoted.append(unit == u'\'' ? 2 : 1, unit);
    }
    return quoted;
}

bool IsRightToLeft(std::int32_t langId) {
    switch (langId & PrimaryLanguageMask) {
        case 1:   // Arabic
        case 13:  // Hebrew
        case 32:  // Urdu
        case 41:  // Farsi
        case 90:  // Syriac
            return true;
        default:
            return false;
    }
}

std::int32_t ReadSourceLanguage(Database& database) {
    DaoRecordset stamp;
    if (!stamp.Open(database, u"SELECT sLang, sSubLang FROM Stamp", true) || stamp.IsEmpty()) {
        return DefaultSourceLanguage;
    }
    stamp.BindField(1, u"sLang");
    stamp.BindField(2, u"sSubLang");
    // A damaged project can hold any two numbers: the sum wraps instead of overflowing.
    const auto primary = static_cast<std::uint32_t>(stamp.GetLong(1));
    const auto sub = static_cast<std::uint32_t>(stamp.GetLong(2));
    return static_cast<std::int32_t>(sub * SubLanguageFactor + primary);
}

std::u16string FileNameOf(Database& database, std::int32_t fileId) {
    return TextOfFile(database, u"FileName", fileId);
}

std::u16string FileSpecOf(Database& database, std::int32_t fileId) {
    return TextOfFile(database, u"FileSpec", fileId);
}

}  // namespace generalutilities
