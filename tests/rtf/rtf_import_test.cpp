#include "extview/rtf/rtf_import.h"

#include "sample_head.h"

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

using testing::FileOf;
using testing::Head;

/// A `CRTFImport` of a file in memory.
class Import : public CRTFImport {
  public:
    explicit Import(std::string content) : file(std::move(content)) {}

    bool OpenFile() override {
        CRTFImport::OpenFile();  // the file that `sourceFile` names does not exist
        return Open(FileOf(file));
    }

  private:
    std::string file;
};

struct Row {
    std::u16string id, source, target, comments;
    std::int32_t status = -7;

    friend bool operator==(const Row&, const Row&) = default;
    friend void PrintTo(const Row& row, std::ostream* out) {
        for (const std::u16string* text : {&row.id, &row.source, &row.target, &row.comments}) {
            *out << std::string(text->begin(), text->end()) << "|";
        }
        *out << row.status;
    }
};

const std::string Heading = "\\pard ID\\cell Source\\cell Target\\cell\\row ";

/// The rows of a table behind a heading row, with comments and status carried over as the driver
/// does.
std::vector<Row> RowsOf(std::string_view table) {
    Import import(Head + Heading + std::string(table) + "}");
    EXPECT_TRUE(import.OpenFile());
    EXPECT_TRUE(import.ReadHeader());
    std::vector<Row> rows;
    Row row;
    while (import.NextRow(row.id, row.source, row.target, row.comments, row.status)) {
        rows.push_back(row);
    }
    import.CloseFile();
    return rows;
}

TEST(RtfImport, CellsByPosition) {
    const struct {
        const char* table;
        std::vector<Row> rows;
    } cases[] = {
        {"1\\cell s\\cell t\\cell c\\cell 512\\cell file\\cell\\row",
         {{u"1", u"s", u"t", u"c", 512}}},
        {"1\\cell s\\cell t\\cell c\\cell 512\\cell\\row", {{u"1", u"s", u"t", u"c", 512}}},
        // Four columns: the fifth entry is what stands before \row.
        {"1\\cell s\\cell t\\cell c\\cell\\row", {{u"1", u"s", u"t", u"c", -1}}},
        {"1\\cell s\\cell t\\cell c\\cell 5\\row", {{u"1", u"s", u"t", u"c", 5}}},
        // Three columns: an empty comment and no status.
        {"1\\cell s\\cell t\\cell\\row", {{u"1", u"s", u"t", u"", -1}}},
        // Two columns: comment and status stay what they were, here of the row before.
        {"1\\cell s\\cell t\\cell c\\cell 3\\cell\\row 2\\cell s\\cell\\row",
         {{u"1", u"s", u"t", u"c", 3}, {u"2", u"s", u"", u"c", 3}}},
        {"2\\cell s\\cell\\row", {{u"2", u"s", u"", u"", -7}}},
        // Fewer end the import, and rows behind are not read.
        {"1\\cell s\\cell t\\cell\\row 2\\cell\\row 3\\cell s\\cell t\\cell\\row",
         {{u"1", u"s", u"t", u"", -1}}},
        {"\\row 3\\cell s\\cell t\\cell\\row", {}},
        // A last row that \row does not end is lost.
        {"1\\cell s\\cell t\\cell\\row 2\\cell s\\cell t\\cell", {{u"1", u"s", u"t", u"", -1}}},
        // Text before the first \cell, also between rows, is the identifier's.
        {"{x\\row}", {}},
        {"{1}\\pard y{z}\\cell{{a}\\par b}\\cell {\\b c}d\\cell\\row",
         {{u"1yz", u"a\r\nb", u"cd", u"", -1}}},
        {"", {}},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(RowsOf(test.table), test.rows) << test.table;
    }
}

TEST(RtfImport, StatusCells) {
    const struct {
        std::u16string_view cell;
        std::int32_t status;
    } cases[] = {
        {u"12", 12},
        {u"12 abc", 12},
        {u" \t\r\n\v\f12", 12},
        {u"+7", 7},
        {u"-7", -7},
        {u"- 7", -1},
        {u"+-7", -1},
        {u"", -1},
        {u"   ", -1},
        {u"abc", -1},
        {u"0x10", 0},
        {u"007", 7},
        {u"2147483647", 2147483647},
        {u"2147483648", 2147483647},
        {u"-2147483648", -2147483647 - 1},
        {u"-99999999999999999999", -2147483647 - 1},
        {u"99999999999999999999", 2147483647},
        {u"\u0661", -1},
        {u"-", -1},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(CRTFImport::StatusOf(test.cell), test.status)
            << std::string(test.cell.begin(), test.cell.end());
    }
}

TEST(RtfImport, TheHeaderNeedsTablesAndARowOfTwoCells) {
    const struct {
        std::string file;
        bool ok;
    } cases[] = {
        {Head + Heading + "}", true},
        {Head + "\\pard ID\\cell Source\\cell\\row}", true},
        {Head + "\\pard ID\\cell\\row}", false},
        {Head + "\\pard ID\\cell Source\\cell Target\\cell}", false},
        {Head + "}", false},
        {"{\\rtf1{\\fonttbl}" + Heading + "}", false},
        {"", false},
    };
    for (const auto& test : cases) {
        Import import(test.file);
        ASSERT_TRUE(import.OpenFile());
        EXPECT_EQ(import.ReadHeader(), test.ok) << test.file;
    }
    CRTFImport missing;
    missing.SetSource(u"/no/such/file.rtf", 1031);
    EXPECT_FALSE(missing.OpenFile());
}

struct Progress : IExtViewProgress {
    std::vector<std::int32_t> percents;
    void ReportProgress(std::int32_t percent, std::int32_t targetLangId) override {
        EXPECT_EQ(targetLangId, 1036);
        percents.push_back(percent);
    }
};

TEST(RtfImport, ProgressIsToldWhenThePercentChanges) {
    std::string table;
    for (int i = 0; i < 1000; ++i) {
        table += "1\\cell s\\cell t\\cell\\row\n";
    }
    Progress progress;
    Import import(Head + Heading + table + "}");
    import.SetSource(u"", 1036);
    import.SetProgress(&progress);
    for (int round = 0; round < 2; ++round) {  // an object serves one import after another
        progress.percents.clear();
        ASSERT_TRUE(import.OpenFile());
        ASSERT_TRUE(import.ReadHeader());
        Row row;
        while (import.NextRow(row.id, row.source, row.target, row.comments, row.status)) {
        }
        import.CloseFile();
        ASSERT_FALSE(progress.percents.empty());
        EXPECT_EQ(progress.percents.front(),
                  (Head + Heading).size() * 100 / (Head + Heading + table + "}").size());
        EXPECT_EQ(progress.percents.back(), 99);
        EXPECT_TRUE(std::is_sorted(progress.percents.begin(), progress.percents.end(),
                                   std::less_equal<>()));
    }
    // The first value counts as a change for each import.
    progress.percents.clear();
    Import heading(Head + Heading + "}");
    heading.SetSource(u"", 1036);
    heading.SetProgress(&progress);
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(heading.OpenFile());
        EXPECT_TRUE(heading.ReadHeader());
    }
    EXPECT_EQ(progress.percents.size(), 2u);
}

}  // namespace
}  // namespace generalutilities
