#include "extview/rtf/prepare_review.h"

#include <generalutilities/error.h>

#include "case_table.h"
#include "extview/rtf/rtf_import.h"
#include "sample_head.h"
#include "twb_document.h"

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

using testing::FileOf;
using testing::Head;

const std::string Heading = "\\pard ID\\cell Source\\cell Target\\cell\\row ";
const std::string OfLibreOffice = "{\\*\\generator LibreOffice/7.4$Linux}";

struct Outcome {
    std::string copy;  ///< the whole file, also when nothing was changed
    std::string met;   ///< "finding@row,cell " each
    PreparedReview prepared;
};

std::string_view Letter(ReviewFinding finding) {
    return std::string_view("DRIKLPFSNXMBTOEGW").substr(static_cast<std::size_t>(finding), 1);
}

Outcome Prepare(const std::string& file) {
    Outcome outcome;
    outcome.prepared = rtf::PrepareReview(
        FileOf(file), FileOf(file), [&](std::string_view bytes) { outcome.copy += bytes; },
        [&](const ReviewFindingPlace& place) {
            outcome.met += std::string(Letter(place.finding)) + std::to_string(place.row) + "," +
                           std::to_string(place.cell) + " ";
        },
        "file");
    EXPECT_EQ(outcome.prepared.isChanged, !outcome.copy.empty());
    if (!outcome.prepared.isChanged) {
        outcome.copy = file;
    }
    return outcome;
}

/// The body of a table, prepared. Findings: D deleted text, R deleted row, I inserted text, K kept
/// break, L label, P picture, F footnote, S soft hyphen, N non-breaking hyphen, X stray date,
/// M comment in the margin, B drawing.
struct Case {
    const char* body;
    const char* copy;
    const char* met;
};

void ExpectAll(const std::string& head, std::initializer_list<Case> cases) {
    for (const Case& one : cases) {
        const Outcome outcome = Prepare(head + Heading + one.body + "}");
        EXPECT_EQ(outcome.copy, head + Heading + one.copy + "}") << one.body;
        EXPECT_EQ(outcome.met, one.met) << one.body;
        // What was mended once stays as it is.
        EXPECT_FALSE(Prepare(outcome.copy).prepared.isChanged) << one.body;
    }
}

TEST(PrepareReview, LeavesOutWhatIsDeleted) {
    ExpectAll(
        Head,
        {
            {"1\\cell a{\\deleted b}c\\cell", "1\\cell a{\\deleted }c\\cell", "D1,1 "},
            // Where a word processor has other words before it, or ends it otherwise.
            {"1\\cell{\\f1\\b\\deleted\\revauthdel1 b\\deleted0 c}\\cell",
             "1\\cell{\\f1\\b\\deleted\\revauthdel1 \\deleted0 c}\\cell", "D1,1 "},
            {"1\\cell{\\deleted b\\plain c}\\cell", "1\\cell{\\deleted \\plain c}\\cell", "D1,1 "},
            {"1\\cell{\\mvf b}{\\mvt c}\\cell", "1\\cell{\\mvf }{\\mvt c}\\cell", "D1,1 I1,1 "},
            {"1\\cell{\\revised b}\\cell", "1\\cell{\\revised b}\\cell", "I1,1 "},
            // One deletion in pieces, two cells, and two deletions with text between.
            {"1\\cell{\\deleted a}{\\deleted b}\\cell{\\deleted c}d{\\deleted e}\\cell",
             "1\\cell{\\deleted }{\\deleted }\\cell{\\deleted }d{\\deleted }\\cell",
             "D1,1 D1,2 D1,2 "},
            // All kinds of characters, with their fallbacks.
            {"1\\cell{\\deleted a\\'e9\\u8217\\'92\\u55357 ?\\{\\\\\\~\\-\\_\\tab\\line \\par "
             "\\lquote\r\nb}c\\cell",
             "1\\cell{\\deleted \r\n}c\\cell", "D1,1 "},
            {"1\\cell{\\uc2\\deleted\\u8217 abc}d\\cell", "1\\cell{\\uc2\\deleted}d\\cell",
             "D1,1 "},
            // What the reader takes for a fallback stays, or it would take something else.
            {"1\\cell\\uc1\\u8217{\\deleted ?b}c\\cell", "1\\cell\\uc1\\u8217{\\deleted ?}c\\cell",
             "D1,1 "},
            // Words that are no text stay: the groups and cells are those of the file.
            {"1\\cell{\\deleted a\\f2\\cell b}\\cell", "1\\cell{\\deleted \\f2\\cell }\\cell",
             "D1,1 D1,2 "},
            // Starred groups are no text to anybody.
            {"1\\cell{\\*\\x{\\deleted a}}\\cell", "1\\cell{\\*\\x{\\deleted a}}\\cell", ""},
        });
}

TEST(PrepareReview, LeavesOutRowsThatAreDeletedAsAWhole) {
    ExpectAll(Head,
              {
                  {"{\\deleted 1}\\cell{\\deleted s\\cell}{\\deleted t}\\cell\\row 2\\cell",
                   "{\\deleted }{\\deleted }{\\deleted }2\\cell", "D1,0 D1,1 D1,2 R1,3 "},
                  // Any text that is left keeps the row, with all its cells.
                  {"{\\deleted 1}\\cell{\\deleted s}\\cell t\\cell\\row 2\\cell",
                   "{\\deleted }{\\deleted }\\cell \\cell t\\cell\\row 2\\cell", "D1,0 D1,1 "},
              });
    // The heading row stays: the reader would take the next row for it.
    const Outcome heading = Prepare(Head + "\\pard{\\deleted a}\\cell\\row 1\\cell\\row}");
    EXPECT_EQ(heading.copy, Head + "\\pard{\\deleted }\\cell\\row 1\\cell\\row}");
    // A row that the end of the file cuts off keeps its cells, too.
    const std::string start = Head + Heading;
    EXPECT_EQ(Prepare(start + "{\\deleted 1}\\cell\\cell").copy,
              start + "{\\deleted }\\cell \\cell ");
}

TEST(PrepareReview, KnowsTheFormsOfLibreOffice) {
    // A word that does not begin its group belongs to the paragraph's end.
    ExpectAll(Head + OfLibreOffice,
              {
                  {"1\\cell{\\loch\\deleted abc}\\par {d}\\cell",
                   "1\\cell{\\loch\\deleted abc}{d}\\cell", "D1,1 "},
                  {"1\\cell{\\loch\\revised abc}\\par d\\cell",
                   "1\\cell{\\loch\\revised abc}\\par d\\cell", ""},
                  // A break between deletions is deleted; behind one nobody knows.
                  {"1\\cell a{\\deleted b}\\par{\\deleted c}d\\cell",
                   "1\\cell a{\\deleted }{\\deleted }d\\cell", "D1,1 "},
                  {"1\\cell a{\\deleted b}\\par{c}\\cell", "1\\cell a{\\deleted }{\\par c}\\cell",
                   "D1,1 K1,1 "},
                  {"1\\cell a{\\deleted b}\\par\\par\\cell",
                   "1\\cell a{\\deleted }\\par \\par\\cell", "D1,1 K1,1 "},
                  {"1\\cell a{\\deleted b}\\par\\cell", "1\\cell a{\\deleted }\\par \\cell",
                   "D1,1 K1,1 "},
                  // The date of a tracked format, and numbers that are none.
                  {"1\\cell a{132888017 \\b b}{5}{\r\n7 \\b}\\cell",
                   "1\\cell a{\\b b}{5}{\r\n7 \\b}\\cell", "X1,1 "},
              });
    ExpectAll(Head, {{"1\\cell{5 \\b b}\\par{\\deleted a}\\par{\\deleted b}\\cell",
                      "1\\cell{5 \\b b}\\par{\\deleted }\\par{\\deleted }\\cell", "D1,1 D1,1 "}});
}

TEST(PrepareReview, LeavesOutGroupsThatAreNoText) {
    ExpectAll(
        Head,
        {
            {"1\\cell{\\listtext\\pard 1.\\tab}a\\par{\\pntext 2}b\\cell",
             "1\\cell{}a\\par{}b\\cell", "L1,1 L1,1 "},
            {"1\\cell a{\\*\\shppict{\\pict 89}}{\\nonshppict{\\pict{\\*\\p{x}}01}}{\r\n\\pict 4}b"
             "\\cell",
             "1\\cell a{\\*\\shppict{\\pict 89}}{}{\r\n}b\\cell", "P1,1 P1,1 "},
            {"1\\cell{\\shp{\\*\\shpinst a}{\\shprslt{\\par b}}}\\cell",
             "1\\cell{\\shp{\\*\\shpinst a}{}}\\cell", "B1,1 P1,1 "},
            {"1\\cell a{\\*\\annotation b}{\\*\\footnote\\ftnalt c}\\cell",
             "1\\cell a{\\*\\annotation b}{\\*\\footnote\\ftnalt c}\\cell", "M1,1 F1,1 "},
            {"1\\cell a{\\super\\chftn{\\footnote\\pard{\\chftn} n\\cell\\}\\row}}b\\cell",
             "1\\cell a{\\super\\chftn{}}b\\cell", "F1,1 "},
            // Not at the start of a group the word is no destination.
            {"1\\cell{a\\pict 1}\\cell", "1\\cell{a\\pict 1}\\cell", ""},
        });
    // A group that never ends stays, and all behind it.
    const std::string cut = Head + Heading + "1\\cell{\\listtext 1{\\deleted a}\\row";
    EXPECT_FALSE(Prepare(cut).prepared.isChanged);
}

TEST(PrepareReview, WritesHyphensSoThatTheyAreRead) {
    ExpectAll(
        Head,
        {
            {"1\\cell a\\-b\\_\\_c\\cell",
             "1\\cell a{\\uc0\\u173 }b{\\uc0\\u8209 }{\\uc0\\u8209 }c\\cell", "S1,1 N1,1 N1,1 "},
            // As a fallback each is one character.
            {"1\\cell\\u8209\\_\\u173\\-b\\cell", "1\\cell\\u8209\\_\\u173?b\\cell", "S1,1 "},
            {"1\\cell\\uc3 \\-b\\cell", "1\\cell\\uc3 {\\uc0\\u173 }b\\cell", "S1,1 "},
        });
}

/// What was met, and the rows that are read from the copy. Beside the findings above: T text in the
/// style of a mark or a code, O text outside, E empty source, G missing mark, W damaged row.
TEST(PrepareReview, MendsTheSegmentsOfABilingualDocument) {
    for (const auto& row : CaseTable("twb_reviews.tsv")) {
        const std::string file = testing::TwbDocument(row[0]);
        const Outcome outcome = Prepare(file);
        EXPECT_EQ(outcome.met, Bytes(row[1])) << file;
        testing::TwbImportOf import(outcome.copy);
        EXPECT_EQ(testing::RowsOf(import), row[2]) << file << outcome.copy;
        EXPECT_TRUE(import.mostCells == 0 || import.mostCells == 6) << file << outcome.copy;
        EXPECT_FALSE(Prepare(outcome.copy).prepared.isChanged) << file << outcome.copy;
    }
}

TEST(PrepareReview, LeavesTheHeadAlone) {
    const std::string head = Head.substr(0, Head.size() - 3) +
                             "{\\*\\listtable{\\listtext 1}}{\\info{\\title a\\-b}{\\pict 01}"
                             "{\\deleted c}}\\deleted";
    const Outcome outcome = Prepare(head + "\\pard a\\plain b\\cell}");
    EXPECT_EQ(outcome.copy, head + "\\pard \\plain b\\cell}");
    EXPECT_EQ(outcome.met, "D0,0 ");
    for (const char* file : {"", "{\\rtf1 no tables {\\deleted a}\\pard}", "{\\fonttbl x"}) {
        EXPECT_FALSE(Prepare(file).prepared.isChanged) << file;
    }
}

/// Page borders cut every token in every place.
TEST(PrepareReview, GivesTheSameAtEveryPlaceOfAPage) {
    const std::string body =
        "1\\cell a{\\deleted b\\'e9\\u8217?}\\-{\\listtext 1.\\tab}{\\nonshppict{\\pict 01}}\\_"
        "{132888017 \\b c}{\\loch\\deleted d}\\par {e}\\cell{\\deleted f}\\par g\\cell\\row "
        "{\\deleted 2}\\cell{\\deleted h}\\cell\\row 3\\cell i\\cell\\row";
    const std::string start = Head + OfLibreOffice + Heading;
    const Outcome plain = Prepare(start + body + "}");
    ASSERT_EQ(plain.met, "D1,1 S1,1 L1,1 P1,1 N1,1 X1,1 D1,1 D1,2 K1,2 D2,0 D2,1 R2,2 ");
    for (std::size_t shift = 0; shift <= body.size(); ++shift) {
        const std::string padding =
            std::string(RtfFilePager::PageSize - start.size() - 2 - shift, 'x') + "\\b ";
        const Outcome shifted = Prepare(start + padding + body + "}");
        EXPECT_EQ(shifted.copy, start + padding + plain.copy.substr(start.size())) << shift;
        ASSERT_EQ(shifted.met, plain.met) << shift;
    }
}

TEST(PrepareReview, TellsOffsetsOfTheReviewedFile) {
    const std::string file = Head + Heading +
                             "1\\cell{\\deleted abc}\\cell\\row 2\\cell\\-\\cell\\row "
                             "3\\cell\\cell\\row 4\\cell{\\deleted a}\\cell";
    const Outcome outcome = Prepare(file + "}");
    std::size_t end = 0;
    std::size_t endInCopy = 0;
    for (std::uint64_t row = 0; row < 4; ++row) {
        end = file.find("\\row", end) + 4;
        endInCopy = outcome.copy.find("\\row", endInCopy) + 4;
        EXPECT_EQ(outcome.prepared.OriginalOffset(row, endInCopy), end) << row;
    }
    EXPECT_EQ(outcome.prepared.OriginalOffset(4, outcome.copy.size()), file.size() + 1);
}

TEST(PrepareReview, ReportsFailures) {
    const auto write = [](std::string_view) {};
    EXPECT_THROW(PrepareReviewedFile(u"/nowhere/file.rtf", write), Error);
    auto breaking = FileOf(Head + Heading + std::string(100000, 'x') + "{\\deleted a}}");
    breaking->failingRead = 2;
    const std::string whole = Head + Heading + std::string(100000, 'x') + "{\\deleted a}}";
    try {
        rtf::PrepareReview(FileOf(whole), std::move(breaking), write, {}, "review.rtf");
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Status(), ErrorReadFault);
        EXPECT_STREQ(error.what(), "review.rtf: cannot be read behind byte offset 65536");
    }
    // What the caller's own writing throws passes through.
    const auto full = [](std::string_view) { throw std::runtime_error("disk full"); };
    EXPECT_THROW(rtf::PrepareReview(FileOf(whole), FileOf(whole), full, {}, "f"),
                 std::runtime_error);
}

/// Depth and length of anything cost nothing but time in proportion.
TEST(PrepareReview, TakesHostileFiles) {
    const auto many = [](std::string_view piece, std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) {
            text += piece;
        }
        return text;
    };
    constexpr std::size_t Million = 1'000'000;
    for (const std::string& body :
         {many("{", Million), many("}", Million), many("{\\listtext ", Million / 10),
          many("{\\pict}", Million / 10), many("\\-", Million / 10),
          many("{\\deleted a}\\cell", Million / 10), "\\uc2000000000\\u1 " + many("a", Million),
          "\\" + many("a", Million), many("9", Million), many("\\deleted", Million / 10)}) {
        const std::string file = Head + OfLibreOffice + Heading + "1\\cell" + body;
        const Outcome outcome = Prepare(file);
        EXPECT_LE(outcome.copy.size(), file.size() * 8) << body.substr(0, 20);
    }
}

}  // namespace
}  // namespace generalutilities
