// The project grows in a file of its own beside the final name, in one transaction, and takes the
// name when it is complete. The indexes come after the rows, which is faster than keeping them up.

#include <generalutilities/error.h>
#include <generalutilities/extview/source_key.h>
#include <generalutilities/project/create.h>

#include "platform/files/files.h"
#include "platform/files/utf8.h"
#include "project/project_access.h"
#include "project/unfinished_file.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace generalutilities {
namespace {

constexpr std::size_t ShortestNumber = 6;
constexpr std::int32_t LexiconFileId = -1;

using Type = FieldDefinition::Type;

FieldDefinition Column(std::u16string_view name, Type type) {
    FieldDefinition field;
    field.name = name;
    field.type = type;
    return field;
}

FieldDefinition Number(std::u16string_view name, std::int32_t defaultValue = 0) {
    FieldDefinition field = Column(name, Type::Long);
    field.defaultValue = defaultValue;
    return field;
}

FieldDefinition YesNo(std::u16string_view name, bool defaultValue) {
    FieldDefinition field = Column(name, Type::YesNo);
    field.defaultValue = defaultValue;
    return field;
}

TableDefinition PairsTable(const std::vector<std::int32_t>& languages) {
    TableDefinition table{
        u"Pairs",
        {Column(u"ID", Type::Text), Column(u"Source", Type::LongText),
         Column(u"Source2Index", Type::Text), YesNo(u"Done", false), Number(u"FileID"),
         YesNo(u"Selected", true), Number(u"LexWords"), Number(u"Freq")}};
    for (const std::int32_t langId : languages) {
        table.fields.push_back(Column(LanguageColumn(u"Target", langId), Type::LongText));
        table.fields.push_back(Number(LanguageColumn(u"Status", langId)));
        table.fields.push_back(Column(LanguageColumn(u"Comments", langId), Type::LongText));
        table.fields.push_back(Number(LanguageColumn(u"Percentage", langId)));
    }
    return table;
}

/// The languages of all sources and those behind them, each once, in the order of their first
/// appearance.
std::vector<std::int32_t> AllLanguages(const std::vector<std::unique_ptr<RowSource>>& sources,
                                       const std::vector<std::int32_t>& moreLanguages) {
    std::vector<std::int32_t> languages;
    const auto add = [&languages](const std::vector<std::int32_t>& list) {
        for (const std::int32_t langId : list) {
            if (std::find(languages.begin(), languages.end(), langId) == languages.end()) {
                languages.push_back(langId);
            }
        }
    };
    for (const auto& source : sources) {
        add(source->Languages());
    }
    add(moreLanguages);
    if (languages.empty()) {
        throw Error(E_INVALIDARG, "a project needs at least one target language");
    }
    return languages;
}

/// Gives each row its identifier.
class Identifiers {
  public:
    explicit Identifiers(std::uint64_t rowsAtMost)
        : width(std::max(ShortestNumber, std::to_string(rowsAtMost).size())) {}

    const std::u16string& Of(const NewProjectRow& row) {
        if (row.id.empty()) {
            if (!seen.empty()) {
                throw Error(ErrorInvalidData,
                            row.place + ": the row has no identifier, while earlier rows have one");
            }
            const std::string digits = std::to_string(++count);
            number.assign(width - std::min(width, digits.size()), u'0');
            return number.append(digits.begin(), digits.end());
        }
        if (count > 0) {
            throw Error(ErrorInvalidData,
                        row.place + ": the row has an identifier, while earlier rows have none");
        }
        // A line end or a control character would come back from a reviewer as something else.
        if (std::any_of(row.id.begin(), row.id.end(), [](char16_t unit) { return unit < 0x20; })) {
            throw Error(ErrorInvalidData, row.place + ": the identifier \"" +
                                              files::ToUtf8Lossy(row.id) +
                                              "\" holds a control character");
        }
        if (!seen.insert(row.id).second) {
            throw Error(ErrorInvalidData, row.place + ": the identifier \"" +
                                              files::ToUtf8Lossy(row.id) +
                                              "\" stands in an earlier row already");
        }
        return row.id;
    }

  private:
    std::size_t width;
    std::uint64_t count = 0;
    std::u16string number;
    std::unordered_set<std::u16string> seen;
};

/// The rows of `Files`, numbered from 1 in the order of their first appearance.
class FileList {
  public:
    std::int32_t IdOf(const std::u16string& spec) {
        if (specs.empty() || specs[last] != spec) {
            const auto [entry, isNew] = positions.try_emplace(spec, specs.size());
            last = entry->second;
            if (isNew) {
                specs.push_back(spec);
            }
        }
        return static_cast<std::int32_t>(last) + 1;
    }

    void Write(Database& database, CreateResult& result) const {
        TableReader table(database, u"Files", RecordsetType::Table);
        const int id = table.Field(u"ID");
        const int name = table.Field(u"FileName");
        const int specField = table.Field(u"FileSpec");
        std::int32_t number = 0;
        for (const std::u16string& spec : specs) {
            const std::size_t folder = spec.find_last_of(u"/\\");
            const std::u16string fileName =
                folder == std::u16string::npos ? spec : spec.substr(folder + 1);
            table.AddNew();
            table.Put(id, ++number);
            table.Put(name, std::u16string_view(fileName));
            table.Put(specField, std::u16string_view(spec));
            table.Update();
            result.files.push_back(fileName);
        }
    }

  private:
    std::vector<std::u16string> specs;
    std::unordered_map<std::u16string, std::size_t> positions;
    std::size_t last = 0;  ///< rows of one file stand together
};

/// Writes rows into `Pairs`.
class PairsWriter {
  public:
    PairsWriter(Database& database, const std::vector<std::int32_t>& languages,
                std::int32_t sourceLangId)
        : pairs(database, u"Pairs", RecordsetType::Table),
          sourceLanguage(sourceLangId),
          id(pairs.Field(u"ID")),
          source(pairs.Field(u"Source")),
          key(pairs.Field(u"Source2Index")),
          fileId(pairs.Field(u"FileID")),
          frequency(pairs.Field(u"Freq")) {
        for (const std::int32_t langId : languages) {
            fields.emplace(langId,
                           LanguageFields{pairs.Field(LanguageColumn(u"Target", langId)),
                                          pairs.Field(LanguageColumn(u"Status", langId)),
                                          pairs.Field(LanguageColumn(u"Comments", langId)),
                                          pairs.Field(LanguageColumn(u"Percentage", langId))});
        }
    }

    void Write(const NewProjectRow& row, std::u16string_view rowId, std::int32_t file,
               const std::vector<std::int32_t>& languages) {
        const std::u16string sourceKey = MakeSourceKey(row.source, sourceLanguage);
        pairs.AddNew();
        pairs.Put(id, rowId);
        pairs.Put(source, std::u16string_view(row.source));
        pairs.Put(key, std::u16string_view(sourceKey));
        pairs.Put(fileId, file);
        pairs.Put(frequency, row.frequency);
        const std::size_t count = std::min(languages.size(), row.translations.size());
        for (std::size_t i = 0; i < count; ++i) {
            const Translation& translation = row.translations[i];
            const LanguageFields& columns = fields.at(languages[i]);
            PutText(columns.target, translation.target);
            PutText(columns.comments, translation.comments);
            pairs.Put(columns.status, translation.status);
            pairs.Put(columns.percentage, translation.percentage);
        }
        pairs.Update();
    }

  private:
    struct LanguageFields {
        int target;
        int status;
        int comments;
        int percentage;
    };

    /// An empty text stays null, as the new row has it.
    void PutText(int field, std::u16string_view text) {
        if (!text.empty()) {
            pairs.Put(field, text);
        }
    }

    TableReader pairs;
    std::int32_t sourceLanguage;
    int id;
    int source;
    int key;
    int fileId;
    int frequency;
    std::unordered_map<std::int32_t, LanguageFields> fields;
};

void Execute(Database& database, std::u16string_view query) {
    if (!database.Execute(query)) {
        ThrowDatabaseFailure(database.LastFailure(), "creating an index");
    }
}

void CreateTable(Database& database, const TableDefinition& table) {
    if (!database.CreateTable(table)) {
        ThrowDatabaseFailure(database.LastFailure(),
                             "creating the table " + files::ToUtf8Lossy(table.name));
    }
}

void WriteStamp(Database& database, std::int32_t sourceLanguage) {
    TableReader stamp(database, u"Stamp", RecordsetType::Table);
    stamp.AddNew();
    stamp.Put(stamp.Field(u"sLang"), sourceLanguage & 0x3FF);
    stamp.Put(stamp.Field(u"sSubLang"), (sourceLanguage >> 10) & 0x3F);
    stamp.Update();
}

/// Tells the percent value when it changes.
class Percent {
  public:
    Percent(const std::function<void(int)>& reportTo, std::uint64_t all)
        : report(reportTo), total(std::max<std::uint64_t>(all, 1)) {}

    void Tell(std::uint64_t done) {
        const int percent = static_cast<int>(std::min<std::uint64_t>(done * 100 / total, 100));
        if (report && percent != last) {
            last = percent;
            report(percent);
        }
    }

  private:
    const std::function<void(int)>& report;
    std::uint64_t total;
    int last = -1;
};

/// Fills a new, empty project.
CreateResult Fill(Database& database, const std::vector<std::unique_ptr<RowSource>>& sources,
                  const CreateOptions& options) {
    CreateResult result;
    result.languages = AllLanguages(sources, options.moreLanguages);
    std::uint64_t rowsAtMost = 0;
    for (const auto& source : sources) {
        rowsAtMost += source->RowsAtMost();
    }
    ProjectTransaction transaction(database);
    CreateTable(database, PairsTable(result.languages));
    CreateTable(database, {u"Files",
                           {Number(u"ID"), Column(u"FileName", Type::Text),
                            Column(u"FileSpec", Type::Text)}});
    CreateTable(database, {u"Stamp", {Number(u"sLang"), Number(u"sSubLang")}});
    WriteStamp(database, options.sourceLanguage);

    Identifiers identifiers(rowsAtMost);
    FileList fileList;
    Percent percent(options.progress, rowsAtMost);
    {
        PairsWriter pairs(database, result.languages, options.sourceLanguage);
        for (const auto& source : sources) {
            NewProjectRow row;
            while (source->Next(row)) {
                const std::int32_t file =
                    row.isLexicon ? LexiconFileId : fileList.IdOf(row.fileSpec);
                pairs.Write(row, identifiers.Of(row), file, source->Languages());
                ++(row.isLexicon ? result.lexiconRows : result.rows);
                percent.Tell(result.rows + result.lexiconRows);
            }
            for (std::string& note : source->Notes()) {
                result.notes.push_back(std::move(note));
            }
        }
    }
    fileList.Write(database, result);
    Execute(database, u"CREATE UNIQUE INDEX iID ON Pairs (ID)");
    Execute(database, u"CREATE INDEX iSource2Index ON Pairs (Source2Index)");
    transaction.Commit();
    percent.Tell(rowsAtMost);
    return result;
}

}  // namespace

CreateResult CreateProject(std::u16string_view path,
                           const std::vector<std::unique_ptr<RowSource>>& sources,
                           const CreateOptions& options) {
    UnfinishedFile file(path, options.replaceExisting);
    DatabaseFailure failure;
    std::unique_ptr<Database> database = OpenDatabase(file.Path(), OpenMode::Create, failure);
    if (!database) {
        ThrowDatabaseFailure(failure, "creating " + files::ToUtf8Lossy(path));
    }
    CreateResult result = Fill(*database, sources, options);
    database.reset();
    file.Publish();
    return result;
}

}  // namespace generalutilities
