#include <generalutilities/extview/segment_text.h>

#include "platform/message_catalog/message_catalog.h"
#include "project/project_files.h"

namespace generalutilities {
namespace {

CatalogInput AllCatalogs() {
    CatalogInput input;
    input.templatePath = DataFile(u"template.pot");
    input.catalogs = {{DataFile(u"ru.po"), {}}, {DataFile(u"fr.po"), {}}, {DataFile(u"ja.po"), {}}};
    input.emptyLanguages = {1031};
    return input;
}

TEST(CatalogInput, MatchesTheMessagesOfSeveralLanguages) {
    const auto source = OpenCatalogInput(AllCatalogs());
    EXPECT_EQ(source->Languages(), (std::vector<std::int32_t>{1049, 1036, 1041, 1031}))
        << "from the header, from the file's name, and the one without a catalogue";
    EXPECT_EQ(source->RowsAtMost(), 7U) << "5 messages, one of them with three plural forms";
    EXPECT_EQ(CellsOf(AllRows(*source)), CaseTable("catalog_rows.tsv"));
    ASSERT_EQ(source->Notes().size(), 1U) << "a message that the template does not have";
    EXPECT_NE(source->Notes()[0].find("ru.po: 1 "), std::string::npos);
}

TEST(CatalogInput, WorksWithoutATemplateAndByReference) {
    CatalogInput input;
    input.catalogs = {{DataFile(u"fr.po"), {}}, {DataFile(u"ru.po"), {}}};
    auto rows = AllRows(*OpenCatalogInput(input));
    EXPECT_EQ(rows.size(), 7U) << "those of the first, then those that only the second has";
    EXPECT_EQ(rows.back().source, u"Only here");
    EXPECT_EQ(rows.front().fileSpec, DataFile(u"fr.po"));

    input = AllCatalogs();
    input.filesByReference = true;
    rows = AllRows(*OpenCatalogInput(input));
    EXPECT_EQ(rows[0].fileSpec, u"src/menu.c");
    EXPECT_EQ(rows[3].fileSpec, u"src/list.c");
    EXPECT_EQ(rows[2].fileSpec, DataFile(u"template.pot")) << "no reference";
}

TEST(CatalogInput, MakesCodesOfPlaceholders) {
    CatalogInput input = AllCatalogs();
    input.textForm = TextForm::Placeholders;
    const auto rows = AllRows(*OpenCatalogInput(input));
    EXPECT_EQ(StripCodeMarkers(rows[0].source), u"Open {1}");
    EXPECT_EQ(PlainText(rows[0].source), u"Open %s");
    EXPECT_EQ(StripCodeMarkers(rows[0].translations[2].target), u"表示{1}");
}

TEST(CatalogInput, RefusesTwoCataloguesOfOneLanguage) {
    CatalogInput input;
    input.catalogs = {{DataFile(u"fr.po"), {}}, {DataFile(u"ru.po"), 1036}};
    EXPECT_NE(ErrorOf([&] { OpenCatalogInput(input); }).find("another catalogue for fr-FR"),
              std::string::npos);
    EXPECT_NE(ErrorOf([] { OpenCatalogInput({}); }), "");
}

TEST(MessageCatalog, NamesWhatIsWrongAndGoesOn) {
    const TemporaryFolder folder;
    const std::u16string path = folder.Path(u"wrong.po");
    for (const auto& row : CaseTable("wrong_catalogs.tsv")) {
        WriteFile(path, Bytes(row[0]));
        ExpectWords(ErrorOf([&] { message_catalog::Read(path); }), "wrong.po|" + Bytes(row[1]));
        EXPECT_EQ(message_catalog::Read(DataFile(u"ru.po")).messages.size(), 4U)
            << "the parser is as good as new";
    }
    WriteFile(path, "");
    EXPECT_TRUE(message_catalog::Read(path).messages.empty());
    EXPECT_NE(ErrorOf([&] { message_catalog::Read(folder.Path(u"absent.po")); }), "");
    EXPECT_NE(ErrorOf([&] { message_catalog::Read(folder.Path(u"")); }), "") << "a folder";
    WriteFile(path,
              "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n"
              "msgid \"e\"\nmsgstr \"x\"\n");
    ExpectWords(ErrorOf([&] { OpenCatalogInput({{}, {{path, {}}}, {}}); }), "fr=");
}

TEST(MessageCatalog, SurvivesAFileCutAnywhere) {
    SurviveCuts(u"ja.po", 2, [](const std::u16string& path) {
        return message_catalog::Read(path).messages.size();
    });
}

}  // namespace
}  // namespace generalutilities
