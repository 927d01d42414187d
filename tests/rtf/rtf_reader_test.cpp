#include "extview/rtf/rtf_reader.h"

#include "case_table.h"
#include "sample_head.h"

namespace generalutilities {
namespace {

using testing::Event;
using testing::FileOf;
using testing::Head;
using testing::RecordingReader;
using testing::TextOf;

TEST(RtfReader, Texts) {
    for (const auto& row : CaseTable("reader_texts.tsv")) {
        EXPECT_EQ(TextOf(Bytes(row[0])), row[1]) << Bytes(row[0]);
    }
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
