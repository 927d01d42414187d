#include "extview/rtf/rtf_import.h"

#include "case_table.h"
#include "sample_head.h"
#include "text/decimal.h"

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
};

const std::string Heading = "\\pard ID\\cell Source\\cell Target\\cell\\row ";

/// The rows of a table with a heading row, as "id|source|target|comments|status / ...", with
/// comments and status carried over as the driver does.
std::u16string RowsOf(const std::string& file) {
    Import import(file);
    EXPECT_TRUE(import.OpenFile());
    if (!import.ReadHeader()) {
        return u"no header";
    }
    std::u16string rows;
    Row row;
    while (import.NextRow(row.id, row.source, row.target, row.comments, row.status)) {
        rows += (rows.empty() ? u"" : u" / ") + row.id + u"|" + row.source + u"|" + row.target +
                u"|" + row.comments + u"|" + Decimal(row.status);
    }
    import.CloseFile();
    return rows;
}

TEST(RtfImport, CellsByPosition) {
    for (const auto& row : CaseTable("import_rows.tsv")) {
        const std::string body = Bytes(row[0]);
        const std::string start = body.starts_with("\\pard") ? "" : Heading;
        EXPECT_EQ(RowsOf(Head + start + body + "}"), row[1]) << body;
    }
}

TEST(RtfImport, StatusCells) {
    for (const auto& row : CaseTable("status_cells.tsv")) {
        EXPECT_EQ(CRTFImport::StatusOf(row[0]), Number(row[1])) << ::testing::PrintToString(row);
    }
}

TEST(RtfImport, AFileThatIsNotThere) {
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
