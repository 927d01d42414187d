#include "recording_reader.h"

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

using testing::FileOf;
using testing::RecordingReader;

using CodePages = rtf::FontCodePages;
using Names = rtf::StyleNames;

TEST(RtfHead, FontTable) {
    const struct {
        const char* table;
        CodePages codePages;
    } cases[] = {
        {"{\\f0\\froman\\fcharset0 A;}{\\f1\\fcharset238 B;}", {{0, 1252}, {1, 1250}}},
        {"\\f0\\fcharset204 A;\\f1\\fcharset1 B;", {{0, 1251}, {1, 0}}},
        {"{\\f7\\fcharset128 A;}{\\f7\\fcharset134 B;}", {{7, 936}}},
        {"{\\f0\\fcharset999 A;}", {{0, -1}}},
        {"{\\f0\\fcharset A;}{\\f1\\fcharset2 B;}", {{1, 42}}},
        {"{\\f0\\fcharset-1 A;}", {}},
        {"{\\f-1\\fcharset0 A;}{\\f1\\fcharset0 B;}", {{1, 1252}}},
        {"{\\fbidi \\f3\\fcharset178 A;}{\\f4\\fcharset177 B;}", {{4, 1255}}},
        {"{\\f0 no set;}{\\f1\\fcharset161 B;}{\\f2\\fcharset162 C;}", {{0, 1253}, {2, 1254}}},
        {"{\\f0 no set;}{\\f1 none either;}", {}},
        {"{\\f0\\fcharset0 no end}", {{0, 1252}}},
        {"{\\f0\\fcharset0 {\\*\\falt \\}x}A;}{\\f1\\fcharset255 B;}", {{0, 1252}, {1, 850}}},
        {"{\\f99999999999\\fcharset0 A;}", {{2147483647, 1252}}},
        {"", {}},
    };
    for (const auto& test : cases) {
        RecordingReader reader;
        ASSERT_TRUE(reader.Open(
            FileOf(std::string("{\\fonttbl") + test.table + "}{\\stylesheet}\\pard x}")));
        EXPECT_TRUE(reader.Prepare()) << test.table;
        EXPECT_EQ(reader.fontCodePages, test.codePages) << test.table;
    }
}

TEST(RtfHead, CharacterSets) {
    const std::pair<std::int32_t, std::int32_t> sets[] = {
        {0, 1252},   {1, 0},      {2, 42},     {3, -1},     {77, 10000}, {78, 10001}, {79, 10003},
        {80, 10008}, {81, 10002}, {82, -1},    {83, 10005}, {84, 10004}, {85, 10006}, {86, 10081},
        {87, 10021}, {88, 10029}, {89, 10007}, {128, 932},  {129, 949},  {130, 1361}, {134, 936},
        {136, 950},  {161, 1253}, {162, 1254}, {163, 1258}, {177, 1255}, {178, 1256}, {186, 1257},
        {204, 1251}, {222, 874},  {238, 1250}, {254, 437},  {255, 850},  {256, -1},
    };
    std::string table;
    CodePages expected;
    for (const auto& [set, codePage] : sets) {
        const std::string number = std::to_string(set);
        table += "{\\f" + number + "\\fcharset" + number + " N;}";
        expected[set] = codePage;
    }
    RecordingReader reader;
    ASSERT_TRUE(reader.Open(FileOf("{\\fonttbl" + table + "}{\\stylesheet}\\pard")));
    ASSERT_TRUE(reader.Prepare());
    EXPECT_EQ(reader.fontCodePages, expected);
}

TEST(RtfHead, StyleSheet) {
    const struct {
        const char* sheet;
        Names names;
    } cases[] = {
        {"{\\s1 heading 1;}{\\cs2 Strong;}", {{1, "1"}, {2, "Strong"}}},
        {"{\\*\\cs10 tw4winMark;}{\\*\r\n\n\\cs11 \\i tw4winInternal;}",
         {{10, "tw4winMark"}, {11, "tw4winInternal"}}},
        {"{\\*\\ts11 Table;}{\\ds3 Section;}{\\ql \\snext0 Normal;}", {}},
        {"{\\snext0 Normal;}", {{0, "Normal"}}},  // any word on "s"; no digits count as 0
        {"{\\s5 First;}{\\cs5 Second;}", {{5, "First"}}},
        {"{\\s5 a;b;}{\\s6 no semicolon}{\\s7 c\r\nd;}", {{5, "a;b"}, {6, "a;b"}, {7, "d"}}},
        {"{\\s5}{\\s6 x;}", {{5, ""}, {6, "x"}}},
        {"{\\s5\\b;}", {{5, "\\s5\\b"}}},  // no blank before the name
        {"{Normal;}{\\s1 x;}", {{1, "x"}}},
        {"{\\s1{\\*\\keycode x;}A;}{\\s2 y;}", {{1, "x;}A"}, {2, "y"}}},
        {"{\\s1 \\} a\\\\;}{\\s2 b;}", {{1, "a\\\\"}, {2, "b"}}},
        {"\\{\\s4 a;\\}b", {{4, "a"}}},  // any brace begins an entry, also an escaped one
        {"", {}},
    };
    for (const auto& test : cases) {
        RecordingReader reader;
        ASSERT_TRUE(reader.Open(
            FileOf(std::string("{\\fonttbl}{\\stylesheet") + test.sheet + "}\\pard x}")));
        EXPECT_TRUE(reader.Prepare()) << test.sheet;
        EXPECT_EQ(reader.styleNames, test.names) << test.sheet;
    }
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
