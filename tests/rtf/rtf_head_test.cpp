#include "case_table.h"
#include "recording_reader.h"

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

TEST(RtfHead, BothTablesMustBeThereAndEnd) {
    const struct {
        const char* file;
        bool ok;
    } cases[] = {
        {"", false},
        {"plain text", false},
        {"{\\rtf1{\\fonttbl}\\pard x}", false},
        {"{\\rtf1{\\stylesheet}\\pard x}", false},
        {"{\\rtf1{\\fonttbl{\\stylesheet}}", false},  // the font table ends with the file
        {"{\\rtf1{\\fonttbl}{\\stylesheet}", false},  // so does the style sheet
        {"{\\rtf1{\\fonttbl}{\\stylesheet}}", true},
        {"{\\rtf1{\\fonttbl\\}{\\stylesheet}}", false},
        {"{\\rtf1{\\fonttbl\\\\}{\\stylesheet}}", true},
        {"{\\rtf1{\\stylesheet}{\\fonttbl}}", true},   // in any order
        {"{\\rtf1{\\fonttbl{\\stylesheet}}{}", true},  // one inside the other, too
    };
    for (const auto& test : cases) {
        RecordingReader reader;
        ASSERT_TRUE(reader.Open(FileOf(test.file)));
        EXPECT_EQ(reader.Prepare(), test.ok) << test.file;
    }
    RecordingReader closed;
    EXPECT_FALSE(closed.Prepare());
    EXPECT_FALSE(closed.Parse());
    EXPECT_FALSE(closed.Open(u"/no/such/file.rtf"));
}

TEST(RtfHead, TheBodyBeginsAtTheFirstRowOrParagraph) {
    const struct {
        const char* body;  ///< behind the style sheet
        std::u16string_view text;
        bool found;
    } cases[] = {
        {"head \\pard one}", u"one", true},
        {"head \\intbl one\\pard two}", u"onetwo", true},
        {"head \\trowd one}", u"", false},
        {"\\\\pard one}", u"one", true},  // found also where the backslash is itself escaped
        {"{\\pard}\\uc2}\\uc0\\u65 b}", u"Ab", true},
    };
    for (const auto& test : cases) {
        RecordingReader reader;
        const std::string head = "{\\pard{\\fonttbl}{\\stylesheet}";
        ASSERT_TRUE(reader.Open(FileOf(head + test.body)));
        ASSERT_TRUE(reader.Prepare()) << test.body;
        EXPECT_EQ(reader.Position() == RtfFilePager::NotFound, !test.found) << test.body;
        EXPECT_FALSE(reader.Parse());
        EXPECT_EQ(reader.Text(), test.text) << test.body;
        EXPECT_EQ(reader.events.empty(), !test.found) << test.body;
    }
}

TEST(RtfHead, GroupsFontsStylesAndFallbacksAreFollowed) {
    const struct {
        const char* head;  ///< between the tables and the body
        const char* body;
        std::u16string_view text;
        std::int32_t style;
    } cases[] = {
        {"\\f5\\s7", "\\'e9}", u"é", 7},
        {"\\f6\\cs8 ", "\\'e9}", u"й", 8},
        {"\\f5{\\f6\\ds9", "\\'e9}", u"й", 9},
        {"\\f5\\ts3{\\f6\\s9}", "\\'e9}", u"é", 3},
        {"\\f5 \\\\f6\\{\\'7d\\~\\_\\-\\:", "\\'e9}", u"é", 1},  // escapes are no braces, no words
        {"{\\*\\x\\f6}\\f5", "\\'e9}", u"é", 1},
        {"{\\*\\x}\\*\\f6", "\\'e9}", u"й", 1},  // a destination is not skipped in the head
        {"\\uc0", "\\u65 \\'42}", u"AB", 1},
        {"}}}}\\af6", "\\'e9}", u"й", 1},
    };
    for (const auto& test : cases) {
        RecordingReader reader;
        const std::string tables =
            "{\\rtf1{\\fonttbl{\\f5\\fcharset0 A;}{\\f6\\fcharset204 B;}}{\\stylesheet}";
        ASSERT_TRUE(reader.Open(FileOf(tables + test.head + "\\pard " + test.body)));
        ASSERT_TRUE(reader.Prepare()) << test.head;
        EXPECT_EQ(reader.CurrentStyle(), test.style) << test.head;
        EXPECT_FALSE(reader.Parse());
        EXPECT_EQ(reader.Text(), test.text) << test.head;
    }
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
    EXPECT_EQ(reader.events, (std::vector{testing::WordEvent("cell", 1)}));
}

}  // namespace
}  // namespace generalutilities
