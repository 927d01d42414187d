#include "extview/rtf/rtf_reader.h"

#include "sample_head.h"

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

using namespace std::string_view_literals;

using testing::Event;
using testing::FileOf;
using testing::Head;
using testing::RecordingReader;
using testing::TextOf;

struct TextCase {
    const char* body;
    std::u16string_view text;
};

void ExpectTexts(std::initializer_list<TextCase> cases) {
    for (const TextCase& test : cases) {
        EXPECT_EQ(TextOf(test.body), test.text) << test.body;
    }
}

TEST(RtfReader, CharactersAndEscapes) {
    ExpectTexts({
        {"abc", u"abc"},
        {"a\\\\b\\{c\\}d", u"a\\b{c}d"},
        {"a\r\nb\nc", u"abc"},
        {"a\tb", u"a\tb"},
        {"\xE9\x80", u"\uFFE9\uFF80"},  // a raw byte keeps its sign, whatever the font
        {"\\\xE9", u""},                // behind a backslash it is the name of a word
        {"a{\\b b}c", u"abc"},
        {"a\\v b\\v0\\plain c", u"abc"},
        {"a\\fonttblx b", u"ab"},
        {"a\\\r\nb", u"ab"},
        {"a\\ b", u"ab"},
        {"a\\5b", u"ab"},
        {"a\\|b", u"a"},
        {"}}}a{{{{b", u"ab"},
    });
}

TEST(RtfReader, SpecialWords) {
    ExpectTexts({
        {"a\\par b\\par\\par c", u"a\r\nb\r\n\r\nc"},
        {"a\\line b\\tab c", u"a\nb\tc"},
        {"\\lquote a\\rquote s\\ldblquote b\\rdblquote\\rdblquote", u"‘a’s“b””"},
        {"\\bullet\\endash\\emdash", u"•–—"},
        {"\\zwbo\\zwnbo\\zwj\\zwnj", u"\u200B\uFEFF\u200D\u200C"},
        {"a\\~b\\_c\\-d\\:e", u"a\u00A0b-cde"},
        {"a\\~ b\\- c", u"a\u00A0 b c"},      // these take no space
        {"a\\par5b\\tab-5", u"a\r\n5b\t-5"},  // nor do words take an argument
        {"a\\pard b\\parx c\\Par d\\tabs e", u"abcde"},
        {"a\\par\r\nb", u"a\r\nb"},
        {"a\\par  b", u"a\r\n b"},
    });
}

TEST(RtfReader, UnicodeAndFallbacks) {
    ExpectTexts({
        {"\\u8217\\'92x", u"\u2019x"},
        {"\\u8217?x", u"\u2019x"},
        {"\\uc0\\u8217 x", u"\u2019x"},
        {"\\uc0\\u-3913 x", u"\uF0B7x"},
        {"\\uc0\\u55357 \\u56832 ", u"\U0001F600"},
        {"\\uc0\\u55357 ", u"\xD83D"},
        {"\\uc0\\u65601 \\u ", u"A\0"sv},  // kept to 16 bits; no argument is 0
        {"\\uc0\\u99999999999 \\u-99999999999 ", u"\uFFFF\0"sv},
        {"\\uc2\\u233\\'c3\\'a9x", u"éx"},
        {"\\uc2\\u65 \\'41x\\'42y", u"ABy"},  // one byte and one character
        {"\\uc1\\u65 \\u66 cd",
         u"Ad"},  // a Unicode character is itself a fallback, then asks for one
        {"\\uc3\\u65\\'41\\'42\\'43\\'44x", u"ADx"},  // dropped from the front of a run
        {"\\u65\\par x", u"A\nx"},                    // of two characters the first is dropped
        {"\\u65\\-\\~x", u"Ax"},
        {"\\u65\r\n?x", u"Ax"},
        {"\\u65{?}x", u"Ax"},  // a count goes on behind a brace, and behind a word
        {"\\u65\\b ?x", u"Ax"},
        {"\\uc3\\u65 a}b\\uc0\\u66 cde", u"Acde"},
        {"{\\uc2\\u65 ab}\\u66 cd", u"ABd"},  // the outer count holds again
        {"\\uc2{\\u65 ab\\uc0}\\u66 cdx", u"ABx"},
        {"\\uc-1\\u65 everything else", u"A"},
        {"\\uc\\u65 x", u"Ax"},
    });
}

// The document says code page 1251; each font's character set decides all the same.
TEST(RtfReader, BytesFollowTheFont) {
    ExpectTexts({
        {"\\'e9\\'E9", u"éé"},
        {"\\f1\\'f8", u"ř"},
        {"\\f2\\'e9", u"й"},
        {"\\f3\\'83\\'65\\'83X", u"テ\uFFFDX"},
        {"\\f3\\'83\\'65\\'83\\'58\\'83\\'67", u"テスト"},
        {"\\f3\\'83{\\'65}", u"\uFFFDe"},  // a run of escapes ends at the brace
        {"\\f4\\'b7 ", u"\uF0B7 "},
        {"\\f5 a\\'e9z", u"az"},  // an unknown character set gives nothing
        {"\\f77\\'80", u"€"},     // a font without an entry: the system's code page
        {"\\f2{\\f1\\'f8}\\'e9", u"řй"},
        {"\\f2{\\af1\\'f8}\\'e9", u"řй"},
        {"\\'4g\\'xAb", u"@\u000Ab"},  // what is no digit counts as 0
    });
}

TEST(RtfReader, Destinations) {
    ExpectTexts({
        {"{\\*\\shppict{\\pict abc}}text", u"text"},
        {"a{\\*\\x \\}\\{b}c", u"ac"},
        {"a{\\*\\x b\\\\}c", u"ac"},
        {"a{\\*\\x b\\\\\\}c}d", u"ad"},
        {"a\\* b}c", u"ac"},  // without a group of its own, it ends the one around it
        {"a{\\*1 b}c", u"ac"},
        {"a{\\*x b}c", u"abc"},  // another word
        {"a{\\*\\x{b\\par c}\\cell}\\f2\\'e9", u"aй"},
        {"a{\\*\\x b{c}d", u"a"},  // never closed
    });
}

struct EventCase {
    const char* body;  ///< behind `Head`, from offset `Head.size()` on
    std::vector<Event> events;
};

Event Text(std::u16string_view text, std::uint32_t start, std::uint32_t end,
           std::int32_t style = 1) {
    const auto body = static_cast<std::uint32_t>(Head.size());
    return testing::TextEvent(text, start + body, end + body, style);
}
Event Codes(std::uint32_t start, std::uint32_t end, bool saw = false, std::int32_t style = 1) {
    const auto body = static_cast<std::uint32_t>(Head.size());
    return testing::CodesEvent(start + body, end + body, saw, style);
}
Event FirstCodes(std::uint32_t end, bool saw = false, std::int32_t style = 1) {
    Event event = Codes(0, end, saw, style);
    event.start = 0;
    return event;
}
Event Word(std::string_view word, std::int32_t style = 1) {
    return testing::WordEvent(word, style);
}

void OpenBody(RecordingReader& reader, std::string_view body) {
    reader.controlWords.Add("cell");
    reader.controlWords.Add("row");
    EXPECT_TRUE(reader.Open(FileOf(Head + std::string(body))));
    EXPECT_TRUE(reader.Prepare());
}

TEST(RtfReader, RunsAndTheirPlaces) {
    const EventCase cases[] = {
        // Behind a word the run ends at the place behind it; at a brace, on the brace.
        {"\\pard abc\\b def}",
         {FirstCodes(6), Text(u"abc", 6, 12), Codes(12, 12), Text(u"def", 12, 15)}},
        {"\\pard a{\\i b}c}",
         {FirstCodes(6), Text(u"a", 6, 7), Codes(7, 11), Text(u"b", 11, 12), Codes(12, 13),
          Text(u"c", 13, 14)}},
        {"\\pard\\cell a\\cell\\row",
         {Word("cell"), FirstCodes(11, true), Text(u"a", 11, 17), Word("cell"), Word("row")}},
        {"\\pard\\cell\r\n\\-}", {Word("cell"), FirstCodes(12, true), Text(u"", 12, 14)}},
        {"\\pard\\cell{\\b}a\\b0 b}",
         {Word("cell"), FirstCodes(14, true), Text(u"a", 14, 19), Codes(19, 19),
          Text(u"b", 19, 20)}},
        // A Unicode character reports the codes from behind its word.
        {"\\pard\\u65 ?b}", {FirstCodes(10), Text(u"Ab", 10, 12)}},
        {"\\pard\\uc0 a\\uc1 b}", {FirstCodes(10), Text(u"ab", 10, 17)}},
        // What has a meaning of its own is never reported, nor is what stands in a destination.
        {"\\pard{\\*\\x\\cell}a}", {FirstCodes(16), Text(u"a", 16, 17)}},
        {"\\pard\\s4 a\\cs5 b{\\s6 c}}",
         {FirstCodes(9, false, 4), Text(u"a", 9, 15, 4), Codes(15, 15, false, 5),
          Text(u"b", 15, 16, 5), Codes(16, 21, false, 6), Text(u"c", 21, 22, 6)}},
        // Text at the end of the file is dropped, unless something ends its run.
        {"\\pard abc", {FirstCodes(6)}},
        {"\\pard abc\\", {FirstCodes(6), Text(u"abc", 6, 10)}},
        {"\\pard", {}},
        // An escape in the last four bytes is stepped over, and what follows is text.
        {"\\pard a\\'e9", {FirstCodes(6)}},
        {"\\pard a\\'e}", {FirstCodes(6), Text(u"ae", 6, 10)}},
        {"\\pard a\\'}", {FirstCodes(6), Text(u"a", 6, 9)}},
        {"\\pard a\\'e9}", {FirstCodes(6), Text(u"aé", 6, 11)}},
        {"\\pard\\'}", {FirstCodes(5), Text(u"", 5, 7)}},
        // A destination that never ends leaves its last byte, which begins a run.
        {"\\pard{\\*\\x abc", {FirstCodes(13)}},
    };
    for (const EventCase& test : cases) {
        RecordingReader reader;
        OpenBody(reader, test.body);
        EXPECT_FALSE(reader.Parse());
        EXPECT_EQ(reader.events, test.events) << test.body;
        EXPECT_EQ(reader.Position(), reader.FileSize());
    }
}

// Where each operation, by the number of its call, stops the parse, and what is seen when it goes
// on.
TEST(RtfReader, AStoppedParseGoesOnWhereItStood) {
    const struct {
        const char* body;
        std::size_t stopAt;
        std::uint32_t position;    ///< behind `Head`
        std::u16string_view rest;  ///< the text behind the stop
        std::int32_t style;        ///< of the last run
    } cases[] = {
        {"\\pard ab\\cell c}", 1, 6, u"abc", 1},  // codes: on the byte that begins a text
        {"\\pard\\par ab}", 1, 5, u"\r\nab", 1},  // on the backslash of a special word
        {"\\pard\\'e9b}", 1, 5, u"éb", 1},
        {"\\pard\\{b}", 1, 5, u"{b", 1},
        {"\\pard\\uc0\\u65 b}", 1, 14, u"b", 1},  // behind the word: its character is lost
        {"\\pard ab\\cell c}", 2, 14, u"c", 1},   // text: behind the word, which is lost
        {"\\pard ab\\s7 c}", 2, 12, u"c", 1},     // and has no effect
        {"\\pard\\s3 ab{\\s7 c}d\\s8 e}", 2, 11, u"cde", 8},  // on a brace, which still counts
        {"\\pard\\cell c}", 1, 11, u"c", 1},                  // behind the reported word
        {"\\pard a\\* b}\\s7 c}", 2, 10, u"bc", 7},  // the rest of a lost destination is text
    };
    for (const auto& test : cases) {
        RecordingReader reader;
        OpenBody(reader, test.body);
        reader.goesOn = [&](const Event&) { return reader.events.size() != test.stopAt; };
        EXPECT_TRUE(reader.Parse()) << test.body;
        EXPECT_EQ(reader.Position() - Head.size(), test.position) << test.body;
        const std::size_t before = reader.events.size();
        EXPECT_EQ(before, test.stopAt);
        reader.events.clear();
        reader.goesOn = [](const Event&) { return true; };
        EXPECT_FALSE(reader.Parse()) << test.body;
        EXPECT_EQ(reader.Text(), test.rest) << test.body;
        EXPECT_EQ(reader.events.back().style, test.style) << test.body;
    }
}

TEST(RtfReader, GroupsNestAsDeepAsTheFileLikes) {
    const std::size_t depth = 1'000'000;
    std::string body = "\\pard\\s5";
    body += std::string(depth, '{') + "\\s6 a" + std::string(depth, '}') + "b{";
    RecordingReader reader;
    OpenBody(reader, body);
    EXPECT_FALSE(reader.Parse());
    EXPECT_EQ(reader.Text(), u"ab");
    EXPECT_EQ(reader.CurrentStyle(), 5);
}

}  // namespace
}  // namespace generalutilities
