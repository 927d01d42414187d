// Segments on their way to a translator and back, in each form.

#include <generalutilities/error.h>
#include <generalutilities/itd/exchange.h>
#include <generalutilities/itd/translations.h>

#include "case_table.h"
#include "sample_document.h"
#include "seeded_random.h"
#include "segment_notation.h"
#include "text/decimal.h"

#include <algorithm>
#include <sstream>

namespace generalutilities {
namespace {

using namespace std::string_view_literals;
using testing::PrintToString;

constexpr ExchangeForm Forms[] = {ExchangeForm::Tsv, ExchangeForm::JsonLines, ExchangeForm::Xliff};

TEST(SegmentPieces, AreParsedAndWritten) {
    for (const auto& row : CaseTable("segment_texts.tsv")) {
        SegmentPieces pieces;
        const std::string fault = ParseSegmentText(row[0], pieces);
        if (row[1].starts_with(u"! ")) {
            EXPECT_EQ(fault, Bytes(row[1].substr(2))) << PrintToString(row);
            continue;
        }
        std::u16string text;
        for (const SegmentPiece& piece : pieces) {
            text += piece.code == 0 ? piece.text : u'«' + Decimal(piece.code) + u'»';
        }
        EXPECT_EQ(text, row[1]);
        EXPECT_EQ(SegmentTextOf(pieces), row[0]);
    }
}

/// Whatever the texts are, they come back from a file of each form as they went.
TEST(Exchange, TextsGoRoundUnchanged) {
    SeededRandom random;
    const TemporaryFolder folder;
    const auto pieces = [&] {
        constexpr std::u16string_view Units =
            u"a \t\r\n\"{1}\\<b>&lt;\u0001\uFFFE\U0001F600]]>\uFEFF\u0085\u2028#=1+1\xDC00\0\xD800"sv;
        SegmentPieces made;
        for (auto i = random() % 8; i > 0; --i) {
            if (random() % 4 == 0) {
                AppendCode(made, static_cast<std::uint32_t>(1 + random() % 3));
            } else {
                AppendText(made, Units.substr(random() % Units.size(), 1 + random() % 4));
            }
        }
        return made;
    };
    const std::vector<std::u16string> codes = {u"<b>", u"\u0001\xD800\r", u""};
    for (const ExchangeForm form : Forms) {
        SCOPED_TRACE(static_cast<int>(form));
        std::vector<ExchangeSegment> segments(300);
        const std::u16string path = folder.Path(u"exchange");
        std::ostringstream output;
        const auto writer = CreateExchangeWriter(form, output, {u"a&\xD800.itd", u"en", u"de"});
        for (std::uint32_t i = 0; i < segments.size(); ++i) {
            segments[i] = {i + 1, pieces(), pieces(), codes, i, i / 7.0, SegmentTextOf(pieces())};
            writer->Write(segments[i]);
        }
        writer->Finish();
        WriteFile(path, output.str());
        const auto reader = OpenExchange(form, path);
        TranslationRow row;
        for (const ExchangeSegment& segment : segments) {
            ASSERT_TRUE(reader->Next(row));
            ASSERT_EQ(row.fault, "");
            ASSERT_EQ(row.segment, Decimal(segment.number));
            ASSERT_EQ(SegmentTextOf(row.source.value()), SegmentTextOf(segment.source));
            ASSERT_EQ(SegmentTextOf(row.target), SegmentTextOf(segment.target));
        }
        ASSERT_FALSE(reader->Next(row));
    }
}

TEST(Exchange, OtherToolsFilesAreRead) {
    const TemporaryFolder folder;
    for (const auto& row : CaseTable("other_tools_files.tsv")) {
        const std::u16string path = folder.Path(row[0]);
        WriteFile(path, Bytes(row[1]));
        std::string read;
        try {
            const auto reader = OpenExchange(FormOfEnding(path).value(), path);
            for (TranslationRow got; reader->Next(got);) {
                read += got.place + " " + Bytes(got.segment) + " " +
                        (got.source ? Bytes(SegmentTextOf(*got.source)) : "-") + ">" +
                        Bytes(SegmentTextOf(got.target)) +
                        (got.fault.empty() ? ";" : " !" + got.fault + ";");
            }
        } catch (const Error& error) {
            read = "!" + std::string(error.what()).substr(path.size() + 1);
        }
        const std::string expected = Bytes(row[2]);
        EXPECT_TRUE(expected[0] == '!' ? read.starts_with(expected) : read == expected)
            << PrintToString(row) << read;
    }
}

std::string Describe(const AppliedRow& row) {
    constexpr const char* Outcomes[] = {"applied", "unchanged", "no translation"};
    if (row.outcome != TranslationOutcome::Refused) {
        return Outcomes[static_cast<int>(row.outcome)];
    }
    std::string words = row.reason;
    for (const CodeDifference& difference : row.codes) {
        constexpr const char* Kinds[] = {"lost ", "added ", "doubled "};
        words += Kinds[static_cast<int>(difference.kind)] + Bytes(difference.code) + " " +
                 std::to_string(difference.count);
    }
    return words;
}

TEST(Translations, AreAppliedOrRefused) {
    for (const auto& row : CaseTable("applied.tsv")) {
        SCOPED_TRACE(PrintToString(row));
        ItdDocument document;
        document.sourceSegments.push_back(SegmentOf(document, row[0], 5));
        document.targetSegments.push_back(SegmentOf(document, row[1]));
        const std::u16string source = NotationOf(document.sourceSegments[0]);
        TranslationRow translation{{}, row[2], {}, {}, {}};
        if (row[3] != u"-") {
            EXPECT_EQ(ParseSegmentText(row[3], translation.source.emplace()), "");
        }
        EXPECT_EQ(ParseSegmentText(row[4], translation.target), "");
        TranslationApplier applier(document);
        EXPECT_EQ(Describe(applier.Apply(translation)), Bytes(row[5]));
        EXPECT_EQ(NotationOf(document.targetSegments[0]), row[6] == u"=" ? row[1] : row[6]);
        EXPECT_EQ(NotationOf(document.sourceSegments[0]), source);
        translation.segment = u"1";
        translation.source.reset();
        EXPECT_EQ(
            Describe(applier.Apply(translation)) == "the segment came before; the first row counts",
            row[2] == u"1" && row[3] != u"A");
    }
}

/// The translations of a random document, put into the same one without any, are the same again.
TEST(Translations, ComeBackIntoAnUntranslatedDocument) {
    SeededRandom random;
    int applied = 0;
    for (int round = 0; round < 2000; ++round) {
        const auto notation = [&] {
            constexpr std::u16string_view Records[] = {u"T a¦C 1¦", u"T b¦C 2¦", u"T ∅¦C 1¦",
                                                       u"T ∅¦C 2¦"};
            std::u16string records = random() % 3 == 0 ? u"F f¦" : u"";
            for (auto i = random() % 5; i > 0; --i) {
                records += Records[random() % std::size(Records)];
            }
            return records + (random() % 2 == 0 ? u"T x" : u"L ∅");
        };
        ItdDocument full, bare;
        const std::u16string source = notation();
        const std::u16string target = notation();
        for (ItdDocument* const document : {&full, &bare}) {
            document->sourceSegments.push_back(SegmentOf(*document, source));
            document->targetSegments.push_back(
                SegmentOf(*document, document == &full ? target : u"T ∅", 8));
        }
        std::vector<ExchangeSegment> before, after;
        ExtractSegments(full, [&](const ExchangeSegment& s) { before.push_back(s); });
        const TranslationRow row{{}, u"1", before[0].source, before[0].target, {}};
        if (TranslationApplier(bare).Apply(row).outcome != TranslationOutcome::Applied) {
            continue;
        }
        ++applied;
        ExtractSegments(bare, [&](const ExchangeSegment& s) { after.push_back(s); });
        ASSERT_EQ(SegmentTextOf(after[0].target), SegmentTextOf(before[0].target))
            << PrintToString(source) << PrintToString(target);
        ASSERT_TRUE(std::ranges::all_of(bare.targetSegments[0],
                                        [](const ItdRecord& r) { return r.block.sid == 8; }));
    }
    EXPECT_GT(applied, 50);
}

TEST(Translations, AreExtractedWithNumberedCodes) {
    ItdDocument document;
    document.sourceSegments.push_back(SegmentOf(document, u"T a¦C <b>¦T b¦C <i>¦T c"));
    document.sourceSegments.push_back(SegmentOf(document, u"T second"));
    document.targetSegments.push_back(SegmentOf(document, u"T x¦C <i>¦T ¦C <u>¦C !¦T y¦C <b>¦T z"));
    document.commentStrings.push_back(u"<?x?><c><Comment user=\"A\">b</Comment></c>");
    document.statusEntries = {{7, 0.5}};
    std::string rows;
    for (const ExchangeForm form : Forms) {
        std::ostringstream output;
        const auto writer = CreateExchangeWriter(form, output, {u"s.itd", u"en", u"de"});
        ExtractSegments(document, [&](const ExchangeSegment& s) { writer->Write(s); });
        writer->Finish();
        rows += output.str();
    }
    std::string expected;
    for (const auto& line : CaseTable("extracted.tsv")) {
        expected += Bytes(line[0]) + "\n";
    }
    EXPECT_EQ(rows, expected);
}

}  // namespace
}  // namespace generalutilities
