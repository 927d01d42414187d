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

TEST(PrepareReview, MendsTheCellsOfATable) {
    for (const auto& row : CaseTable("reviews.tsv")) {
        const std::string start = Head + (row[0] == u"any" ? "" : OfLibreOffice) + Heading;
        const Outcome outcome = Prepare(start + Bytes(row[1]) + "}");
        EXPECT_EQ(outcome.copy.substr(start.size()), Bytes(row[2])) << Bytes(row[1]);
        EXPECT_EQ(outcome.met, Bytes(row[3])) << Bytes(row[1]);
        EXPECT_FALSE(Prepare(outcome.copy).prepared.isChanged) << "mended once: " << Bytes(row[1]);
    }
    // The heading row stays: the reader would take the next row for it.
    EXPECT_EQ(Prepare(Head + "\\pard{\\deleted a}\\cell\\row 1\\cell\\row}").copy,
              Head + "\\pard{\\deleted }\\cell\\row 1\\cell\\row}");
}

/// What was met, and the rows that are read from the copy. Beside the findings of tables: T text in
/// the style of a mark or a code, O text outside, E empty source, G missing mark, W damaged row.
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
