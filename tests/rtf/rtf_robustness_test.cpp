// The reader against the plain one, on files that nobody would write: at every place relative to
// the border of a page, cut at every byte, stopped at every call, and made of random pieces.

#include "case_table.h"
#include "recording_reader.h"
#include "reference_reader.h"

#include <random>

namespace generalutilities {
namespace {

using testing::FileOf;
using testing::RecordingReader;
using testing::ReferenceReader;

/// Parses a file with both readers, stopped at each call for which the bit of `stops` is set
/// (modulo 32), and expects them to agree in everything.
void ExpectSame(const std::string& file, std::uint32_t stops, const std::string& name) {
    RecordingReader reader;
    ReferenceReader reference;
    reference.file = file;
    for (const char* word : {"row", "cell", "averylongcontrolword"}) {
        reader.controlWords.Add(word);
        reference.controlWords.insert(word);
    }
    ASSERT_TRUE(reader.Open(FileOf(file)));
    const bool prepared = reader.Prepare();
    ASSERT_EQ(prepared, reference.Prepare()) << name;
    ASSERT_EQ(reader.fontCodePages, reference.fontCodePages) << name;
    ASSERT_EQ(reader.styleNames, reference.styleNames) << name;
    if (!prepared) {
        return;
    }
    for (testing::Events* events : {&reader.events, &reference.events}) {
        events->goOn = [=] { return (stops >> events->all.size() % 32 & 1) == 0; };
    }
    for (bool stopped = true; stopped;) {
        stopped = reader.Parse();
        ASSERT_EQ(stopped, reference.Parse()) << name;
        ASSERT_EQ(reader.Position(), static_cast<std::uint32_t>(reference.position)) << name;
        ASSERT_EQ(reader.events.all, reference.events.all) << name;
    }
    ASSERT_EQ(reader.fontCodePages, reference.fontCodePages) << name;
}

/// A little table with all that the reader knows, the way several writers put it.
const std::string Sample =
    "{\\rtf1\\adeflang1025\\ansi\\ansicpg1252\\uc1\\deff0\n{\\fonttbl{\\f0\\froman\\fcharset0 "
    "A;}\r\n"
    "{\\f1\\fnil\\fcharset238{\\*\\falt \\}b}B CE;}{\\f2\\fcharset128 C;}}\n{\\colortbl;\\red0;}"
    "{\\*\\generator x;}{\\stylesheet{\\ql \\snext0 Normal;}{\\s1 \\f1 One;}{\\*\\cs10 Code;}\n"
    "{\\*\r\n\\cs11 More\\\\;}}\n\\pard\\cs10\\ql \\trowd"
    "\\trgaph108\\clbrdrt\\brdrs\\brdrw1\\brdrcf10\\clbrdrl\\brdrs\\brdrw1 "
    "\\brdrcf10\\clbrdrb\\brdrs\\cellx860{\\pard\\intbl{\\fs18\\loch\\f0 "
    "ID}\n\\cell\\pard {\\f1\\lang1029 \\'f8\\'E8\\'e}x}\\cell {\\uc2\\u-3913\\'82\\'a0\\u233 "
    "??\\par \\tab\\_\\~a\\-\\:b\\{\\\\\\}}\\cell {\\*\\bkmkstart {a}\\}\\'7d}{\\f2\\'83\\'65"
    "\\'83\\'58}\xE9\\lquote\\rdblquote  \\averylongcontrolword123 \\row}}\n}";

TEST(RtfRobustness, EveryTokenAtEveryPageBorder) {
    const std::size_t page = RtfFilePager::PageSize;
    const std::size_t head = Sample.find("{\\colortbl");
    const std::size_t body = Sample.find("\\trowd");
    for (std::size_t at = 0; at <= Sample.size() + 1; ++at) {
        // Filling before the tables, between them or in the body moves byte `at` to the border.
        const std::size_t places[] = {1, head, body};
        std::size_t where = places[at % 3];
        where = where <= at ? where : std::min<std::size_t>(1, at);
        std::string file = Sample;
        file.insert(where, page - at, at % 2 == 0 ? 'x' : '\n');
        ExpectSame(file, at % 5 == 0 ? 0x5A : 0, "byte " + std::to_string(at));
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST(RtfRobustness, CutAtEveryByte) {
    for (std::size_t length = 0; length <= Sample.size(); ++length) {
        ExpectSame(Sample.substr(0, length), 0, "cut at " + std::to_string(length));
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST(RtfRobustness, RandomPieces) {
    const auto pieces = CaseTable("random_pieces.tsv");
    const std::uint32_t seed = 20240611;
    std::mt19937 random(seed);
    for (int round = 0; round < 3000; ++round) {
        std::string file =
            round % 2 == 0 ? "{\\fonttbl{\\f2\\fcharset128 x;}}{\\stylesheet}\\pard " : "";
        for (unsigned count = random() % 60; count > 0; --count) {
            file += Bytes(pieces[random() % pieces.size()][0]);
        }
        ExpectSame(
            file, round % 3 == 0 ? static_cast<std::uint32_t>(random()) : 0,
            "seed " + std::to_string(seed) + " round " + std::to_string(round) + ": " + file);
        if (HasFatalFailure()) {
            return;
        }
    }
}

// Each read of the file fails once. What was parsed is a part of the whole, and the failure is
// told.
TEST(RtfRobustness, AFailingReadEndsTheFile) {
    std::string file = Sample;
    file.insert(Sample.find("\\trowd"), 200'000, 'x');
    RecordingReader whole;
    ASSERT_TRUE(whole.Open(FileOf(file)));
    ASSERT_TRUE(whole.Prepare());
    EXPECT_FALSE(whole.Parse());
    int failures = 0;
    for (int read = 1;; ++read) {
        auto broken = FileOf(file);
        broken->failingRead = read;
        RecordingReader reader;
        ASSERT_TRUE(reader.Open(std::move(broken)));
        if (reader.Prepare()) {
            EXPECT_FALSE(reader.Parse());
        }
        if (!reader.ReadFailed()) {
            EXPECT_EQ(reader.events.all, whole.events.all);
            break;
        }
        ++failures;
        EXPECT_LT(reader.events.all.size(), whole.events.all.size()) << read;
    }
    EXPECT_GT(failures, 3);
}

}  // namespace
}  // namespace generalutilities
