#include <generalutilities/extview/source_key.h>

#include "project/project_files.h"

namespace generalutilities {
namespace {

using namespace std::string_literals;

/// Texts of which no unit may be lost on the way into a project and out again.
const std::u16string OddTexts[] = {u"\xD800",
                                   u"\xDC00x\xD83D\xDE00",
                                   u"\uFFFF\uFFFE",
                                   u"\uFEFFbom",
                                   u"a\r\nb\rc\nd\te",
                                   u"\u2028\u2029\u0085",
                                   u"'quoted' \"twice\" \\ {1} \\{",
                                   u"\u0006{1}\u0007%s\u0008",
                                   u"  blanks  ",
                                   u"%_*?[#]"};

TEST(CreateProject, KeepsEveryUnitOfItsRows) {
    const TemporaryFolder folder;
    std::vector<NewProjectRow> rows;
    for (const std::u16string& text : OddTexts) {
        rows.push_back(MakeRow(text, {{text + u"1", text + u"2", 0x201, 77}, {}}));
    }
    CreateOptions options;
    options.sourceLanguage = 2057;
    std::vector<int> percents;
    options.progress = [&](int percent) { percents.push_back(percent); };
    const CreateResult result = CreateProject(
        folder.Path(u"p"),
        Sources(std::make_unique<FixedRows>(std::vector<std::int32_t>{1036, 1041}, rows)), options);
    EXPECT_EQ(result.rows, rows.size());
    EXPECT_EQ(result.files, std::vector<std::u16string>{u"main.txt"});
    EXPECT_EQ(percents.back(), 100);
    EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
    EXPECT_EQ(folder.FileCount(), 1U) << "nothing else is left beside the project";

    const auto project = OpenProject(folder.Path(u"p"));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::u16string& text = rows[i].source;
        for (const auto& [column, expected] :
             {std::pair(u"Source", text), std::pair(u"Target_1036", text + u"1"),
              std::pair(u"Comments_1036", text + u"2"), std::pair(u"Target_1041", u"(null)"s),
              std::pair(u"Source2Index", MakeSourceKey(text, 2057))}) {
            EXPECT_EQ(
                QueryText(*project, u"SELECT "s + column + u" FROM Pairs WHERE ID = '" +
                                        files::FromUtf8(std::to_string(1'000'001 + i)).substr(1) +
                                        u"'"),
                expected);
        }
    }
    EXPECT_EQ(QueryText(*project, u"SELECT sLang FROM Stamp"), u"9");
    EXPECT_EQ(QueryText(*project, u"SELECT sSubLang FROM Stamp"), u"2");
    EXPECT_EQ(QueryText(*project, u"SELECT FileSpec FROM Files WHERE ID = 1"), u"app/main.txt");
    EXPECT_EQ(QueryText(*project,
                        u"SELECT Status_1036 FROM Pairs WHERE Selected = -1 AND "
                        u"Done = 0 AND FileID = 1 AND Percentage_1036 = 77"),
              u"513");
    const auto table = project->OpenRecordset(u"Pairs", RecordsetType::Table);
    ASSERT_TRUE(table->SetIndex(u"iID"));
    ASSERT_TRUE(table->Seek(u"000002"));
    EXPECT_FALSE(table->NoMatch());
}

TEST(CreateProject, NumbersRowsSoThatTextOrderIsTheirOrder) {
    const TemporaryFolder folder;
    const std::vector<NewProjectRow> rows(1200, MakeRow(u"x", {{}}));
    CreateProject(folder.Path(u"p"),
                  Sources(std::make_unique<FixedRows>(std::vector{1036}, rows, 12345678)), {});
    const auto project = OpenProject(folder.Path(u"p"));
    EXPECT_EQ(QueryText(*project, u"SELECT ID FROM Pairs ORDER BY ID"), u"00000001");
    EXPECT_EQ(QueryText(*project, u"SELECT ID FROM Pairs ORDER BY ID DESC"), u"00001200");
}

TEST(CreateProject, JoinsSourcesWithDifferentLanguagesAndFiles) {
    const TemporaryFolder folder;
    auto first = MakeRow(u"a", {{u"fr", u"", 0, 0}});
    auto second = MakeRow(u"b", {{u"de", u"", 0, 0}, {u"fr2", u"", 0, 0}});
    second.fileSpec = u"C:\\texts\\other.doc";
    auto third = MakeRow(u"c", {{}, {}});
    third.isLexicon = true;
    third.frequency = 9;
    auto sources =
        Sources(std::make_unique<FixedRows>(std::vector<std::int32_t>{1036}, std::vector{first}));
    sources.push_back(std::make_unique<FixedRows>(std::vector<std::int32_t>{1031, 1036},
                                                  std::vector{second, third}));
    const CreateResult result = CreateProject(folder.Path(u"p"), sources, {});
    EXPECT_EQ(result.languages, (std::vector<std::int32_t>{1036, 1031}));
    EXPECT_EQ(result.files, (std::vector<std::u16string>{u"main.txt", u"other.doc"}));
    EXPECT_EQ(result.rows, 2U);
    EXPECT_EQ(result.lexiconRows, 1U);
    const auto project = OpenProject(folder.Path(u"p"));
    EXPECT_EQ(QueryText(*project, u"SELECT Target_1036 FROM Pairs WHERE FileID = 2"), u"fr2");
    EXPECT_EQ(QueryText(*project, u"SELECT Freq FROM Pairs WHERE FileID = -1"), u"9");
}

/// The error of creating a project of rows.
std::string Make(std::u16string_view path, const std::vector<NewProjectRow>& rows, bool replace) {
    CreateOptions options;
    options.replaceExisting = replace;
    return ErrorOf([&] {
        CreateProject(path, Sources(std::make_unique<FixedRows>(std::vector{1036}, rows)), options);
    });
}

TEST(CreateProject, LeavesNothingBehindWhenARowIsWrong) {
    const TemporaryFolder folder;
    const auto row = [](std::u16string id) { return MakeRow(u"x", {{}}, std::move(id)); };
    const std::pair<std::vector<NewProjectRow>, const char*> cases[] = {
        {{row(u"a"), row(u"b"), row(u"a")}, "earlier row already"},
        {{row(u"a"), row(u"")}, "has no identifier"},
        {{row(u""), row(u"a")}, "has an identifier"},
        {{row(u"a\nb")}, "control character"},
    };
    folder.Write("old", "kept");
    for (const auto& [rows, words] : cases) {
        ExpectWords(Make(folder.Path(u"new"), rows, false), words);
        ExpectWords(Make(folder.Path(u"old"), rows, true), words);
        EXPECT_EQ(folder.FileCount(), 1U);
        EXPECT_EQ(ReadFile(folder / "old"), "kept");
    }
}

TEST(CreateProject, ReplacesOnlyWhenAllowed) {
    const TemporaryFolder folder;
    const auto make = [&](std::u16string path, bool replace) {
        return Make(path, {MakeRow(u"x", {{}})}, replace);
    };
    const std::filesystem::path file = folder.Write("p", "old"), link = folder / "link";
    folder.Write("p-journal", "of an earlier file of that name");
    ExpectWords(make(folder.Path(u"p"), false), "already");
    EXPECT_EQ(ReadFile(file), "old");
    EXPECT_EQ(make(folder.Path(u"p"), true), "");
    EXPECT_NE(OpenProject(folder.Path(u"p")), nullptr);
    EXPECT_EQ(folder.FileCount(), 1U);
    std::filesystem::create_symlink(file, link);
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    WriteFile(file, "old");
    EXPECT_EQ(make(folder.Path(u"link"), true), "");
    EXPECT_TRUE(std::filesystem::is_symlink(link)) << "a link stays a link";
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms::owner_all);
    EXPECT_NE(OpenProject(folder.Path(u"p")), nullptr);
    ExpectWords(make(folder.Path(u""), true), "folder");
    ExpectWords(make(folder.Path(u"no/such/p"), false), "");
    ExpectWords(make(u"", false), "");
    ExpectWords(ErrorOf([&] { CreateProject(folder.Path(u"q"), {}, {}); }), "target language");
}

}  // namespace
}  // namespace generalutilities
