#include <generalutilities/error.h>
#include <generalutilities/project/contents.h>
#include <generalutilities/text/folding.h>

#include "project/project_access.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>

namespace generalutilities {
namespace {

constexpr std::int32_t LexiconFileId = -1;
constexpr std::int32_t DefaultSourceLanguage = 1033;

/// The number behind `prefix` in a column's name; nothing for another name.
std::optional<std::int32_t> NumberBehind(std::u16string_view column, std::u16string_view prefix) {
    if (!column.starts_with(prefix)) {
        return std::nullopt;
    }
    std::string digits;
    for (const char16_t unit : column.substr(prefix.size())) {
        digits += unit < 0x80 ? static_cast<char>(unit) : '?';
    }
    std::int32_t number = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    // A column that another spelling of the number names is not the language's.
    const bool canonical = error == std::errc() && stop == end && number > 0 && digits[0] != '0';
    return canonical ? std::optional(number) : std::nullopt;
}

/// The columns of one language in a recordset.
struct LanguageFields {
    LanguageFields(TableReader& pairs, std::int32_t langId)
        : target(pairs.Field(LanguageColumn(u"Target", langId))),
          comments(pairs.Field(LanguageColumn(u"Comments", langId))),
          status(pairs.Field(LanguageColumn(u"Status", langId))) {}

    int target;
    int comments;
    int status;
};

void Count(LanguageCounts& counts, TableReader& pairs, const LanguageFields& fields) {
    ++(pairs.Text(fields.target).empty() ? counts.empty : counts.translated);
    counts.withComments += pairs.Text(fields.comments).empty() ? 0 : 1;
    auto bits = static_cast<std::uint32_t>(pairs.Long(fields.status));
    while (bits != 0) {
        const std::uint32_t lowest = bits & (~bits + 1);
        ++counts.rowsPerStatusBit[static_cast<std::int32_t>(lowest)];
        bits &= bits - 1;
    }
}

std::vector<FileCounts> ReadFiles(Database& database) {
    std::vector<FileCounts> files;
    TableReader table(database, u"Files", RecordsetType::Table);
    const int id = table.Field(u"ID");
    const int name = table.Field(u"FileName");
    const int spec = table.Field(u"FileSpec");
    for (; !table.AtEnd(); table.MoveNext()) {
        files.push_back({table.Long(id), std::u16string(table.Text(name)),
                         std::u16string(table.Text(spec)), 0});
    }
    return files;
}

/// Finds a text in others without regard to case.
class TextSearch {
  public:
    explicit TextSearch(std::u16string_view text) : wanted(ToLower(text)) {}
    bool FindsIn(std::u16string_view text) const {
        return ToLower(text).find(wanted) != std::u16string::npos;
    }

  private:
    std::u16string wanted;
};

std::u16string RowQuery(const RowFilter& filter) {
    const auto column = [&](std::u16string_view name) {
        return LanguageColumn(name, filter.langId);
    };
    std::u16string query = u"SELECT ID, Source, FileID, " + column(u"Target") + u" AS Target, " +
                           column(u"Comments") + u" AS Comments, " + column(u"Status") +
                           u" AS Status, " + column(u"Percentage") + u" AS Percentage FROM Pairs";
    if (filter.fileId) {
        const std::string number = std::to_string(*filter.fileId);
        query += u" WHERE FileID = " + std::u16string(number.begin(), number.end());
    }
    return query + u" ORDER BY ID";
}

}  // namespace

std::vector<std::int32_t> ProjectLanguages(Database& database) {
    std::vector<std::int32_t> languages;
    for (const std::u16string& column : database.ColumnNames(u"Pairs")) {
        if (const auto langId = NumberBehind(column, u"Target_")) {
            languages.push_back(*langId);
        }
    }
    if (languages.empty()) {
        throw Error(ErrorInvalidData,
                    "the project has no target language: its table Pairs has no column Target_...");
    }
    return languages;
}

std::int32_t ProjectSourceLanguage(Database& database) {
    if (!HasTable(database, u"Stamp")) {
        return DefaultSourceLanguage;
    }
    TableReader stamp(database, u"Stamp", RecordsetType::Table);
    if (stamp.AtEnd()) {
        return DefaultSourceLanguage;
    }
    const std::int32_t sub = stamp.Long(stamp.Field(u"sSubLang"));
    const std::int32_t primary = stamp.Long(stamp.Field(u"sLang"));
    return ((sub & 0x3F) << 10) | (primary & 0x3FF);
}

ProjectInfo ReadProjectInfo(Database& database) {
    ProjectInfo info;
    info.sourceLanguage = ProjectSourceLanguage(database);
    if (HasTable(database, u"Files")) {
        info.files = ReadFiles(database);
    }
    std::unordered_map<std::int32_t, std::size_t> positions;
    for (std::size_t i = 0; i < info.files.size(); ++i) {
        positions.emplace(info.files[i].id, i);
    }
    TableReader pairs(database, u"Pairs", RecordsetType::Table);
    const int fileId = pairs.Field(u"FileID");
    std::vector<LanguageFields> fields;
    for (const std::int32_t langId : ProjectLanguages(database)) {
        info.languages.emplace_back().langId = langId;
        fields.emplace_back(pairs, langId);
    }
    for (; !pairs.AtEnd(); pairs.MoveNext()) {
        const std::int32_t file = pairs.Long(fileId);
        if (file == LexiconFileId) {
            ++info.lexiconRows;
            continue;
        }
        ++info.rows;
        if (const auto position = positions.find(file); position != positions.end()) {
            ++info.files[position->second].rows;
        }
        for (std::size_t i = 0; i < fields.size(); ++i) {
            Count(info.languages[i], pairs, fields[i]);
        }
    }
    if (HasTable(database, u"Reimporting")) {
        info.reimportedRows = TableReader(database, u"Reimporting", RecordsetType::Table).Count();
    }
    return info;
}

std::uint64_t ReadProjectRows(Database& database, const RowFilter& filter,
                              const std::function<void(const ProjectRow&)>& row) {
    RequireLanguage(database, filter.langId);
    TableReader rows(database, RowQuery(filter), RecordsetType::Dynaset);
    const int id = rows.Field(u"ID");
    const int source = rows.Field(u"Source");
    const int target = rows.Field(u"Target");
    const int comments = rows.Field(u"Comments");
    const int status = rows.Field(u"Status");
    const int percentage = rows.Field(u"Percentage");
    const int fileId = rows.Field(u"FileID");
    const TextSearch search(filter.text);
    std::uint64_t passed = 0;
    std::uint64_t given = 0;
    for (; !rows.AtEnd() && (!filter.limit || given < *filter.limit); rows.MoveNext()) {
        const ProjectRow found{rows.Text(id),       rows.Text(source), rows.Text(target),
                               rows.Text(comments), rows.Long(status), rows.Long(percentage),
                               rows.Long(fileId)};
        const bool matches =
            (!filter.onlyUntranslated || found.target.empty()) &&
            (filter.statusMask == 0 || (found.status & filter.statusMask) != 0) &&
            (filter.text.empty() || search.FindsIn(found.source) || search.FindsIn(found.target) ||
             search.FindsIn(found.comments) || search.FindsIn(found.id));
        if (matches && ++passed > filter.skip) {
            ++given;
            row(found);
        }
    }
    return given;
}

}  // namespace generalutilities
