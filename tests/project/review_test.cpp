// What becomes of a reviewed file: the report on it, the import, and what is taken over.

#include <generalutilities/extview/export_options.h>
#include <generalutilities/project/accept.h>
#include <generalutilities/project/review_report.h>

#include "extview/rtf/rtf_import.h"
#include "extview/rtf_table_export.h"
#include "project/project_files.h"

#include <sstream>

namespace generalutilities {
namespace {

class Review : public ::testing::Test {
  protected:
    void SetUp() override {
        project = nullptr;
        CreateOptions options;
        options.replaceExisting = true;
        CreateProject(
            folder.Path(u"p"),
            Sources(std::make_unique<FixedRows>(
                std::vector{1036, 1031},
                std::vector{MakeRow(u"Open {1}",
                                    {{u"Ouvrir {1}", u"menu", 2, 0}, {u"\u00D6ffnen", u"", 0, 0}}),
                            MakeRow(u"Two lines", {{u"Deux\nlignes", u"", 0, 0}, {}}),
                            MakeRow(u"Locked", {{u"Bloque", u"", 0x200, 0}, {}}),
                            MakeRow(u"New \u0006{1}\u0007%s\u0008", {{u"", u"", 0, 0}, {}}),
                            MakeRow(u"Old \u0006{1}\u0007%s\u0008",
                                    {{u"Vieux \u0006{1}\u0007%s\u0008", u"", 0, 0}, {}}),
                            MakeRow(u"Same{1}{2}", {{u"Pareil{1}", u"", 0, 0}, {}})})),
            options);
        project = OpenProject(folder.Path(u"p"));
        ASSERT_NE(project, nullptr);
        ASSERT_EQ(CExternalViewRTFExport().RunExport(
                      *project, File(), AllFiles, 1036,
                      ShowIdColumn | ShowStatusColumn | ShowStatusValue, u"", {}),
                  S_OK);
    }

    std::u16string File() const { return folder.Path(u"review.rtf"); }
    std::string Snapshot() { return ReadFile(folder.Path(u"p")); }

    /// What the reviewer does: replaces a text of the file, the first one behind another text.
    void Edit(const std::string& before, const std::string& after, const std::string& behind = {}) {
        std::string bytes = ReadFile(File());
        const std::size_t place = bytes.find(before, bytes.find(behind));
        ASSERT_NE(place, std::string::npos) << before;
        WriteFile(File(), bytes.replace(place, before.size(), after));
    }

    void Import(std::int32_t langId = 1036) {
        ASSERT_EQ(CRTFImport().RunImport(*project, File(), langId), S_OK);
    }

    std::string Report(std::unique_ptr<ReportWriter> (*create)(std::ostream&,
                                                               const ReportHeading&)) {
        std::ostringstream text;
        const auto writer = create(text, {u"p<1>", u"review.rtf", 1036, true});
        summary =
            ReviewFile(*project, File(), 1036, [&](const ReviewedRow& row) { writer->Row(row); });
        writer->Finish(summary);
        return text.str();
    }

    /// The counts that are not zero, and the reasons of refusals.
    std::string Accept(const AcceptOptions& options) {
        std::string reasons;
        const AcceptSummary counts =
            AcceptReimportedRows(*project, options, [&](const AcceptedRow& row) {
                reasons += row.reason.empty() ? "" : "; " + row.reason.substr(0, 40);
            });
        std::string text = std::to_string(counts.rows) + " rows";
        for (const auto& [count, what] :
             {std::pair(counts.taken, " taken"), std::pair(counts.unchanged, " unchanged"),
              std::pair(counts.notAccepted, " not accepted"), std::pair(counts.refused, " refused"),
              std::pair(counts.codesDiffer, " with other codes"),
              std::pair(counts.sourceEdited, " with another source")}) {
            text += count > 0 ? ", " + std::to_string(count) + what : "";
        }
        for (const std::u16string& id : counts.unknownIds) {
            text += ", unknown " + Bytes(id);
        }
        return text + reasons;
    }

    void Do(const std::vector<std::u16string>& step) {
        const std::string what = Bytes(step[0]);
        if (step.size() == 1) {
            SetUp();
        } else if (what == "edit") {
            Edit(Bytes(step[1]), Bytes(step[2]), step.size() > 3 ? Bytes(step[3]) : "");
        } else if (what == "import") {
            Report(CreateTextReport);
            Import();
            EXPECT_EQ(CheckReimportedRows(*project, summary), "");
        } else if (what == "report") {
            std::u16string lines = files::FromUtf8(Report(CreateTextReport));
            lines.erase(0, lines.find(u"\tremarks\n") + 9);
            for (char16_t& unit : lines) {  // a text's line ends are pictures
                unit = (unit & 0xFFE0) == 0x2400 ? static_cast<char16_t>(unit & 0x1F) : unit;
            }
            EXPECT_EQ(lines, step[1]);
        } else if (what == "accept") {
            AcceptOptions options;
            options.langId = 1036;
            options.refuseCodeChanges = step[1] == u"refusing codes";
            options.dryRun = step[1] == u"dry";
            options.includeLocked = step[1] == u"locked";
            if (step[1].starts_with(u"000")) {
                options.ids = {step[1], u"nosuch"};
            }
            EXPECT_EQ(Accept(options), Bytes(step[2]));
        } else if (what == "sql") {
            EXPECT_TRUE(project->Execute(step[1]));
        } else {  // a column, an identifier, and what is stored
            EXPECT_EQ(QueryText(*project, u"SELECT " + step[0] + u" FROM Pairs WHERE ID = '" +
                                              step[1] + u"'"),
                      step[2]);
        }
    }

    TemporaryFolder folder;
    std::unique_ptr<Database> project;
    ReviewSummary summary;
};

TEST_F(Review, Stories) {
    std::u16string story;
    for (const auto& step : CaseTable("reviews.tsv")) {
        story = step.size() == 1 ? step[0] : story;
        SCOPED_TRACE(testing::PrintToString(story) + testing::PrintToString(step));
        Do(step);
    }
}

TEST_F(Review, NoticesEveryCutThatLosesRows) {
    const std::string whole = ReadFile(File());
    const std::size_t body = whole.find("000001");
    for (std::size_t length = body; length < whole.size() - 2; length += 61) {
        WriteFile(File(), whole.substr(0, length));
        Report(CreateTextReport);
        const std::size_t last = whole.find_last_not_of(" \n", length - 1);
        EXPECT_TRUE(summary.endsInsideRow || whole[last] == '}') << length;
        EXPECT_TRUE(summary.notInFile > 0 || summary.endsInsideRow) << length;
        Import();
        EXPECT_EQ(CheckReimportedRows(*project, summary), "") << length;
    }
}

TEST_F(Review, RefusesWhatIsNoReviewedFile) {
    const auto expect = [&](std::u16string_view path, std::int32_t langId, const char* words) {
        ExpectWords(ErrorOf([&] { ReviewFile(*project, path, langId, [](const ReviewedRow&) {}); }),
                    words);
    };
    expect(folder.Path(u"absent.rtf"), 1036, "absent.rtf");
    expect(folder.Path(u""), 1036, "");
    expect(File(), 1041, "ja-JP");
    WriteFile(File(), "<html>no table</html>");
    expect(File(), 1036, "RTF");
}

TEST_F(Review, IsWrittenAsHtmlAndJson) {
    Edit("Ouvrir \\{1\\}", "Ouvre <b>\"x\\\\\"&\\tab \\u-10240 ?");
    const std::string html = Report(CreateHtmlReport);
    ExpectWords(html, "<del>Ouvrir|Ouvre &lt;b&gt;&quot;x\\&quot;&amp;|p&lt;1&gt;");
    EXPECT_EQ(html.find("<b>"), std::string::npos);
    EXPECT_EQ(html.find("http"), std::string::npos) << "the page needs nothing but itself";
    const std::string json = Report(CreateJsonReport);
    EXPECT_EQ(json.find("sameIdAsRow"), std::string::npos);
    ExpectWords(json, R"("format": "genutil.import/1"|"target": "Ouvre <b>\"x\\\"&\u0009\ud800|)"
                      R"({"kind": "lost", "code": "{1}", "count": 1}|"changed": 1,)");
}

TEST_F(Review, IsTakenOverAllOrNothing) {
    Edit("Ouvrir \\{1\\}", "Ouvrez \\{1\\}");
    Edit("Pareil", "Identique");
    Import();
    const std::string before = Snapshot();
    AcceptOptions options;
    options.langId = 1036;
    int rows = 0;
    const auto failAtTheSecond = [&](const AcceptedRow& row) {
        if (row.outcome == AcceptOutcome::Taken && ++rows == 2) {
            throw std::bad_alloc();
        }
    };
    EXPECT_THROW(AcceptReimportedRows(*project, options, failAtTheSecond), std::bad_alloc);
    EXPECT_EQ(Snapshot(), before);
    options.dryRun = true;
    EXPECT_NE(Accept(options).find("2 taken"), std::string::npos);
    EXPECT_EQ(Snapshot(), before);
}

TEST_F(Review, KnowsTheLanguageOfTheImport) {
    Edit("Pareil", "Identique");
    Import(1031);
    EXPECT_EQ(LanguageOfReimport(*project), 1031);
    Import();
    EXPECT_EQ(LanguageOfReimport(*project), 1036);
    AcceptOptions options;
    options.langId = 1036;
    Accept(options);
    EXPECT_EQ(LanguageOfReimport(*project), 1036) << "also when it has been taken over";
    options.langId = 1041;
    EXPECT_NE(ErrorOf([&] { Accept(options); }), "");
    options.langId = 1036;
    ASSERT_TRUE(project->Execute(u"DROP TABLE Reimporting"));
    ExpectWords(ErrorOf([&] { Accept(options); }), "Reimporting");
    EXPECT_NE(ErrorOf([&] { ReadReimportedRows(*project, [](const ReimportedRow&) {}); }), "");
}

}  // namespace
}  // namespace generalutilities
