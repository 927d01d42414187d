#include <generalutilities/project/contents.h>

#include "project/project_files.h"

#include <functional>

namespace generalutilities {
namespace {

class Contents : public ::testing::Test {
  protected:
    void SetUp() override {
        std::vector<NewProjectRow> rows;
        rows.push_back(MakeRow(u"Open file", {{u"Ouvrir", u"menu", 0x201, 100}, {u"", u"", 0, 0}}));
        rows.push_back(MakeRow(u"Close", {{u"", u"", 0, 0}, {u"Schlie\u00DFen", u"", 2, 60}}));
        rows.push_back(MakeRow(u"Save \u0410\u0411", {{u"\u00C9crire", u"", 1, 0}, {}}));
        rows.back().fileSpec = u"b.txt";
        rows.push_back(MakeRow(u"term", {{u"terme", u"", 4, 0}, {}}));
        rows.back().isLexicon = true;
        CreateProject(
            folder.Path(u"p"),
            Sources(std::make_unique<FixedRows>(std::vector<std::int32_t>{1036, 1031}, rows)), {});
        project = OpenProject(folder.Path(u"p"));
        ASSERT_NE(project, nullptr);
    }

    std::vector<std::u16string> Sources_(const RowFilter& filter) {
        std::vector<std::u16string> found;
        const std::uint64_t count = ReadProjectRows(
            *project, filter, [&](const ProjectRow& row) { found.emplace_back(row.source); });
        EXPECT_EQ(count, found.size());
        return found;
    }

    TemporaryFolder folder;
    std::unique_ptr<Database> project;
};

TEST_F(Contents, AreCountedByLanguageFileAndStatus) {
    const ProjectInfo info = ReadProjectInfo(*project);
    EXPECT_EQ(info.sourceLanguage, 1033);
    EXPECT_EQ(info.rows, 3U);
    EXPECT_EQ(info.lexiconRows, 1U);
    EXPECT_EQ(info.reimportedRows, std::nullopt);
    ASSERT_EQ(info.languages.size(), 2U);
    EXPECT_EQ(info.languages[0].langId, 1036);
    EXPECT_EQ(info.languages[0].translated, 2U);
    EXPECT_EQ(info.languages[0].empty, 1U);
    EXPECT_EQ(info.languages[0].withComments, 1U);
    EXPECT_EQ(info.languages[0].rowsPerStatusBit,
              (std::map<std::int32_t, std::uint64_t>{{1, 2}, {0x200, 1}}));
    EXPECT_EQ(info.languages[1].translated, 1U);
    ASSERT_EQ(info.files.size(), 2U);
    EXPECT_EQ(info.files[0].rows, 2U);
    EXPECT_EQ(info.files[1].name, u"b.txt");
    EXPECT_EQ(info.files[1].rows, 1U);
}

TEST_F(Contents, RowsAreFilteredAndPaged) {
    const std::u16string save = u"Save \u0410\u0411";
    const struct {
        std::function<void(RowFilter&)> choose;
        std::vector<std::u16string> sources;
    } cases[] = {
        {[](RowFilter&) {}, {u"Open file", u"Close", save, u"term"}},
        {[](RowFilter& filter) { filter.onlyUntranslated = true; }, {u"Close"}},
        {[](RowFilter& filter) { filter.fileId = -1; }, {u"term"}},
        {[](RowFilter& filter) { filter.fileId = 1; }, {u"Open file", u"Close"}},
        {[](RowFilter& filter) { filter.statusMask = 0x200 | 4; }, {u"Open file", u"term"}},
        {[](RowFilter& filter) { filter.text = u"\u0430\u0431"; }, {save}},
        {[](RowFilter& filter) { filter.text = u"\u00C9CRI"; }, {save}},
        {[](RowFilter& filter) { filter.text = u"000003"; }, {save}},
        {[](RowFilter& filter) { filter.text = u"MENU"; }, {u"Open file"}},  // in a comment
        {[](RowFilter& filter) { filter.skip = 1, filter.limit = 2; }, {u"Close", save}},
        {[](RowFilter& filter) { filter.limit = 0; }, {}},
    };
    for (const auto& [choose, sources] : cases) {
        RowFilter filter;
        filter.langId = 1036;
        choose(filter);
        EXPECT_EQ(Sources_(filter), sources);
    }
}

TEST_F(Contents, NamesTheLanguagesThatThereAre) {
    RowFilter filter;
    filter.langId = 1041;
    const std::string error = ErrorOf([&] { Sources_(filter); });
    EXPECT_NE(error.find("ja-JP (1041)"), std::string::npos) << error;
    EXPECT_NE(error.find("fr-FR (1036), de-DE (1031)"), std::string::npos) << error;
}

TEST_F(Contents, WithoutAStampIsEnglishAndWithoutTargetsAnError) {
    ASSERT_TRUE(project->Execute(u"DELETE FROM Stamp"));
    EXPECT_EQ(ProjectSourceLanguage(*project), 1033);
    ASSERT_TRUE(project->Execute(u"DROP TABLE Pairs"));
    ASSERT_TRUE(project->CreateTable({u"Pairs", {{u"Target_x", FieldDefinition::Type::Text}}}));
    EXPECT_NE(ErrorOf([&] { ReadProjectInfo(*project); }), "");
}

}  // namespace
}  // namespace generalutilities
