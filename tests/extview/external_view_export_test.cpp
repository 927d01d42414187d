// The export driver, seen through a format that keeps what it is given.

#include "extview/external_view_export.h"

#include <generalutilities/extview/export_options.h>

#include "extview/rtf_table_export.h"
#include "test_project.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace generalutilities {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing_support::MemoryFactory;
using testing_support::PairRow;
using testing_support::PercentList;
using testing_support::TestProject;
using testing_support::Written;

struct Row {
    std::u16string id, source, target, comments, fileName;
    std::int32_t status = 0;
    std::int32_t percentage = 0;

    friend bool operator==(const Row&, const Row&) = default;
};

class RecordingExport final : public CExternalViewExport {
  public:
    std::vector<std::string> calls;
    std::vector<std::int32_t> colors;
    std::vector<Row> rows;
    bool opens = true;
    std::function<void()> afterRow = [] {};

    std::vector<std::u16string> Ids() const {
        std::vector<std::u16string> ids;
        for (const auto& row : rows) {
            ids.push_back(row.id);
        }
        return ids;
    }
    HRESULT Run(TestProject& project, std::int32_t options, std::int32_t fileId = 0,
                std::int32_t language = 1036, std::u16string_view lexiconOrderBy = {}) {
        rows.clear();
        calls.clear();
        colors.clear();
        return RunExport(project.database(), u"destination", fileId, language, options,
                         lexiconOrderBy, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    }
    std::int32_t SourceLanguage() const { return sourceLangId; }
    bool SourceIsRightToLeft() const { return sourceIsRightToLeft; }

  protected:
    bool OpenOutput() override {
        calls.emplace_back("open");
        return opens;
    }
    void CloseOutput() override { calls.emplace_back("close"); }
    void AddColor(std::int32_t rgb) override { colors.push_back(rgb); }
    void PrepareLayout() override { calls.emplace_back("layout"); }
    void WriteHeader() override { calls.emplace_back("head"); }
    void WriteFooter() override { calls.emplace_back("foot"); }
    void WriteRow(std::u16string_view id, std::u16string_view source, std::u16string_view target,
                  std::u16string_view comments, std::int32_t status, std::u16string_view fileName,
                  std::int32_t percentage) override {
        rows.push_back({std::u16string(id), std::u16string(source), std::u16string(target),
                        std::u16string(comments), std::u16string(fileName), status, percentage});
        afterRow();
    }
};

std::vector<PairRow> Numbered(int count) {
    std::vector<PairRow> rows;
    for (int i = 0; i < count; ++i) {
        std::u16string word(1, static_cast<char16_t>(u'a' + i % 26));
        rows.push_back(
            {.id = Decimal(10000 + i), .source = word + std::u16string(i / 26 + 1, u'x')});
    }
    return rows;
}

TEST(RunExport, CallsTheFormatInOrder) {
    TestProject project;
    PercentList percents;
    RecordingExport exporter;
    exporter.progress = &percents;
    EXPECT_EQ(exporter.Run(project, UniquePairsOnly), S_OK);
    EXPECT_THAT(exporter.calls, ElementsAre("open", "layout", "head", "foot", "close"));
    EXPECT_THAT(exporter.colors, ElementsAre(0xFFFFFF, 2, 3, 4, 5, 6, 7, 8, 1, 0, 9));  // by number
    EXPECT_EQ(exporter.SourceLanguage(), 1033);

    // A language that the project does not have.
    EXPECT_EQ(exporter.Run(project, UniquePairsOnly, 0, 1031), everrInvalidQuery);
    EXPECT_THAT(exporter.calls, ElementsAre("open", "layout", "head"));
    EXPECT_THAT(percents.percents, IsEmpty());

    project.Execute(u"INSERT INTO Stamp (sLang, sSubLang) VALUES (13, 1)");
    project.Execute(u"INSERT INTO Stamp (sLang, sSubLang) VALUES (9, 2)");
    EXPECT_EQ(exporter.Run(project, 0), S_OK);   // the object is as good as new
    EXPECT_EQ(exporter.SourceLanguage(), 1037);  // of the first row
    EXPECT_TRUE(exporter.SourceIsRightToLeft());

    project.Add({{.id = u"1", .source = u"s"}});
    project.Execute(u"UPDATE Pairs SET Done = -1");
    exporter.opens = false;
    EXPECT_EQ(exporter.Run(project, 0), everrUnableToOpenFile);
    EXPECT_THAT(exporter.calls, ElementsAre("open"));
    EXPECT_THAT(project.DoneRows(), ElementsAre(u"1"));  // the project was not touched
}

TEST(ExportRows, HandsOverTheRowsOfTheSelectionInOrder) {
    TestProject project;
    project.Add({{u"3", u"a", u"x", StatusExact, {}, 2},
                 {u"1", u"c", u"", StatusLocked},
                 {u"2", u"b", {}, 0, u"c", 0},
                 {.id = u"4", .source = u"d", .selected = false},
                 {u"5", u"e", u"y", StatusPending | 0x40000000, {}, -1}});
    const struct {
        std::int32_t options;
        std::int32_t fileId;
        std::vector<std::u16string> ids;
        std::u16string order = {};
    } cases[] = {
        {0, 0, {u"1", u"2", u"3"}},
        {SortBySource, 0, {u"3", u"2", u"1"}},
        {0, 2, {u"3"}},
        {0, -3, {u"1", u"3", u"5"}},
        {0, -1, {u"5"}, u"Source DESC"},
        {OnlyUntranslated, 0, {u"1", u"2"}},
        {OnlyWithComments, 0, {u"2"}},
        {OnlyPending, -3, {u"5"}},
        {SkipLocked | SkipExact, 0, {u"2"}},
    };
    RecordingExport exporter;
    for (const auto& [options, fileId, ids, order] : cases) {
        EXPECT_EQ(exporter.Run(project, options, fileId, 1036, order), S_OK);
        EXPECT_EQ(exporter.Ids(), ids) << options << ' ' << fileId;
    }
    EXPECT_EQ(exporter.Run(project, 0, -1, 1036, u"no such thing("), everrInvalidQuery);
}

TEST(ExportRows, CleansTheTexts) {
    const std::u16string coded = u"a\6{1}\7hidden\bb";
    struct {
        std::int32_t options;
        std::optional<std::u16string> target;
        std::u16string expectedSource, expectedTarget;
    } const cases[] = {
        {0, coded, u"a{1}b", u"a{1}b"},
        {RemoveCodes, coded, u"ab", u"ab"},
        {0, std::nullopt, u"a{1}b", u""},
        {CopySourceToEmptyTarget, std::nullopt, u"a{1}b", u"a{1}b"},
        {CopySourceToEmptyTarget | RemoveCodes, u"", u"ab", u"ab"},
        {CopySourceToEmptyTarget | RemoveCodes, u"{1}", u"ab", u""},  // not empty before
    };
    for (const auto& [options, target, expectedSource, expectedTarget] : cases) {
        TestProject project;
        project.Add({{u"{i}", coded, target, 77, u"{c}\6", 1, true, {}, 42}});
        RecordingExport exporter;
        EXPECT_EQ(exporter.Run(project, options), S_OK);
        ASSERT_EQ(exporter.rows.size(), 1U);
        EXPECT_EQ(exporter.rows[0],
                  (Row{u"{i}", expectedSource, expectedTarget, u"{c}\6", u"", 77, 42}))
            << options;
    }
}

TEST(ExportRows, NamesTheFiles) {
    TestProject project;
    project.Execute(u"INSERT INTO Files (ID, FileName, FileSpec) VALUES (1, 'one', 'c:\\one')");
    project.Execute(u"INSERT INTO Files (ID, FileName, FileSpec) VALUES (2, 'two', NULL)");
    project.Add({{.id = u"1", .source = u"a", .fileId = 2},
                 {.id = u"2", .source = u"b", .fileId = 1},
                 {.id = u"3", .source = u"c", .fileId = 3},
                 {.id = u"4", .source = u"d", .fileId = 1}});
    RecordingExport exporter;  // a new export asks anew
    const auto names = [&](std::int32_t options) {
        // A name is asked for once: a change behind the first row's back shows that.
        exporter.afterRow = [&] {
            if (exporter.rows.size() == 2) {
                project.Execute(
                    u"UPDATE Files SET FileName = 'new', FileSpec = 'new' WHERE ID = 1");
            }
        };
        EXPECT_EQ(exporter.Run(project, options), S_OK);
        project.Execute(u"UPDATE Files SET FileName = 'one', FileSpec = 'c:\\one' WHERE ID = 1");
        std::vector<std::u16string> found;
        for (const auto& row : exporter.rows) {
            found.push_back(row.fileName);
        }
        return found;
    };
    EXPECT_THAT(names(ShowFileColumn), ElementsAre(u"two", u"one", u"", u"one"));
    EXPECT_THAT(names(ShowFileColumn | UseFileSpec), ElementsAre(u"", u"c:\\one", u"", u"c:\\one"));
    EXPECT_THAT(names(UseFileSpec), ElementsAre(u"", u"", u"", u""));
}

TEST(ExportRows, ReadsDoneAtEachRow) {
    TestProject project;
    project.Add(Numbered(4));
    PercentList percents;
    RecordingExport exporter;
    exporter.progress = &percents;
    exporter.afterRow = [&] {
        project.Execute(u"UPDATE Pairs SET Done = -1 WHERE ID = '10001' OR ID = '10003'");
    };
    EXPECT_EQ(exporter.Run(project, 0), S_OK);
    EXPECT_THAT(exporter.Ids(), ElementsAre(u"10000", u"10002"));
    EXPECT_THAT(percents.percents, ElementsAre(25, 50, 75, 100));
}

TEST(Progress, OfSmallAndLargeExports) {
    struct {
        int rows;
        std::int32_t options;
        std::vector<std::int32_t> percents;
    } const cases[] = {
        {1, 0, {100}},
        {3, 0, {33, 66, 100}},
        {1, UniquePairsOnly, {60, 100}},
        {3, UniquePairsOnly, {20, 40, 60, 73, 86, 100}},
    };
    for (const auto& [count, options, expected] : cases) {
        TestProject project;
        project.Add(Numbered(count));
        PercentList percents;
        RecordingExport exporter;
        exporter.progress = &percents;
        EXPECT_EQ(exporter.Run(project, options), S_OK);
        EXPECT_EQ(percents.percents, expected) << count << ' ' << options;
        EXPECT_EQ(percents.targetLangId, 1036);
    }
    TestProject project;
    project.Add(Numbered(250));
    PercentList percents;
    RecordingExport exporter;
    exporter.progress = &percents;
    EXPECT_EQ(exporter.Run(project, UniquePairsOnly), S_OK);
    std::vector<std::int32_t> each;  // 0 to 60 in the first pass; the second starts at 60 again
    for (std::int32_t percent = 0; percent <= 100; ++percent) {
        each.insert(each.end(), percent == 60 ? 2 : 1, percent);
    }
    EXPECT_EQ(percents.percents, each);
}

// The RTF format's side of opening and closing.

TEST(OpenOutput, FactoryThatIsMissingOrRefuses) {
    TestProject project;
    const auto run = [&](CExternalViewRTFExport exporter) {
        return exporter.RunExport(project.database(), u"/no/such/folder/out", 0, 1036, 0, u"", {});
    };
    EXPECT_EQ(run(CExternalViewRTFExport([] { return nullptr; })), everrUnableToOpenFile);
    EXPECT_EQ(run(CExternalViewRTFExport()), everrUnableToOpenFile);
}

TEST(OpenOutput, HeadOfAFailedExportIsReleasedLater) {
    TestProject project(1036);
    Written first, second;
    Written* written = &first;
    CExternalViewRTFExport exporter([&] { return std::make_unique<MemoryFactory>(*written); });
    const auto run = [&](std::int32_t language) {
        return exporter.RunExport(project.database(), u"out", 0, language, 0, u"", {});
    };
    EXPECT_EQ(run(1031), everrInvalidQuery);
    EXPECT_EQ(first.pieces.size(), 1U);
    EXPECT_FALSE(first.closed);
    EXPECT_FALSE(first.released);
    written = &second;
    EXPECT_EQ(run(1036), S_OK);
    EXPECT_TRUE(first.released);
    // The colour table starts anew with each file.
    EXPECT_EQ(second.pieces.at(0).find(u"\\blue255;}"), first.pieces.at(0).find(u"\\blue255;}"));
}

// What the abandoned file still holds in its buffer must not end up in the next one.
TEST(OpenOutput, SamePathAfterAFailedExport) {
    TestProject project(1036);
    project.Add({{.id = u"1", .source = u"s"}});
    const TemporaryFolder folder;
    const auto run = [&](CExternalViewRTFExport& exporter, std::int32_t language) {
        return exporter.RunExport(project.database(), folder.Path(u"out"), 0, language, 0, u"", {});
    };
    CExternalViewRTFExport fresh, exporter;
    EXPECT_EQ(run(fresh, 1036), S_OK);
    const std::string expected = ReadFile(folder / "out");
    exporter.sourceFont.assign(expected.size(), u'x');  // a head longer than the whole file
    EXPECT_EQ(run(exporter, 1031), everrInvalidQuery);
    exporter.sourceFont = fresh.sourceFont;
    EXPECT_EQ(run(exporter, 1036), S_OK);
    EXPECT_EQ(ReadFile(folder / "out"), expected);
}

}  // namespace
}  // namespace generalutilities
