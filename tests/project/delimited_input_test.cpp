#include "project/project_files.h"

namespace generalutilities {
namespace {

std::unique_ptr<RowSource> OpenTable(std::u16string path, char delimiter, bool quoted = true,
                                     std::optional<std::int32_t> language = {}) {
    return OpenDelimitedInput({std::move(path), delimiter, quoted, TextForm::Segment, language});
}

TEST(DelimitedInput, ReadsLanguagesStatusesCommentsAndFiles) {
    const auto source = OpenTable(DataFile(u"app.csv"), ',');
    EXPECT_EQ(source->Languages(), (std::vector<std::int32_t>{1036, 1025}));
    const auto rows = AllRows(*source);
    EXPECT_EQ(CellsOf(rows), CaseTable("app_rows.tsv"));
    EXPECT_NE(rows[2].place.find("app.csv, line 6"), std::string::npos) << rows[2].place;
    EXPECT_EQ(rows[0].fileSpec, u"src/menu.txt");
}

TEST(DelimitedInput, ReadsTabsIdentifiersAndTheLexicon) {
    const auto source = OpenTable(DataFile(u"terms.tsv"), '\t');
    EXPECT_EQ(CellsOf(AllRows(*source)), CaseTable("terms_rows.tsv"));
    ASSERT_EQ(source->Notes().size(), 2U) << "an unused column, a row without text";
}

TEST(DelimitedInput, TakesColumnsOfOneLanguageWithoutTag) {
    const TemporaryFolder folder;
    const std::u16string path = folder.Path(u"a.csv");
    WriteFile(path, "Source,TARGET\nHello,Bon\xEF\xBF\xBDjour\n");
    EXPECT_EQ(AllRows(*OpenTable(path, ',', true, 1036)).at(0).translations.at(0).target,
              u"Bon\uFFFDjour");
    ExpectWords(ErrorOf([&] { OpenTable(path, ','); }), ":fr-FR");
}

TEST(DelimitedInput, ReadsLongCellsAcrossBlocks) {
    const TemporaryFolder folder;
    const std::string longText = std::string(200000, 'x') + "\r\n\"\"" + std::string(70000, 'y');
    WriteFile(folder.Path(u"a.csv"),
              "source,target:de\r\n\"" + longText + "\",\"\xC3\xA9\"\r\nb,c");
    const auto rows = AllRows(*OpenTable(folder.Path(u"a.csv"), ','));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].source.size(), 270003U);
    EXPECT_EQ(rows[0].translations[0].target, u"\u00E9");
    EXPECT_NE(rows[1].place.find("line 4"), std::string::npos) << rows[1].place;
}

TEST(DelimitedInput, ReadsQuotesAsTextWithoutQuoting) {
    const TemporaryFolder folder;
    WriteFile(folder.Path(u"a.tsv"), "source\ttarget:de\n\"Hi\" he said\t\"\n");
    const auto cells = CellsOf(AllRows(*OpenTable(folder.Path(u"a.tsv"), '\t', false)));
    ASSERT_EQ(cells.size(), 1U);
    EXPECT_EQ(cells[0][1] + cells[0][4], u"\"Hi\" he said\"");
}

TEST(DelimitedInput, NamesWhatIsWrongAndWhere) {
    const TemporaryFolder folder;
    const std::u16string path = folder.Path(u"wrong.csv");
    for (const auto& row : CaseTable("wrong_tables.tsv")) {
        WriteFile(path, Bytes(row[0]));
        ExpectWords(ErrorOf([&] { AllRows(*OpenTable(path, ',')); }), "wrong.csv|" + Bytes(row[1]));
    }
    for (const auto& row : {std::pair{u"absent.csv", "absent.csv"}, {u"", "cannot be opened"}}) {
        ExpectWords(ErrorOf([&] { OpenTable(folder.Path(row.first), ','); }), row.second);
    }
}

TEST(DelimitedInput, SurvivesAFileCutAnywhere) {
    SurviveCuts(u"app.csv", 3,
                [](const std::u16string& path) { return AllRows(*OpenTable(path, ',')).size(); });
}

}  // namespace
}  // namespace generalutilities
