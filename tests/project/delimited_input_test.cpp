#include "project/project_files.h"

namespace generalutilities {
namespace {

std::unique_ptr<RowSource> OpenCsv(std::u16string path, std::optional<std::int32_t> language = {}) {
    return OpenDelimitedInput({std::move(path), ',', true, TextForm::Segment, language});
}

TEST(DelimitedInput, ReadsLanguagesStatusesCommentsAndFiles) {
    const auto source = OpenCsv(DataFile(u"app.csv"));
    EXPECT_EQ(source->Languages(), (std::vector<std::int32_t>{1036, 1025}));
    const auto rows = AllRows(*source);
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].source, u"Open {1}file{2}");
    EXPECT_EQ(rows[0].fileSpec, u"src/menu.txt");
    EXPECT_EQ(rows[0].translations[0].target, u"Ouvrir le {1}fichier{2}");
    EXPECT_EQ(rows[0].translations[0].status, 1);
    EXPECT_EQ(rows[0].translations[0].comments, u"Menu entry");
    EXPECT_EQ(rows[0].translations[1].target, u"افتح {1}الملف{2}");
    EXPECT_EQ(rows[0].translations[1].percentage, 100);
    EXPECT_EQ(rows[1].source, u"Two\nlines, \"quoted\"");
    EXPECT_EQ(rows[1].translations[0].status, 0x202);
    EXPECT_EQ(rows[2].source, u" blanks around ") << "blanks belong to the text";
    EXPECT_EQ(rows[2].translations[0].target, u" espaces ");
    EXPECT_NE(rows[2].place.find("app.csv, line 6"), std::string::npos) << rows[2].place;
}

TEST(DelimitedInput, ReadsTabsIdentifiersAndTheLexicon) {
    const auto source =
        OpenDelimitedInput({DataFile(u"terms.tsv"), '\t', true, TextForm::Segment, {}});
    const auto rows = AllRows(*source);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].id, u"k2");
    EXPECT_FALSE(rows[0].isLexicon);
    EXPECT_TRUE(rows[1].isLexicon);
    EXPECT_EQ(rows[1].frequency, 12);
    EXPECT_EQ(rows[1].translations[0].target, u"印刷 \xD83D\xDE00");
    ASSERT_EQ(source->Notes().size(), 2U) << "an unused column, a row without text";
}

TEST(DelimitedInput, TakesColumnsOfOneLanguageWithoutTag) {
    const TemporaryFolder folder;
    WriteFile(folder.Path(u"a.csv"), "Source,TARGET\nHello,Bonjour\n");
    const auto source = OpenCsv(folder.Path(u"a.csv"), 1036);
    EXPECT_EQ(AllRows(*source).at(0).translations.at(0).target, u"Bonjour");
    EXPECT_NE(ErrorOf([&] { OpenCsv(folder.Path(u"a.csv")); }).find(":fr-FR"), std::string::npos);
}

TEST(DelimitedInput, ReadsLongCellsAcrossBlocks) {
    const TemporaryFolder folder;
    const std::string longText = std::string(200000, 'x') + "\r\n\"\"" + std::string(70000, 'y');
    WriteFile(folder.Path(u"a.csv"),
              "source,target:de\r\n\"" + longText + "\",\"\xC3\xA9\"\r\nb,c");
    const auto rows = AllRows(*OpenCsv(folder.Path(u"a.csv")));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].source.size(), 270003U);
    EXPECT_EQ(rows[0].translations[0].target, u"\u00E9");
    EXPECT_NE(rows[1].place.find("line 4"), std::string::npos) << rows[1].place;
}

TEST(DelimitedInput, ReadsQuotesAsTextWithoutQuoting) {
    const TemporaryFolder folder;
    WriteFile(folder.Path(u"a.tsv"), "source\ttarget:de\n\"Hi\" he said\t\"\n");
    const auto rows =
        AllRows(*OpenDelimitedInput({folder.Path(u"a.tsv"), '\t', false, TextForm::Segment, {}}));
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].source, u"\"Hi\" he said");
    EXPECT_EQ(rows[0].translations[0].target, u"\"");
}

struct WrongTable {
    const char* content;
    std::vector<const char*> told;  ///< what the message must hold
};

TEST(DelimitedInput, NamesWhatIsWrongAndWhere) {
    const WrongTable cases[] = {
        {"", {"empty", "heading"}},
        {"\n\n", {"empty", "heading"}},
        {"a;b\n", {"line 1", "\"source\"", "a;b"}},
        {"source\nx\n", {"target:fr-FR"}},
        {"source,source,target:de\n", {"two columns"}},
        {"source,target:de,target:de-DE\n", {"two columns"}},
        {"source,target:klingon\n", {"klingon", "unknown"}},
        {"source,target:de\nx\n", {"line 2", "1 cells", "2"}},
        {"source,target:de\nx,y,z\n", {"line 2", "3 cells"}},
        {"source,target:de\n\nx,y\n,z\n", {"line 4", "no source text"}},
        {"source,target:de,status:de\nx,y,done\n", {"line 2", "column 3", "done", "guaranteed"}},
        {"source,target:de,percentage:de\nx,y,-3\n", {"line 2", "column 3", "-3"}},
        {"source,target:de,lexicon\nx,y,maybe\n", {"column 3", "maybe"}},
        {"source,target:de\nx,\"y\n\nz", {"line 2", "quote"}},
        {"source,target:de\nx,\"y\" z\n", {"line 2", "column 2", "quote"}},
        {"source,target:de\nx,y\"z\"\n", {"line 2", "column 2", "quote"}},
        {"source,target:de\nx,ab\xC3\n", {"line 2", "column 2", "byte 3", "UTF-8"}},
        {"source,target:de\nx,\xEF\xBF\xBD\xED\xA0\x80\n", {"line 2", "byte 4", "UTF-8"}},
        {"\xFF\xFEs\0o\0", {"UTF-16"}},
        {"id,source,target:de\n,x,y\n", {"line 2", "identifier"}},
    };
    const TemporaryFolder folder;
    const std::u16string path = folder.Path(u"wrong.csv");
    for (const WrongTable& test : cases) {
        WriteFile(path, test.content);
        const std::string error = ErrorOf([&] { AllRows(*OpenCsv(path)); });
        EXPECT_NE(error.find("wrong.csv"), std::string::npos) << test.content;
        for (const char* words : test.told) {
            EXPECT_NE(error.find(words), std::string::npos) << test.content << "\n" << error;
        }
    }
    WriteFile(path, std::string_view("source,target:de\nx,a\0b\n", 23));
    EXPECT_NE(ErrorOf([&] { AllRows(*OpenCsv(path)); }).find("zero byte"), std::string::npos);
    EXPECT_NE(ErrorOf([&] { OpenCsv(folder.Path(u"absent.csv")); }).find("absent.csv"),
              std::string::npos);
    EXPECT_NE(ErrorOf([&] { OpenCsv(folder.Path(u"")); }).find("cannot be opened"),
              std::string::npos)
        << "a folder";
}

TEST(DelimitedInput, KeepsAReplacementCharacterThatTheFileHolds) {
    const TemporaryFolder folder;
    WriteFile(folder.Path(u"a.csv"), "source,target:de\nx,\xEF\xBF\xBD\n");
    EXPECT_EQ(AllRows(*OpenCsv(folder.Path(u"a.csv")))[0].translations[0].target, u"\uFFFD");
}

TEST(DelimitedInput, SurvivesAFileCutAnywhere) {
    const std::string whole = ReadFile(DataFile(u"app.csv"));
    const TemporaryFolder folder;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        WriteFile(folder.Path(u"cut.csv"), whole.substr(0, length));
        try {
            ASSERT_LE(AllRows(*OpenCsv(folder.Path(u"cut.csv"))).size(), 3U);
        } catch (const Error& error) {
            ASSERT_NE(std::string(error.what()).find("cut.csv"), std::string::npos);
        }
    }
}

}  // namespace
}  // namespace generalutilities
