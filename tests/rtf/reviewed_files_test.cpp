/// Tables that a real word processor opened, edited and saved (tools/make_reviewed_files.py), each
/// beside the texts that the reviewer left.

#include <generalutilities/extview/prepare_review.h>
#include <generalutilities/project/accept.h>
#include <generalutilities/project/line_ends.h>
#include <generalutilities/project/review_report.h>

#include "extview/rtf/rtf_import.h"
#include "project/project_files.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

namespace generalutilities {
namespace {

using nlohmann::json;

constexpr std::size_t Columns = 5;
constexpr const char* ColumnNames[Columns] = {"id", "source", "target", "comments", "status"};

/// A row of the file: identifier, source, target, comments, status.
using Row = std::vector<std::string>;

std::vector<Row> RowsOf(std::u16string_view path) {
    CRTFImport file;
    file.SetSource(path, 1036);
    EXPECT_TRUE(file.OpenFile());
    EXPECT_TRUE(file.ReadHeader());
    std::vector<Row> rows;
    while (file.ReadCells()) {
        Row row;
        for (const std::u16string& cell : file.Cells().first(Columns)) {
            row.push_back(files::ToUtf8Lossy(cell));
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string FindingName(ReviewFinding finding) {
    constexpr const char* Names[ReviewFindingCount] = {
        "deleted-text",     "deleted-row", "inserted-text", "kept-break",          "list-label",
        "fallback-picture", "footnote",    "soft-hyphen",   "non-breaking-hyphen", "stray-date"};
    return Names[static_cast<std::size_t>(finding)];
}

class ReviewedFiles : public ::testing::TestWithParam<std::string> {
  protected:
    ReviewedFiles() {
        const std::u16string name = u"writer/" + files::FromUtf8(GetParam());
        file = DataFile(name + u".rtf");
        expected = json::parse(ReadFile(DataFile(name + u".json")));
        langId = GetParam() == "right-to-left" ? 1025 : 1036;
    }

    std::vector<Row> ExpectedRows() const { return expected["rows"].get<std::vector<Row>>(); }

    /// Prepares the file and gives what is to be read then.
    std::u16string Prepared() {
        std::string copy;
        places.clear();
        prepared = PrepareReviewedFile(
            file, [&](std::string_view bytes) { copy += bytes; },
            [&](const ReviewFindingPlace& place) { places.push_back(place); });
        EXPECT_EQ(prepared.isChanged, !copy.empty());
        if (!prepared.isChanged) {
            return file;
        }
        WriteFile(folder.Path(u"copy.rtf"), copy);
        return folder.Path(u"copy.rtf");
    }

    void CreateSampleProject() {
        DelimitedInput table;
        table.path = DataFile(u"writer/project.csv");
        CreateProject(folder.Path(u"p"), Sources(OpenDelimitedInput(table)), {});
        project = OpenProject(folder.Path(u"p"));
        ASSERT_NE(project, nullptr);
    }

    /// The texts of a column of the project, by identifier.
    std::map<std::string, std::u16string> Stored(const std::u16string& column) {
        std::map<std::string, std::u16string> texts;
        const auto rows =
            project->OpenRecordset(u"SELECT ID, " + column + u"_" +
                                       files::FromUtf8(std::to_string(langId)) + u" FROM Pairs",
                                   RecordsetType::Dynaset);
        for (; !rows->Eof(); rows->MoveNext()) {
            const std::string id =
                files::ToUtf8Lossy(std::get<std::u16string_view>(rows->GetValue(0)));
            const FieldValue text = rows->GetValue(1);
            const auto* present = std::get_if<std::u16string_view>(&text);
            texts[id] = present ? std::u16string(*present) : std::u16string();
        }
        return texts;
    }

    TemporaryFolder folder;
    std::u16string file;
    json expected;
    std::int32_t langId;
    PreparedReview prepared;
    std::vector<ReviewFindingPlace> places;
    std::unique_ptr<Database> project;
};

TEST_P(ReviewedFiles, ReadWithoutPreparationAreWrongOnlyWhereAReaderCannotTell) {
    std::vector<Row> rows = RowsOf(file);
    const auto extraRows = expected["extraRows"].get<std::set<std::string>>();
    std::set<std::string> extra;
    std::erase_if(rows, [&](const Row& row) {
        return extraRows.contains(row[0]) && extra.insert(row[0]).second;
    });
    EXPECT_EQ(extra, extraRows);

    const std::vector<Row> left = ExpectedRows();
    ASSERT_EQ(rows.size(), left.size());
    std::set<std::vector<std::string>> misread;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t column = 0; column < Columns; ++column) {
            if (rows[row][column] != left[row][column]) {
                misread.insert({left[row][0], ColumnNames[column]});
            }
        }
    }
    EXPECT_EQ(misread, expected["misread"].get<std::set<std::vector<std::string>>>());
}

TEST_P(ReviewedFiles, PreparedHoldExactlyWhatTheReviewerLeft) {
    const std::u16string copy = Prepared();
    const std::vector<Row> rows = RowsOf(copy);
    EXPECT_EQ(rows, ExpectedRows());

    std::vector<std::vector<std::string>> met;
    for (const ReviewFindingPlace& place : places) {
        const bool isRow = place.finding == ReviewFinding::DeletedRow;
        met.push_back({FindingName(place.finding), rows.at(place.row - 1)[0],
                       isRow ? "" : ColumnNames[place.cell]});
    }
    EXPECT_THAT(met, ::testing::UnorderedElementsAreArray(
                         expected["met"].get<std::vector<std::vector<std::string>>>()));

    // Prepared once, there is nothing more to do.
    const PreparedReview again = PrepareReviewedFile(copy, [](std::string_view) {});
    EXPECT_FALSE(again.isChanged);
}

TEST_P(ReviewedFiles, AreReportedAndTakenOverWithoutAnythingElse) {
    CreateSampleProject();
    const std::u16string copy = Prepared();
    const std::map<std::string, std::u16string> storedTargets = Stored(u"Target");
    const std::map<std::string, std::u16string> storedComments = Stored(u"Comments");
    std::map<std::string, std::u16string> targets = storedTargets;
    std::map<std::string, std::u16string> comments = storedComments;
    std::map<std::string, Row> left;
    for (Row& row : ExpectedRows()) {
        const std::string id = row[0];
        left[id] = row;
        const std::u16string target = files::FromUtf8(row[2]);
        const auto stored = storedTargets.find(id);
        if (stored != storedTargets.end() && !EqualButForLineEnds(target, stored->second)) {
            targets[id] = target;
        }
        if (stored != storedTargets.end() && !row[3].empty()) {
            comments[id] = files::FromUtf8(row[3]);
        }
    }

    const std::string original = ReadFile(file);
    const ReviewSummary summary = ReviewFile(*project, copy, langId, [&](const ReviewedRow& row) {
        const std::string id = files::ToUtf8Lossy(row.id);
        const Row& wanted = left[id];
        ASSERT_EQ(wanted.size(), Columns) << id;
        if (!storedTargets.contains(id)) {
            EXPECT_EQ(row.outcome, RowOutcome::UnknownId) << id;
            return;
        }
        const std::u16string target = files::FromUtf8(wanted[2]);
        const std::u16string& stored = storedTargets.at(id);
        EXPECT_EQ(row.outcome, target == stored                      ? RowOutcome::Unchanged
                               : EqualButForLineEnds(target, stored) ? RowOutcome::LineEndsOnly
                                                                     : RowOutcome::Changed)
            << id;
        EXPECT_FALSE(row.sourceChanged) << id;
        EXPECT_FALSE(row.statusChanged) << id;
        EXPECT_EQ(row.commentsChanged, comments[id] != storedComments.at(id)) << id;
        // The row ends in the reviewed file where its offset says.
        const std::uint64_t end = prepared.OriginalOffset(row.number, row.offset);
        EXPECT_EQ(original.substr(original.rfind("\\row", end - 1), 4), "\\row");
        EXPECT_EQ(original.rfind("\\row", end - 1) + 4, end) << id;
    });
    EXPECT_FALSE(summary.endsInsideRow);
    EXPECT_EQ(summary.notRead + summary.tooFewCells, 0U);

    ASSERT_EQ(CRTFImport().RunImport(*project, copy, langId), S_OK);
    EXPECT_EQ(CheckReimportedRows(*project, summary), "");
    AcceptOptions options;
    options.langId = langId;
    options.includeLocked = true;
    AcceptReimportedRows(*project, options, [](const AcceptedRow&) {});
    // Byte for byte: a row that differs by line ends alone keeps the stored ones.
    EXPECT_EQ(Stored(u"Target"), targets);
    EXPECT_EQ(Stored(u"Comments"), comments);
}

std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(TEST_DATA_DIR "/writer")) {
        if (entry.path().extension() == ".rtf") {
            names.push_back(entry.path().stem());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

INSTANTIATE_TEST_SUITE_P(Writer, ReviewedFiles, ::testing::ValuesIn(Names()), [](const auto& test) {
    std::string name = test.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

}  // namespace
}  // namespace generalutilities
