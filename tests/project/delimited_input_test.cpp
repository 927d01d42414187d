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
    WriteFile(folder.Path(u"a.csv"), "Source,TARGET\nHello,Bon\xEF\xBF\xBDjour\n");
    const auto source = OpenCsv(folder.Path(u"a.csv"), 1036);
    EXPECT_EQ(AllRows(*source).at(0).translations.at(0).target, u"Bon\uFFFDjour");
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

TEST(DelimitedInput, NamesWhatIsWrongAndWhere) {
    const TemporaryFolder folder;
    const std::u16string path = folder.Path(u"wrong.csv");
    for (const auto& row : CaseTable("wrong_tables.tsv")) {
        WriteFile(path, Bytes(row[0]));
        ExpectWords(ErrorOf([&] { AllRows(*OpenCsv(path)); }), "wrong.csv|" + Bytes(row[1]));
    }
    for (const auto& row : {std::pair{u"absent.csv", "absent.csv"}, {u"", "cannot be opened"}}) {
        ExpectWords(ErrorOf([&] { OpenCsv(folder.Path(row.first)); }), row.second);
    }
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
