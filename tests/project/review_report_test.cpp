#include <generalutilities/project/review_report.h>

#include "project/reviewed_project.h"

#include <sstream>

namespace generalutilities {
namespace {

class ReviewReport : public ReviewedProject {
  protected:
    void SetUp() override {
        Create({MakeRow(u"Open {1}", {{u"Ouvrir {1}", u"menu", 0, 0}}),
                MakeRow(u"Two lines", {{u"Deux\nlignes", u"", 0, 0}}),
                MakeRow(u"Locked", {{u"Verrouill\u00E9", u"", 0x200, 0}}),
                MakeRow(u"New", {{u"", u"", 0, 0}}),
                MakeRow(u"Hidden \u0006{1}\u0007%s\u0008",
                        {{u"Cach\u00E9 \u0006{1}\u0007%s\u0008", u"", 0, 0}}),
                MakeRow(u"{1}{2}", {{u"{1}", u"", 0, 0}})});
    }

    struct Row {
        RowOutcome outcome;
        bool locked, sourceChanged, commentsChanged, differedBefore;
        std::optional<std::uint64_t> firstRowOfId;
        std::vector<CodeDifference> codes;
    };

    ReviewSummary Report() {
        rows.clear();
        return ReviewFile(*project, File(), 1036, [this](const ReviewedRow& row) {
            rows.push_back({row.outcome, row.locked, row.sourceChanged, row.commentsChanged,
                            row.codesDifferedBefore, row.firstRowOfId, row.codes});
        });
    }

    std::string Written(std::unique_ptr<ReportWriter> (*create)(std::ostream&,
                                                                const ReportHeading&)) {
        std::ostringstream text;
        const auto writer = create(text, {u"p<1>", u"review.rtf", 1036, true});
        const ReviewSummary summary =
            ReviewFile(*project, File(), 1036, [&](const ReviewedRow& row) { writer->Row(row); });
        writer->Finish(summary);
        return text.str();
    }

    std::vector<Row> rows;
};

using Kind = CodeDifference::Kind;
using Codes = std::vector<CodeDifference>;

TEST_F(ReviewReport, FindsAnUntouchedFileUnchangedButForLineEnds) {
    const ReviewSummary summary = Report();
    EXPECT_EQ(summary.rows, 6U);
    EXPECT_EQ(summary.unchanged, 5U);
    EXPECT_EQ(summary.lineEndsOnly, 1U);
    EXPECT_EQ(rows[1].outcome, RowOutcome::LineEndsOnly);
    EXPECT_EQ(summary.changed + summary.unknownIds + summary.notRead + summary.sourceChanged +
                  summary.commentsChanged + summary.statusChanged + summary.repeatedIds +
                  summary.codesDiffer + summary.notInFile,
              0U);
    EXPECT_EQ(rows[5].codes, (Codes{{Kind::Lost, u"{2}", 1}}));
    EXPECT_TRUE(rows[5].differedBefore) << "the project's own fault, not the reviewer's";
    EXPECT_FALSE(summary.endsInsideRow);
    Import();
    EXPECT_EQ(CheckReimportedRows(*project, summary), "");
}

TEST_F(ReviewReport, TellsWhatTheReviewerDid) {
    Edit("Ouvrir \\{1\\}", "Ouvre \\{2\\}\\{2\\}");
    Edit("menu", "another remark");
    Edit("Verrouill", "D\\'e9verrouill");
    Edit(" New}", " Newer}");
    Edit("Deux\\par lignes", "Deux\\par  lignes");
    const ReviewSummary summary = Report();
    EXPECT_EQ(rows[0].outcome, RowOutcome::Changed);
    EXPECT_EQ(rows[0].codes, (Codes{{Kind::Lost, u"{1}", 1}, {Kind::Added, u"{2}", 2}}));
    EXPECT_FALSE(rows[0].differedBefore);
    EXPECT_TRUE(rows[0].commentsChanged);
    EXPECT_EQ(rows[1].outcome, RowOutcome::Changed);
    EXPECT_EQ(rows[2].outcome, RowOutcome::Changed);
    EXPECT_TRUE(rows[2].locked);
    EXPECT_TRUE(rows[3].sourceChanged);
    EXPECT_EQ(rows[3].outcome, RowOutcome::Unchanged);
    EXPECT_EQ(summary.changed, 3U);
    EXPECT_EQ(summary.lockedChanged, 1U);
    EXPECT_EQ(summary.codesDiffer, 1U);
    EXPECT_EQ(summary.sourceChanged, 1U);
    EXPECT_EQ(summary.commentsChanged, 1U);
}

TEST_F(ReviewReport, NamesUnknownAndRepeatedIdentifiersAndCountsMissingRows) {
    Edit("000002", "999999");
    Edit("000003", "000001");
    const ReviewSummary summary = Report();
    EXPECT_EQ(rows[1].outcome, RowOutcome::UnknownId);
    EXPECT_EQ(rows[2].firstRowOfId, 1U);
    EXPECT_EQ(summary.unknownIds, 1U);
    EXPECT_EQ(summary.repeatedIds, 1U);
    EXPECT_EQ(summary.notInFile, 2U);
    EXPECT_EQ(summary.RowsToStore(), 5U);
    Import();
    EXPECT_EQ(CountReimportedRows(*project), 5U);
    EXPECT_EQ(CheckReimportedRows(*project, summary), "");
}

TEST_F(ReviewReport, SeesTheRowsBehindTheEndOfAnImport) {
    // The third row's cells are merged into one: the import ends there as if the file did.
    std::string bytes = ReadFile(File());
    const std::size_t row = bytes.find("000003");
    for (std::size_t cell = bytes.find("\\cell", row); cell < bytes.find("\\row", row);
         cell = bytes.find("\\cell", cell + 1)) {
        bytes.replace(cell, 5, bytes[cell + 5] == 'x' ? "\\cell" : "\\line");
    }
    WriteFile(File(), bytes);
    const ReviewSummary summary = Report();
    EXPECT_EQ(summary.rows, 6U);
    EXPECT_EQ(rows[2].outcome, RowOutcome::TooFewCells);
    EXPECT_EQ(rows[3].outcome, RowOutcome::NotRead);
    EXPECT_EQ(summary.notRead, 3U);
    EXPECT_EQ(summary.RowsToStore(), 2U);
    Import();
    EXPECT_EQ(CheckReimportedRows(*project, summary), "");
    EXPECT_NE(DescribeSummary(summary).find("3 behind"), std::string::npos);
}

TEST_F(ReviewReport, NoticesEveryCutThatLosesRows) {
    const std::string whole = ReadFile(File());
    const std::size_t body = whole.find("000001");
    for (std::size_t length = body; length < whole.size() - 2; length += 61) {
        WriteFile(File(), whole.substr(0, length));
        const ReviewSummary summary = Report();
        const std::size_t last = whole.find_last_not_of(" \n", length - 1);
        EXPECT_TRUE(summary.endsInsideRow || whole[last] == '}') << length;
        EXPECT_TRUE(summary.notInFile > 0 || summary.endsInsideRow) << length;
        Import();
        EXPECT_EQ(CheckReimportedRows(*project, summary), "") << length;
    }
}

TEST_F(ReviewReport, RefusesWhatIsNoReviewedFile) {
    const auto expect = [&](std::u16string_view path, std::int32_t langId, const char* words) {
        ExpectWords(ErrorOf([&] { ReviewFile(*project, path, langId, [](const ReviewedRow&) {}); }),
                    words);
    };
    expect(folder.Path(u"absent.rtf"), 1036, "absent.rtf");
    expect(folder.Path(u""), 1036, "");
    expect(File(), 1031, "de-DE");
    WriteFile(File(), "<html>no table</html>");
    expect(File(), 1036, "RTF");
}

TEST_F(ReviewReport, IsWrittenAsTextHtmlAndJson) {
    Edit("Ouvrir \\{1\\}", "Ouvre <b>\"x\\\\\"&\\tab \\u-10240 ?");
    ExpectWords(Written(CreateTextReport),
                "\nrow\tidentifier\tresult\tremarks\n1\t000001\tchanged\tcode lost: {1}\n"
                "\t- Ouvrir {1}\n\t+ Ouvre <b>|"
                "6 rows in the file");
    const std::string html = Written(CreateHtmlReport);
    ExpectWords(html, "<del>Ouvrir|Ouvre &lt;b&gt;&quot;x\\&quot;&amp;|p&lt;1&gt;");
    EXPECT_EQ(html.find("<b>"), std::string::npos);
    EXPECT_EQ(html.find("http"), std::string::npos) << "the page needs nothing but itself";
    const std::string json = Written(CreateJsonReport);
    EXPECT_EQ(json.find("sameIdAsRow"), std::string::npos);
    ExpectWords(json, R"("format": "genutil.import/1"|"target": "Ouvre <b>\"x\\\"&\u0009\ud800|)"
                      R"({"kind": "lost", "code": "{1}", "count": 1}|"changed": 1,)");
}

}  // namespace
}  // namespace generalutilities
