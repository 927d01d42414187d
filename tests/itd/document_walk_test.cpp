// A document segment by segment, and new text in its segments. The cases are in data/.

#include <generalutilities/itd/document_rewrite.h>
#include <generalutilities/itd/document_walk.h>

#include "case_table.h"
#include "sample_document.h"
#include "segment_notation.h"

#include <algorithm>

namespace generalutilities {
namespace {

/// A cell in which ∅ stands for nothing.
std::u16string Cell(const std::u16string& cell) {
    return cell == u"∅" ? std::u16string() : cell;
}

TEST(DocumentWalk, ColumnsAreCutAndComeBack) {
    ItdDocument document;
    for (const auto& row : CaseTable("columns.tsv")) {
        SCOPED_TRACE(testing::PrintToString(row[0]));
        const ItdSegment segment = SegmentOf(document, row[0]);
        ItdColumn column;
        EXPECT_EQ(Number(row[3]), static_cast<std::int32_t>(LoadColumn(segment, 5, column)));
        EXPECT_EQ(column.text, row[1]);
        std::u16string codes;
        for (std::size_t i = 0; i < column.codes.size(); ++i) {
            codes += (i == 0 ? u"" : u"¦") + CodeString(column.codes[i], true);
        }
        EXPECT_EQ(codes, row[2]);
        if (column.text.find(u'\\') != std::u16string::npos) {
            continue;  // what a backslash means is for the host to say
        }
        // Codes that got no placeholder stand before the segment, as those of a segment without
        // text do.
        std::size_t placeholders = std::count(column.text.begin(), column.text.end(), u'{');
        std::u16string before, after;
        CodeMap map;
        for (std::size_t i = column.codes.size(); i-- > 0;) {
            if (i + 1 == column.codes.size() && i > 0) {
                after = column.codes[i];
            } else if (placeholders > 0) {
                map[static_cast<std::int32_t>(4 + placeholders--)] = column.codes[i];
            } else {
                before = column.codes[i] + before;
            }
        }
        EXPECT_EQ(NotationOf(RebuildSegment(document, segment, column.text, map, before, after)),
                  row[0]);
    }
}

TEST(DocumentWalk, CommentsAreLines) {
    for (const auto& row : CaseTable("comments.tsv")) {
        EXPECT_EQ(CommentOf(row[0]), row[1]) << testing::PrintToString(row[0]);
    }
}

/// The walk against a plain count, with columns that are swapped at random.
TEST(DocumentWalk, CountsSegmentsWithText) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 200; ++round) {
        ItdDocument document;
        std::vector<bool> hasText[2];
        for (auto* column : {&document.sourceSegments, &document.targetSegments}) {
            auto& texts = hasText[column == &document.targetSegments];
            for (auto i = random() % 6; i > 0; --i) {
                texts.push_back(random() % 2 == 0);
                column->push_back(SegmentOf(document, texts.back() ? u"C x¦T y" : u"C x"));
            }
        }
        for (std::uint32_t i = 1; i <= 4; ++i) {
            document.statusEntries.push_back({i, i / 4.0});
        }
        ItdWalk walk;
        walk.Open(std::move(document));
        std::size_t at = 0;
        std::uint32_t next = 1;
        for (int step = 0; step < 20; ++step) {
            const std::size_t count = hasText[0].size();
            ASSERT_EQ(walk.SegmentCount(), count);
            ASSERT_EQ(walk.HasMore(), at + 1 < count);
            const auto choice = random() % 4;
            if (choice == 0) {
                walk.ReverseLanguages();
                std::swap(hasText[0], hasText[1]);
                continue;
            }
            if (choice == 1) {
                walk.Restart();
                at = 0;
            } else if (at + 1 < count) {
                ASSERT_TRUE(walk.Next());
                ++at;
            } else {
                ASSERT_FALSE(walk.Next());
                continue;
            }
            if (count == 0) {
                continue;
            }
            const auto entry = std::count(hasText[0].begin(),
                                          hasText[0].begin() + static_cast<long>(at) + 1, true);
            const std::uint32_t status =
                entry > 0 && entry <= 4 ? static_cast<std::uint32_t>(entry) : 0;
            ASSERT_EQ(walk.Current().status, status);
            ASSERT_EQ(walk.Current().score, status / 4.0);
            ASSERT_EQ(walk.codeNumber, next);
            ASSERT_EQ(walk.Current().target.text.empty(),
                      at >= hasText[1].size() || !hasText[1][at]);
        }
    }
}

TEST(DocumentRewrite, SegmentsAreRebuilt) {
    ItdDocument document;
    for (const auto& row : CaseTable("rebuilds.tsv")) {
        CodeMap codes;
        for (const std::u16string& code : Split(Cell(row[2]), u' ')) {
            codes[Number(code.substr(0, 1))] = CodeString(code.substr(2));
        }
        const ItdSegment former = SegmentOf(document, row[0]);
        EXPECT_EQ(NotationOf(RebuildSegment(document, former, Cell(row[1]), codes,
                                            CodeString(Cell(row[3])), CodeString(Cell(row[4])))),
                  row[5])
            << testing::PrintToString(row);
    }
}

/// A document in the order of its file, opened as its file line says.
struct OpenedSample {
    explicit OpenedSample(bool reversedInFile) {
        ItdDocument document;
        document.headerBytes = SampleHeader(0, true);
        auto* first = &document.sourceSegments;
        auto* second = &document.targetSegments;
        if (reversedInFile) {
            std::swap(first, second);
        }
        first->push_back(SegmentOf(document, u"F lc=\"en-US\"¦T s", 1));
        second->push_back(SegmentOf(document, u"F lc=\"de-DE\"¦T t", 1));
        for (auto* column : {&document.sourceSegments, &document.targetSegments}) {
            column->push_back(SegmentOf(document, u"T second", 2));
            column->push_back(SegmentOf(document, u"L ", 3));
        }
        before = SerializeTextPart(document);
        ItdTextHeader header;
        EXPECT_EQ(ParseTextHeader(before, header), ItdParse::Complete);
        rewrite.Open(std::move(document), header);
    }
    /// What would be written, as its columns.
    std::u16string Written() {
        std::string bytes;
        EXPECT_EQ(rewrite.Serialize(bytes), LanguageChange::Done);
        ItdDocument document;
        EXPECT_EQ(ParseTextPart(bytes, 0, document), ItdParse::Complete);
        std::u16string columns;
        for (const auto* column : {&document.sourceSegments, &document.targetSegments}) {
            for (const ItdSegment& segment : *column) {
                (columns += NotationOf(segment)) += u'|';
            }
        }
        return columns;
    }

    ItdRewrite rewrite;
    std::string before;
};

TEST(DocumentRewrite, ColumnsComeOutInTheOrderOfTheFile) {
    for (int reversals = 0; reversals < 32; ++reversals) {
        const auto reversed = [reversals](int bit) { return (reversals >> bit & 1) != 0; };
        SCOPED_TRACE(reversals);
        OpenedSample sample(reversed(0));
        ItdRewrite& rewrite = sample.rewrite;
        bool swapped = false;
        const auto reverse = [&](int bit) {
            if (reversed(bit)) {
                rewrite.ReverseLanguages();
                swapped = !swapped;
            }
        };
        reverse(1);
        std::string untouched;
        ASSERT_EQ(rewrite.Serialize(untouched), LanguageChange::Done);
        ASSERT_EQ(untouched, sample.before);
        reverse(2);
        rewrite.Next();
        rewrite.SetSourceText(swapped ? u"target" : u"source");
        rewrite.SetTargetText(swapped ? u"source" : u"target");
        rewrite.SetCodeBefore(u"<itbh><f2>32</f2><sid>2</sid></itbh>");
        rewrite.Next();
        reverse(3);
        const std::u16string source = u"F1 lc=\"en-US\"¦T1 s|T2 source|L3 |";
        const std::u16string target = u"F1 lc=\"de-DE\"¦T1 t|T2 target|L3 |";
        const std::u16string expected = reversed(0) ? target + source : source + target;
        EXPECT_EQ(sample.Written(), expected);
        reverse(4);
        rewrite.Next();  // commits nothing
        rewrite.Next();  // behind the last segment
        EXPECT_EQ(sample.Written(), expected);
    }
}

TEST(DocumentRewrite, OfEqualCodesTheFirstStays) {
    OpenedSample sample(false);
    sample.rewrite.SetCodeBefore(u"<itbh><f2>32</f2><sid>1</sid></itbh>");
    sample.rewrite.SetTargetText(u"{1}");
    sample.rewrite.AddTargetCode(1, u"<ut>first</ut>");
    sample.rewrite.AddTargetCode(1, u"<ut>second</ut>");
    sample.rewrite.Next();
    sample.rewrite.SetTargetText(u"{1}x");
    sample.rewrite.Next();
    EXPECT_EQ(sample.Written(), u"T1 ¦T1 |L3 |T1 first¦T1 x|L3 |");
}

TEST(DocumentRewrite, TheTargetLanguageIsReplaced) {
    for (const auto& row : CaseTable("languages.tsv")) {
        SCOPED_TRACE(testing::PrintToString(row));
        ItdDocument document;
        document.headerBytes = SampleHeader(0, true);
        document.sourceSegments.push_back(SegmentOf(document, row[0]));
        document.targetSegments.push_back(SegmentOf(document, row[1]));
        EXPECT_EQ(LanguageChangeText(ReplaceTargetLanguage(document, row[2])), row[3]);
        EXPECT_EQ(NotationOf(document.sourceSegments[0]), row[4]);
        EXPECT_EQ(NotationOf(document.targetSegments[0]), row[5]);
        ItdTextHeader header;
        EXPECT_EQ(ParseTextHeader(document.headerBytes, header), ItdParse::Complete);
        EXPECT_EQ(header.sourceLanguage, u"en-US");
        EXPECT_EQ(header.targetLanguage, row[3].empty() ? row[2] : u"de-DE");
        EXPECT_EQ(ReplaceTargetLanguage(document, std::u16string(256, u'x')),
                  LanguageChange::TooLong);
    }
}

}  // namespace
}  // namespace generalutilities
