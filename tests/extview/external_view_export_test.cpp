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

class RecordingExport final : public CExternalViewExport {
  public:
    std::vector<std::string> calls;
    std::vector<std::int32_t> colors;
    std::vector<std::u16string> rows;  ///< the values of each, with bars between them
    bool opens = true;
    std::function<void()> afterRow = [] {};

    /// What stands in one place of each row.
    std::vector<std::u16string> All(int place) const {
        std::vector<std::u16string> all;
        for (std::u16string row : rows) {
            for (int i = 0; i < place; ++i) {
                row.erase(0, row.find(u'|') + 1);
            }
            all.push_back(row.substr(0, row.find(u'|')));
        }
        return all;
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
        std::u16string row;
        for (const std::u16string_view value : {id, source, target, comments, fileName}) {
            row.append(value).append(u"|");
        }
        rows.push_back(row + Decimal(status) + u"|" + Decimal(percentage));
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
    RecordingExport exporter;
    const auto ids = [&](std::int32_t options, std::int32_t fileId,
                         std::u16string_view order = {}) {
        EXPECT_EQ(exporter.Run(project, options, fileId, 1036, order), S_OK);
        return exporter.All(0);
    };
    EXPECT_THAT(ids(0, 0), ElementsAre(u"1", u"2", u"3"));
    EXPECT_THAT(ids(SortBySource, 0), ElementsAre(u"3", u"2", u"1"));
    EXPECT_THAT(ids(0, 2), ElementsAre(u"3"));
    EXPECT_THAT(ids(0, -3), ElementsAre(u"1", u"3", u"5"));
    EXPECT_THAT(ids(0, -1, u"Source DESC"), ElementsAre(u"5"));
    EXPECT_THAT(ids(OnlyUntranslated, 0), ElementsAre(u"1", u"2"));
    EXPECT_THAT(ids(OnlyWithComments, 0), ElementsAre(u"2"));
    EXPECT_THAT(ids(OnlyPending, -3), ElementsAre(u"5"));
    EXPECT_THAT(ids(SkipLocked | SkipExact, 0), ElementsAre(u"2"));
    EXPECT_EQ(exporter.Run(project, 0, -1, 1036, u"no such thing("), everrInvalidQuery);
}

TEST(ExportRows, CleansTheTexts) {
    const std::u16string coded = u"a\6{1}\7hidden\bb";
    const struct {
        std::int32_t options;
        std::optional<std::u16string> target;
        std::u16string texts;
    } cases[] = {
        {0, coded, u"a{1}b|a{1}b"},
        {RemoveCodes, coded, u"ab|ab"},
        {0, std::nullopt, u"a{1}b|"},
        {CopySourceToEmptyTarget, std::nullopt, u"a{1}b|a{1}b"},
        {CopySourceToEmptyTarget | RemoveCodes, u"", u"ab|ab"},
        {CopySourceToEmptyTarget | RemoveCodes, u"{1}", u"ab|"},  // not empty before
    };
    for (const auto& [options, target, texts] : cases) {
        TestProject project;
        project.Add({{u"{i}", coded, target, 77, u"{c}\6", 1, true, {}, 42}});
        RecordingExport exporter;
        EXPECT_EQ(exporter.Run(project, options), S_OK);
        EXPECT_THAT(exporter.rows, ElementsAre(u"{i}|" + texts + u"|{c}\6||77|42"));
    }
}

TEST(ExportRows, NamesTheFiles) {
    TestProject project;
    project.Execute(u"INSERT INTO Files (ID, FileName, FileSpec) VALUES (2, 'two', NULL)");
    project.Add({{.id = u"1", .source = u"a", .fileId = 2},
                 {.id = u"2", .source = u"b", .fileId = 1},
                 {.id = u"3", .source = u"c", .fileId = 3},
                 {.id = u"4", .source = u"d", .fileId = 1}});
    RecordingExport exporter;
    const auto names = [&](std::int32_t options) {
        project.Execute(u"DELETE FROM Files WHERE ID = 1");  // a new export asks anew
        project.Execute(u"INSERT INTO Files (ID, FileName, FileSpec) VALUES (1, 'one', 'c:\\one')");
        // A name is asked for once: a change behind the second row's back shows that.
        exporter.afterRow = [&] {
            if (exporter.rows.size() == 2) {
                project.Execute(
                    u"UPDATE Files SET FileName = 'new', FileSpec = 'new' WHERE ID = 1");
            }
        };
        EXPECT_EQ(exporter.Run(project, options), S_OK);
        return exporter.All(4);
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
    EXPECT_THAT(exporter.All(0), ElementsAre(u"10000", u"10002"));
    EXPECT_THAT(percents.percents, ElementsAre(25, 50, 75, 100));
}

TEST(Progress, OfSmallAndLargeExports) {
    const auto percents = [](int rows, std::int32_t options) {
        TestProject project;
        project.Add(Numbered(rows));
        PercentList list;
        RecordingExport exporter;
        exporter.progress = &list;
        EXPECT_EQ(exporter.Run(project, options), S_OK);
        EXPECT_EQ(list.targetLangId, 1036);
        return list.percents;
    };
    EXPECT_THAT(percents(1, 0), ElementsAre(100));
    EXPECT_THAT(percents(3, 0), ElementsAre(33, 66, 100));
    EXPECT_THAT(percents(1, UniquePairsOnly), ElementsAre(60, 100));
    EXPECT_THAT(percents(3, UniquePairsOnly), ElementsAre(20, 40, 60, 73, 86, 100));
    std::vector<std::int32_t> each;  // 0 to 60 in the first pass; the second starts at 60 again
    for (std::int32_t percent = 0; percent <= 100; ++percent) {
        each.insert(each.end(), percent == 60 ? 2 : 1, percent);
    }
    EXPECT_EQ(percents(250, UniquePairsOnly), each);
}

// The RTF format's side of opening and closing.

class OpenOutput : public testing::Test {
  protected:
    HRESULT Run(CExternalViewRTFExport& exporter, std::int32_t language, std::u16string_view path) {
        return exporter.RunExport(project.database(), path, 0, language, 0, u"", {});
    }
    TestProject project;
};

TEST_F(OpenOutput, FactoryThatIsMissingOrRefuses) {
    CExternalViewRTFExport without([] { return nullptr; }), refused;
    EXPECT_EQ(Run(without, 1036, u"out"), everrUnableToOpenFile);
    EXPECT_EQ(Run(refused, 1036, u"/no/such/folder/out"), everrUnableToOpenFile);
}

TEST_F(OpenOutput, HeadOfAFailedExportIsReleasedLater) {
    Written first, second;
    Written* written = &first;
    CExternalViewRTFExport exporter([&] { return std::make_unique<MemoryFactory>(*written); });
    EXPECT_EQ(Run(exporter, 1031, u"out"), everrInvalidQuery);
    EXPECT_EQ(first.pieces.size(), 1U);
    EXPECT_FALSE(first.closed || first.released);
    written = &second;
    EXPECT_EQ(Run(exporter, 1036, u"out"), S_OK);
    EXPECT_TRUE(first.released);
}

// What the abandoned file still holds in its buffer must not end up in the next one.
TEST_F(OpenOutput, SamePathAfterAFailedExport) {
    project.Add({{.id = u"1", .source = u"s"}});
    const TemporaryFolder folder;
    const std::u16string path = folder.Path(u"out");
    CExternalViewRTFExport fresh, exporter;
    EXPECT_EQ(Run(fresh, 1036, path), S_OK);
    const std::string expected = ReadFile(path);
    exporter.sourceFont.assign(expected.size(), u'x');  // a head longer than the whole file
    EXPECT_EQ(Run(exporter, 1031, path), everrInvalidQuery);
    exporter.sourceFont = fresh.sourceFont;
    EXPECT_EQ(Run(exporter, 1036, path), S_OK);
    EXPECT_EQ(ReadFile(path), expected);  // with a colour table that starts anew
}

}  // namespace
}  // namespace generalutilities
