// Segments on their way to a translator and back, in each form.

#include <generalutilities/error.h>
#include <generalutilities/itd/exchange.h>
#include <generalutilities/itd/translations.h>

#include "case_table.h"
#include "sample_document.h"
#include "segment_notation.h"
#include "text/decimal.h"

#include <algorithm>
#include <sstream>

namespace generalutilities {
namespace {

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
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const TemporaryFolder folder;
    const auto pieces = [&] {
        constexpr std::u16string_view Parts[] = {u"a",
                                                 u" ",
                                                 u"\t",
                                                 u"\r\n",
                                                 u"\n",
                                                 u"\r",
                                                 u"\"",
                                                 u"{1}",
                                                 u"\\",
                                                 u"<b>&lt;",
                                                 u"\u0001",
                                                 u"\uFFFE",
                                                 u"\xD800",
                                                 u"\xDC00",
                                                 u"\U0001F600",
                                                 u"]]>",
                                                 u"\uFEFF",
                                                 std::u16string_view(u"\0", 1),
                                                 u"\u0085\u2028",
                                                 u"#",
                                                 u"=1+1"};
        SegmentPieces made;
        for (auto i = random() % 8; i > 0; --i) {
            if (random() % 4 == 0) {
                AppendCode(made, static_cast<std::uint32_t>(1 + random() % 3));
            } else {
                AppendText(made, Parts[random() % std::size(Parts)]);
            }
        }
        return made;
    };
    for (const ExchangeForm form : Forms) {
        SCOPED_TRACE(static_cast<int>(form));
        std::vector<ExchangeSegment> segments(300);
        const std::u16string path = folder.Path(u"exchange");
        std::ostringstream output;
        const auto writer = CreateExchangeWriter(form, output, {u"a&\xD800.itd", u"en", u"de"});
        for (std::uint32_t i = 0; i < segments.size(); ++i) {
            segments[i] = {i + 1,
                           pieces(),
                           pieces(),
                           {u"<b>", u"\u0001\xD800\r", u""},
                           i,
                           i / 7.0,
                           SegmentTextOf(pieces())};
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

struct Read {
    std::string failure;  ///< of the file as a whole
    std::string rows;     ///< "place segment source>target !fault;"
};

Read ReadAll(ExchangeForm form, const std::string& bytes) {
    const TemporaryFolder folder;
    WriteFile(folder.Path(u"rows"), bytes);
    Read read;
    try {
        const auto reader = OpenExchange(form, folder.Path(u"rows"));
        for (TranslationRow row; reader->Next(row);) {
            const auto text = [](const SegmentPieces& pieces) {
                return std::filesystem::path(SegmentTextOf(pieces)).string();
            };
            read.rows += row.place + " " + std::filesystem::path(row.segment).string() + " " +
                         (row.source ? text(*row.source) : "-") + ">" + text(row.target) +
                         (row.fault.empty() ? "" : " !" + row.fault) + ";";
        }
    } catch (const Error& error) {
        read.failure = error.what();
    }
    return read;
}

TEST(Exchange, OtherToolsFilesAreRead) {
    const std::pair<ExchangeForm, std::vector<std::pair<std::string, std::string>>> table[] = {
        {ExchangeForm::Tsv,
         {{"target\tx\tsegment\nb\t\t1\n\n\"c\nd\"\t\t2\r\n", "line 2 1 ->b;line 4 2 ->c\nd;"},
          {"segment\tsource\ttarget\n1\ta\n2\t{\tb",
           "line 2 1 a>;line 3 2 >b !source: the \"{\" at position 1 begins no code such as {1}; a "
           "brace is \"\\{\";"},
          {"source\ttarget\n", "! names no column \"segment\""},
          {"", "! names no column \"segment\""}}},
        {ExchangeForm::JsonLines,
         {{"{\"target\":\"b\",\"segment\":7,\"more\":[1]}\r\n\n{\"segment\":\"8\",\"source\":\"\"}",
           "line 1 7 ->b;line 3 8 >;"},
          {"[]\n{\"segment\":1",
           "line 1  -> !no JSON object in UTF-8 stands there;line 2  -> !no "
           "JSON object in UTF-8 stands there;"}}},
        {ExchangeForm::Xliff,
         {{"<x:xliff xmlns:x='u'><x:file><x:group><x:trans-unit id='3'><x:source>a<x:ph id='1'>p"
           "</x:ph></x:source><x:seg-source>n</x:seg-source><x:target>b<x:mrk mtype='seg'>c"
           "<x:x id='1'/></x:mrk><![CDATA[<d>]]></x:target><x:alt-trans><x:target>no</x:target>"
           "</x:alt-trans></x:trans-unit></x:group></x:file></x:xliff>",
           "unit 1 3 a{1}>bc{1}<d>;"},
          {"<xliff><trans-unit><target>a<g id='1'>b</g></target></trans-unit></xliff>",
           "unit 1  ->a !<g id=\"1\"> is no code of the document: these are <ph> elements with a "
           "number;"},
          {"<xliff><trans-unit id='1'></xliff>", "! byte offset 28: this is no XML"},
          {"<html/>", "! its root is no <xliff>"}}}};
    for (const auto& [form, files] : table) {
        for (const auto& [bytes, expected] : files) {
            const Read read = ReadAll(form, bytes);
            if (expected.starts_with("!")) {
                EXPECT_NE(read.failure.find(expected.substr(1)), std::string::npos) << read.failure;
            } else {
                EXPECT_EQ(read.rows, expected);
                EXPECT_EQ(read.failure, "");
            }
        }
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
    const auto cell = [](std::u16string text) {
        return text.ends_with(u"∅") ? text.substr(0, text.size() - 1) : text;
    };
    for (const auto& row : CaseTable("applied.tsv")) {
        SCOPED_TRACE(PrintToString(row));
        ItdDocument document;
        document.sourceSegments.push_back(SegmentOf(document, cell(row[0]), 5));
        document.targetSegments.push_back(SegmentOf(document, cell(row[1])));
        const std::u16string source = NotationOf(document.sourceSegments[0]);
        TranslationRow translation{
            .place = {}, .segment = row[2], .source = {}, .target = {}, .fault = {}};
        if (row[3] != u"-") {
            EXPECT_EQ(ParseSegmentText(row[3], translation.source.emplace()), "");
        }
        EXPECT_EQ(ParseSegmentText(cell(row[4]), translation.target), "");
        TranslationApplier applier(document);
        EXPECT_EQ(Describe(applier.Apply(translation)), Bytes(row[5]));
        EXPECT_EQ(NotationOf(document.targetSegments[0]), cell(row[6] == u"=" ? row[1] : row[6]));
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
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    int applied = 0;
    for (int round = 0; round < 2000; ++round) {
        std::u16string codes = u"123";
        const auto notation = [&] {
            std::ranges::shuffle(codes, random);
            std::u16string records = random() % 3 == 0 ? u"F f¦" : u"";
            for (std::size_t i = 0; i < random() % 5; ++i) {
                records += random() % 2 == 0 ? u"T a" + std::u16string(random() % 2, u'b') : u"T ";
                (records += u"¦C ") += std::u16string(1, codes[i % 3]) + u'¦';
            }
            return records + (random() % 2 == 0 ? u"T x" : u"L ");
        };
        ItdDocument full, bare;
        const std::u16string source = notation();
        const std::u16string target = notation();
        for (ItdDocument* const document : {&full, &bare}) {
            document->sourceSegments.push_back(SegmentOf(*document, source));
            document->targetSegments.push_back(
                SegmentOf(*document, document == &full ? target : u"T ", 8));
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
        for (const ItdRecord& record : bare.targetSegments[0]) {
            ASSERT_EQ(record.block.sid, 8U);
        }
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
    EXPECT_EQ(rows, R"(segment	source	target	status	score	comment
1	a{1}b{2}c	x{2}{3}{4}y{1}z	7	0.5	A: b
2	second		0	0	
{"segment": 1, "source": "a{1}b{2}c", "target": "x{2}{3}{4}y{1}z", "status": 7, "score": 0.5, "comment": "A: b"}
{"segment": 2, "source": "second", "target": "", "status": 0, "score": 0, "comment": ""}
<?xml version="1.0"?><xliff version="1.2" xmlns="urn:oasis:names:tc:xliff:document:1.2" xmlns:itd="urn:generalutilities:itd">
<file original="s.itd" datatype="x-itd" source-language="en" target-language="de">
<body>
 <trans-unit id="1" xml:space="preserve" itd:status="7" itd:score="0.5">
  <source>a<ph id="1">&lt;b&gt;</ph>b<ph id="2">&lt;i&gt;</ph>c</source>
  <target>x<ph id="2">&lt;i&gt;</ph><ph id="3">&lt;u&gt;</ph><ph id="4">!</ph>y<ph id="1">&lt;b&gt;</ph>z</target>
  <note>A: b</note>
 </trans-unit>
 <trans-unit id="2" xml:space="preserve" itd:status="0" itd:score="0">
  <source>second</source>
 </trans-unit>
</body>
</file>
</xliff>
)");
}

}  // namespace
}  // namespace generalutilities
