// A document segment by segment, and new text in its segments. The cases are in data/.

#include <generalutilities/itd/document_rewrite.h>
#include <generalutilities/itd/document_walk.h>

#include "case_table.h"
#include "sample_file.h"
#include "seeded_random.h"

#include <algorithm>

namespace generalutilities {
namespace {

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
            codes += (i == 0 ? u"" : u"¦") + column.codes[i];
        }
        EXPECT_EQ(codes, CodeString(row[2]));
        // A host hands back what stands around the text, and the rest by placeholders.
        const auto placeholders = static_cast<std::size_t>(std::ranges::count(column.text, u'{'));
        if (column.codes.size() > placeholders + 2 || column.text.find(u'\\') != column.text.npos) {
            continue;  // not all have one, or a backslash means what the host says
        }
        CodeMap map;
        for (std::size_t i = 1; i <= placeholders; ++i) {
            map[static_cast<std::int32_t>(4 + i)] = column.codes[i];
        }
        const std::u16string after = column.codes.size() > 1 ? column.codes.back() : u"";
        EXPECT_EQ(NotationOf(RebuildSegment(document, segment, column.text, map,
                                            column.codes.front(), after)),
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
    SeededRandom random;
    const auto hasText = [](const ItdSegment& segment) {
        return segment.begin()->block.IsTranslatable();
    };
    for (int round = 0; round < 200; ++round) {
        ItdDocument made;
        made.statusEntries = {{1, 0.25}, {2, 0.5}, {3, 0.75}, {4, 1}};
        for (auto* column : {&made.sourceSegments, &made.targetSegments}) {
            for (auto i = random() % 6; i > 0; --i) {
                column->push_back(SegmentOf(made, random() % 2 == 0 ? u"T x" : u"C x"));
            }
        }
        ItdWalk walk;
        walk.Open(std::move(made));
        std::size_t at = 0;
        for (int step = 0; step < 20; ++step) {
            const std::vector<ItdSegment>& sources = walk.Document().sourceSegments;
            const std::vector<ItdSegment>& targets = walk.Document().targetSegments;
            const bool hasMore = at + 1 < sources.size();
            ASSERT_EQ(walk.HasMore(), hasMore);
            if (random() % 4 == 0) {
                walk.ReverseLanguages();
                continue;
            }
            if (random() % 4 == 0) {
                walk.Restart();
                at = 0;
            } else {
                ASSERT_EQ(walk.Next(), hasMore);
                if (!hasMore) {
                    continue;
                }
                ++at;
            }
            if (!sources.empty()) {
                const auto entry = std::ranges::count_if(std::span(sources).first(at + 1), hasText);
                ASSERT_EQ(walk.Current().status, entry > 4 ? 0 : entry);
                ASSERT_EQ(walk.Current().score, walk.Current().status / 4.0);
                ASSERT_EQ(walk.Current().target.text == u"x",
                          at < targets.size() && hasText(targets[at]));
            }
        }
    }
}

TEST(DocumentRewrite, SegmentsAreRebuilt) {
    ItdDocument document;
    for (const auto& row : CaseTable("rebuilds.tsv")) {
        CodeMap codes;
        for (const std::u16string& code : Split(row[2], u' ')) {
            codes[Number(code.substr(0, 1))] = CodeString(code.substr(2));
        }
        const ItdSegment former = SegmentOf(document, row[0]);
        EXPECT_EQ(NotationOf(RebuildSegment(document, former, row[1], codes, CodeString(row[3]),
                                            CodeString(row[4]))),
                  row[5])
            << testing::PrintToString(row);
    }
}

ItdTextHeader Parse(const std::string& bytes, ItdDocument& document) {
    ItdTextHeader header;
    EXPECT_EQ(ParseTextHeader(bytes, header), ItdParse::Complete);
    EXPECT_EQ(ParseTextPart(bytes, header.statusEntryCount, document), ItdParse::Complete);
    return header;
}

/// The sample, opened as its file line says.
struct OpenedSample {
    explicit OpenedSample(bool targetFirst) : before(SampleTextPart(targetFirst)) {
        ItdDocument document;
        const ItdTextHeader header = Parse(before, document);
        rewrite.Open(std::move(document), header);
    }
    /// What would be written, as its columns.
    std::u16string Written() {
        std::string bytes;
        EXPECT_EQ(rewrite.Serialize(bytes), LanguageChange::Done);
        ItdDocument document;
        Parse(bytes, document);
        std::u16string columns;
        for (const auto* column : {&document.sourceSegments, &document.targetSegments}) {
            for (const ItdSegment& segment : *column) {
                (columns += NotationOf(segment)) += u'|';
            }
        }
        return columns;
    }

    std::string before;
    ItdRewrite rewrite;
};

TEST(DocumentRewrite, ColumnsComeOutInTheOrderOfTheFile) {
    for (int reversals = 0; reversals < 32; ++reversals) {
        SCOPED_TRACE(reversals);
        const bool targetFirst = reversals % 2 != 0;
        OpenedSample sample(targetFirst);
        ItdRewrite& rewrite = sample.rewrite;
        bool swapped = false;
        const auto reverse = [&](int bit) {
            if ((reversals >> bit & 1) != 0) {
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
        rewrite.SetSourceText(swapped ? u"target{1}" : u"source{1}");
        rewrite.SetTargetText(swapped ? u"source{1}" : u"target{1}");
        for (const std::u16string_view code : {u"<ut>!</ut>", u"<ut>the first stays</ut>"}) {
            rewrite.AddSourceCode(1, code);
            rewrite.AddTargetCode(1, code);
        }
        rewrite.SetCodeBefore(u"<itbh><f2>32</f2><sid>2</sid></itbh>");
        rewrite.Next();
        rewrite.SetCodeAfter(u"");
        rewrite.Next();  // with the same texts and no codes
        reverse(3);
        const std::u16string source =
            u"F1 lc=\"en-US\"¦T1 one¦C1 <b>¦T1 two|T2 source!¦T2 source|L4 ∅|";
        const std::u16string target =
            u"F1 lc=\"de-DE\"¦T1 eins¦C1 <b>¦T1 zwei|T2 target!¦T2 target|L4 ∅|";
        const std::u16string expected = targetFirst ? target + source : source + target;
        EXPECT_EQ(sample.Written(), expected);
        reverse(4);
        for (int i = 0; i < 2; ++i) {  // commits nothing, also behind the last segment
            rewrite.Next();
        }
        EXPECT_EQ(sample.Written(), expected);
    }
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
