#pragma once

#include <generalutilities/database.h>
#include <generalutilities/error.h>
#include <generalutilities/project/create.h>
#include <generalutilities/project/inputs.h>

#include "case_table.h"
#include "platform/files/utf8.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Files and projects for the tests of this folder.
namespace generalutilities {

inline std::u16string DataFile(std::u16string_view name) {
    return files::FromUtf8(TEST_DATA_DIR "/") + std::u16string(name);
}

/// Rows that a test made.
class FixedRows final : public RowSource {
  public:
    /// Claims to have at least as many rows as `rowsClaimed`.
    FixedRows(std::vector<std::int32_t> languageIds, std::vector<NewProjectRow> fixedRows,
              std::size_t rowsClaimed = 0)
        : languages(std::move(languageIds)), rows(std::move(fixedRows)), claimed(rowsClaimed) {}
    const std::vector<std::int32_t>& Languages() const override { return languages; }
    std::uint64_t RowsAtMost() const override { return std::max(rows.size(), claimed); }
    bool Next(NewProjectRow& row) override {
        if (position == rows.size()) {
            return false;
        }
        row = rows[position++];
        return true;
    }

  private:
    std::vector<std::int32_t> languages;
    std::vector<NewProjectRow> rows;
    std::size_t claimed;
    std::size_t position = 0;
};

inline std::vector<std::unique_ptr<RowSource>> Sources(std::unique_ptr<RowSource> source) {
    std::vector<std::unique_ptr<RowSource>> sources;
    sources.push_back(std::move(source));
    return sources;
}

inline NewProjectRow MakeRow(std::u16string source, std::vector<Translation> translations,
                             std::u16string id = {}) {
    NewProjectRow row;
    row.id = std::move(id);
    row.source = std::move(source);
    row.fileSpec = u"app/main.txt";
    row.translations = std::move(translations);
    return row;
}

inline std::vector<NewProjectRow> AllRows(RowSource& source) {
    std::vector<NewProjectRow> rows;
    for (NewProjectRow row; source.Next(row);) {
        rows.push_back(row);
    }
    return rows;
}

/// Rows as they stand in tables of cases: identifier, source, the file's name, frequency in the
/// lexicon, and of each language target, status, percentage and comments.
inline std::vector<std::vector<std::u16string>> CellsOf(const std::vector<NewProjectRow>& rows) {
    const auto number = [](std::int32_t value) { return files::FromUtf8(std::to_string(value)); };
    std::vector<std::vector<std::u16string>> table;
    for (const NewProjectRow& row : rows) {
        table.push_back({row.id, row.source, row.fileSpec.substr(row.fileSpec.rfind(u'/') + 1),
                         row.isLexicon ? number(row.frequency) : u""});
        for (const Translation& translation : row.translations) {
            table.back().insert(table.back().end(),
                                {translation.target, number(translation.status),
                                 number(translation.percentage), translation.comments});
        }
    }
    return table;
}

inline std::unique_ptr<Database> OpenProject(std::u16string_view path) {
    DatabaseFailure failure;
    auto database = OpenDatabase(path, OpenMode::ReadWrite, failure);
    EXPECT_NE(database, nullptr) << files::ToUtf8Lossy(failure.description);
    return database;
}

/// The text that a query gives in its first row and field.
inline std::u16string QueryText(Database& database, std::u16string_view query) {
    const auto rows = database.OpenRecordset(query, RecordsetType::Dynaset);
    if (!rows || rows->Eof()) {
        return u"(no row)";
    }
    const FieldValue value = rows->GetValue(0);
    if (const auto* text = std::get_if<std::u16string_view>(&value)) {
        return std::u16string(*text);
    }
    if (const auto* number = std::get_if<std::int32_t>(&value)) {
        return files::FromUtf8(std::to_string(*number));
    }
    if (const auto* flag = std::get_if<bool>(&value)) {
        return *flag ? u"True" : u"False";
    }
    return u"(null)";
}

/// The words of the `Error` that a call throws; empty when it throws none.
template <class Call>
std::string ErrorOf(Call call) {
    try {
        call();
    } catch (const Error& error) {
        EXPECT_LT(error.Status(), 0);
        return error.what();
    }
    return {};
}

/// Reads a file cut at each byte: what comes out is no more than the whole, or an error names it.
template <class Read>
void SurviveCuts(std::u16string_view name, std::size_t most, Read read) {
    const std::string whole = ReadFile(DataFile(name));
    const TemporaryFolder folder;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        WriteFile(folder.Path(u"cut.file"), whole.substr(0, length));
        std::size_t count = 0;
        const std::string error = ErrorOf([&] { count = read(folder.Path(u"cut.file")); });
        ASSERT_LE(count, most) << length;
        ASSERT_TRUE(error.empty() || error.find("cut.file") != std::string::npos) << error;
    }
}

/// Expects a message to hold all words that bars part.
inline void ExpectWords(const std::string& message, const std::string& words) {
    std::istringstream list(words);
    for (std::string word; std::getline(list, word, '|');) {
        EXPECT_NE(message.find(word), std::string::npos) << word << " in: " << message;
    }
    EXPECT_NE(message, "");
}

}  // namespace generalutilities
