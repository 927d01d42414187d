#include "case_table.h"
#include "recording_reader.h"
#include "text/decimal.h"

namespace generalutilities {
namespace {

using testing::FileOf;
using testing::RecordingReader;

using CodePages = rtf::FontCodePages;
using Names = rtf::StyleNames;

/// A map as "key=value|key=value".
template <class Map>
std::string Words(const Map& map) {
    std::ostringstream words;
    for (const auto& [key, value] : map) {
        words << (words.tellp() > 0 ? "|" : "") << key << "=" << value;
    }
    return words.str();
}

TEST(RtfHead, FontTablesAndStyleSheets) {
    for (const bool fonts : {true, false}) {
        for (const auto& row : CaseTable(fonts ? "font_tables.tsv" : "style_sheets.tsv")) {
            const std::string table = Bytes(row[0]);
            RecordingReader reader;
            ASSERT_TRUE(reader.Open(FileOf("{\\fonttbl" + (fonts ? table : "") + "}{\\stylesheet" +
                                           (fonts ? "" : table) + "}\\pard x}")));
            EXPECT_TRUE(reader.Prepare()) << table;
            EXPECT_EQ(fonts ? Words(reader.fontCodePages) : Words(reader.styleNames), Bytes(row[1]))
                << table;
        }
    }
}

TEST(RtfHead, CharacterSets) {
    std::string table;
    CodePages expected;
    for (const auto& row : CaseTable("character_sets.tsv")) {
        table += "{\\f" + Bytes(row[0]) + "\\fcharset" + Bytes(row[0]) + " N;}";
        expected[Number(row[0])] = Number(row[1]);
    }
    RecordingReader reader;
    ASSERT_TRUE(reader.Open(FileOf("{\\fonttbl" + table + "}{\\stylesheet}\\pard")));
    ASSERT_TRUE(reader.Prepare());
    EXPECT_EQ(reader.fontCodePages, expected);
}

// The style where the body begins, and the text; "no" without both tables, "-" without a body.
TEST(RtfHead, TheBodyAndTheStateWhereItBegins) {
    for (const auto& row : CaseTable("heads.tsv")) {
        RecordingReader reader;
        ASSERT_TRUE(reader.Open(FileOf(Bytes(row[0]))));
        std::u16string found = u"no";
        if (reader.Prepare()) {
            const bool hasBody = reader.Position() != RtfFilePager::NotFound;
            found = hasBody ? Decimal(reader.CurrentStyle()) + u" " : u"-";
            EXPECT_FALSE(reader.Parse());
            EXPECT_EQ(reader.events.all.empty(), !hasBody) << Bytes(row[0]);
            found += reader.events.text;
        }
        EXPECT_EQ(found, row[1]) << Bytes(row[0]);
    }
    RecordingReader closed;
    EXPECT_FALSE(closed.Prepare());
    EXPECT_FALSE(closed.Parse());
    EXPECT_FALSE(closed.Open(u"/no/such/file.rtf"));
}

TEST(RtfHead, ResetKeepsNamesOfStylesAndReportedWords) {
    RecordingReader reader;
    reader.controlWords.Add("cell");
    ASSERT_TRUE(
        reader.Open(FileOf("{\\fonttbl{\\f3\\fcharset0 A;}}{\\stylesheet{\\s1 a;}}\\pard")));
    ASSERT_TRUE(reader.Prepare());
    ASSERT_TRUE(reader.Open(FileOf("{\\fonttbl}{\\stylesheet{\\s1 b;}{\\s2 c;}}\\pard\\cell")));
    EXPECT_TRUE(reader.fontCodePages.empty());
    ASSERT_TRUE(reader.Prepare());
    EXPECT_EQ(reader.styleNames, (Names{{1, "a"}, {2, "c"}}));
    EXPECT_FALSE(reader.Parse());
    EXPECT_EQ(reader.events.all, (std::vector<std::string>{"W[cell]"}));
}

}  // namespace
}  // namespace generalutilities
