// The export driver, seen through a format that keeps what it is given.

#include "extview/external_view_export.h"

#include <generalutilities/extview/export_options.h>

#include "extview/rtf_table_export.h"
#include "test_project.h"

#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
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
    project.Add({{.id = u"1", .source = u"s"}});
    RecordingExport exporter;
    EXPECT_EQ(exporter.Run(project, 0), S_OK);
    EXPECT_THAT(exporter.calls, ElementsAre("open", "layout", "head", "foot", "close"));
    EXPECT_THAT(exporter.colors, ElementsAre(0xFFFFFF, 2, 3, 4, 5, 6, 7, 8, 1, 0,
                                             9));  // in the order of the numbers
    EXPECT_EQ(exporter.rows.size(), 1U);
}

TEST(RunExport, OutputThatCannotBeOpened) {
    TestProject project;
    project.Add({{.id = u"1", .source = u"s"}});
    project.Execute(u"UPDATE Pairs SET Done = -1");
    RecordingExport exporter;
    exporter.opens = false;
    EXPECT_EQ(exporter.Run(project, 0), everrUnableToOpenFile);
    EXPECT_THAT(exporter.calls, ElementsAre("open"));
    EXPECT_THAT(project.DoneRows(), ElementsAre(u"1"));  // the project was not touched
}

TEST(RunExport, ProjectWithoutTheLanguage) {
    TestProject project(1036);
    PercentList percents;
    RecordingExport exporter;
    exporter.progress = &percents;
    EXPECT_EQ(exporter.Run(project, UniquePairsOnly, 0, 1031), everrInvalidQuery);
    EXPECT_THAT(exporter.calls, ElementsAre("open", "layout", "head"));
    EXPECT_THAT(percents.percents, IsEmpty());
    EXPECT_EQ(exporter.Run(project, 0), S_OK);  // the object is as good as new
}

TEST(RunExport, WithoutRows) {
    TestProject project;
    PercentList percents;
    RecordingExport exporter;
    exporter.progress = &percents;
    EXPECT_EQ(exporter.Run(project, UniquePairsOnly), S_OK);
    EXPECT_THAT(exporter.calls, ElementsAre("open", "layout", "head", "foot", "close"));
    EXPECT_THAT(percents.percents, IsEmpty());
}

TEST(RunExport, ReadsTheSourceLanguage) {
    TestProject project;
    RecordingExport exporter;
    exporter.Run(project, 0);
    EXPECT_EQ(exporter.SourceLanguage(), 1033);
    project.Execute(u"INSERT INTO Stamp (sLang, sSubLang) VALUES (13, 1)");
    project.Execute(u"INSERT INTO Stamp (sLang, sSubLang) VALUES (9, 2)");
    exporter.Run(project, 0);
    EXPECT_EQ(exporter.SourceLanguage(), 1037);  // of the first row
    EXPECT_TRUE(exporter.SourceIsRightToLeft());
}

TEST(ExportRows, HandsOverTheRowsOfTheSelectionInOrder) {
    TestProject project;
    project.Add({{.id = u"3", .source = u"a", .target = u"x", .status = StatusExact, .fileId = 2},
                 {.id = u"1", .source = u"c", .target = u"", .status = StatusLocked},
                 {.id = u"2", .source = u"b", .comments = u"c", .fileId = 0},
                 {.id = u"4", .source = u"d", .selected = false},
                 {.id = u"5",
                  .source = u"e",
                  .target = u"y",
                  .status = StatusPending | 0x40000000,
                  .fileId = -1}});
    struct {
        std::int32_t options;
        std::int32_t fileId;
        std::vector<std::u16string> ids;
    } const cases[] = {
        {0, 0, {u"1", u"2", u"3"}},
        {0, -2, {u"1", u"2", u"3"}},
        {SortBySource, 0, {u"3", u"2", u"1"}},
        {0, 2, {u"3"}},
        {0, -3, {u"1", u"3", u"5"}},
        {0, -1, {u"5"}},
        {0, 99, {}},
        {OnlyUntranslated, 0, {u"1", u"2"}},
        {OnlyTranslated, -3, {u"3", u"5"}},
        {OnlyWithComments, 0, {u"2"}},
        {OnlyPending, -3, {u"5"}},
        {SkipLocked | SkipExact, 0, {u"2"}},
    };
    RecordingExport exporter;
    for (const auto& [options, fileId, ids] : cases) {
        EXPECT_EQ(exporter.Run(project, options, fileId), S_OK);
        EXPECT_EQ(exporter.Ids(), ids) << options << ' ' << fileId;
    }
}

TEST(ExportRows, OrdersTheLexiconByTheClause) {
    TestProject project;
    project.Add(
        {{.id = u"1", .source = u"a", .fileId = -1}, {.id = u"2", .source = u"b", .fileId = -1}});
    RecordingExport exporter;
    EXPECT_EQ(exporter.Run(project, 0, -1, 1036, u"Source DESC"), S_OK);
    EXPECT_THAT(exporter.Ids(), ElementsAre(u"2", u"1"));
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
        project.Add({{.id = u"{i}",
                      .source = coded,
                      .target = target,
                      .status = 77,
                      .comments = u"{c}\6",
                      .percentage = 42}});
        RecordingExport exporter;
        EXPECT_EQ(exporter.Run(project, options), S_OK);
        ASSERT_EQ(exporter.rows.size(), 1U);
        EXPECT_EQ(exporter.rows[0].source, expectedSource) << options;
        EXPECT_EQ(exporter.rows[0].target, expectedTarget) << options;
        EXPECT_EQ(exporter.rows[0].id, u"{i}");
        EXPECT_EQ(exporter.rows[0].comments, u"{c}\6");
        EXPECT_EQ(exporter.rows[0].status, 77);
        EXPECT_EQ(exporter.rows[0].percentage, 42);
        EXPECT_EQ(exporter.rows[0].fileName, u"");
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
    class RefusingFactory final : public TextFileFactory {
        std::unique_ptr<TextFileStream> OpenTextFile(std::u16string_view, TextFileFormat) override {
            return nullptr;
        }
    };
    TestProject project;
    const auto run = [&](TextFileFactoryCreator create) {
        return CExternalViewRTFExport(std::move(create))
            .RunExport(project.database(), u"out.rtf", 0, 1036, 0, u"", {});
    };
    EXPECT_EQ(run([] { return nullptr; }), everrUnableToOpenFile);
    EXPECT_EQ(run([] { return std::make_unique<RefusingFactory>(); }), everrUnableToOpenFile);
    CExternalViewRTFExport builtIn;
    EXPECT_EQ(
        builtIn.RunExport(project.database(), u"/no/such/folder/out.rtf", 0, 1036, 0, u"", {}),
        everrUnableToOpenFile);
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
    const auto path = std::filesystem::temp_directory_path() /
                      ("extview-output-" + std::to_string(getpid()) + ".rtf");
    const auto run = [&](CExternalViewRTFExport& exporter, std::int32_t language) {
        return exporter.RunExport(project.database(), path.u16string(), 0, language, 0, u"", {});
    };
    const auto bytes = [&] {
        std::ifstream file(path, std::ios::binary);
        return std::string{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    };
    CExternalViewRTFExport fresh;
    EXPECT_EQ(run(fresh, 1036), S_OK);
    const std::string expected = bytes();
    CExternalViewRTFExport exporter;
    exporter.sourceFont.assign(expected.size(), u'x');  // a head longer than the whole file
    EXPECT_EQ(run(exporter, 1031), everrInvalidQuery);
    exporter.sourceFont = fresh.sourceFont;
    EXPECT_EQ(run(exporter, 1036), S_OK);
    EXPECT_EQ(bytes(), expected);
    std::filesystem::remove(path);
}

TEST(OpenOutput, FailedWritesAreNotLookedAt) {
    TestProject project;
    project.Add({{.id = u"1", .source = u"s"}});
    Written written;
    CExternalViewRTFExport exporter([&] { return std::make_unique<MemoryFactory>(written, true); });
    EXPECT_EQ(exporter.RunExport(project.database(), u"out", 0, 1036, 0, u"", {}), S_OK);
    EXPECT_EQ(written.pieces.size(), 3U);
    EXPECT_TRUE(written.closed);
}

}  // namespace
}  // namespace generalutilities
