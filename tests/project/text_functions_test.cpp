// The plain functions on tags, status words, line ends, codes and words.

#include <generalutilities/extview/segment_text.h>
#include <generalutilities/project/language_tags.h>
#include <generalutilities/project/line_ends.h>
#include <generalutilities/project/segment_codes.h>
#include <generalutilities/project/status_names.h>

#include "case_table.h"
#include "platform/files/utf8.h"
#include "project/placeholders.h"
#include "project/word_diff_promises.h"
#include "seeded_random.h"

#include <map>
#include <set>

namespace generalutilities {
namespace {

using Cells = std::vector<std::u16string>;

std::u16string Decimal(std::optional<std::int64_t> number) {
    return number ? files::FromUtf8(std::to_string(*number)) : u"-";
}

std::u16string Placeholders(const Cells& row) {
    std::u16string found;
    for (std::size_t i = 0; i < row[2].size();) {
        const std::size_t length = ProgramPlaceholderLength(row[2], i);
        if (length > 0) {
            found += (found.empty() ? u"" : u"¦") + row[2].substr(i, length);
        }
        i += std::max<std::size_t>(length, 1);
    }
    return found;
}

std::u16string Codes(const Cells& row) {
    std::u16string codes;
    for (const std::u16string_view code : CodesOf(row[2])) {
        codes.append(codes.empty() ? u"" : u" ").append(code);
    }
    return codes;
}

std::u16string CodeDifferences(const Cells& row) {
    using Kind = CodeDifference::Kind;
    std::u16string all;
    for (const CodeDifference& one : CompareCodes(row[2], row[3])) {
        all += (all.empty() ? u"" : u", ") + Decimal(one.count) + u" " + one.code +
               (one.kind == Kind::Lost    ? u" lost"
                : one.kind == Kind::Added ? u" added"
                                          : u" doubled");
    }
    return all;
}

/// "[old|new]" where the texts differ.
std::u16string Marked(const Cells& row) {
    std::u16string marked;
    for (const DiffStretch& stretch : CompareWords(row[2], row[3], 1033)) {
        const std::u16string after = row[3].substr(stretch.newFirst, stretch.newLength);
        marked += stretch.same ? after
                               : u"[" + row[2].substr(stretch.oldFirst, stretch.oldLength) + u"|" +
                                     after + u"]";
    }
    return marked;
}

std::u16string Restored(const Cells& row) {
    std::u16string restored = u"refused";
    std::u16string missing;
    const bool done = RestoreHiddenCodes(row[2], row[3], row[4], restored, missing);
    EXPECT_EQ(missing.empty(), done);
    EXPECT_TRUE(!done || StripCodeMarkers(restored) == row[2]);
    return restored;
}

std::u16string SourceText(TextForm form, const Cells& row) {
    return SegmentTextMaker(form).Source(row[2]);
}

TEST(TextFunctions, Table) {
    const std::map<std::u16string, std::u16string (*)(const Cells&)> functions = {
        {u"LangIdOfTag", [](const Cells& row) { return Decimal(LangIdOfTag(row[2])); }},
        {u"TagOfLangId", [](const Cells& row) { return TagOfLangId(Number(row[2])); }},
        {u"StatusText", [](const Cells& row) { return StatusText(Number(row[2])); }},
        {u"ParseStatus", [](const Cells& row) { return Decimal(ParseStatus(row[2])); }},
        {u"EqualButForLineEnds",
         [](const Cells& row) -> std::u16string {
             return EqualButForLineEnds(row[2], row[3]) ? u"True" : u"False";
         }},
        {u"WithLineEndsOf", [](const Cells& row) { return WithLineEndsOf(row[2], row[3]); }},
        {u"Placeholders", Placeholders},
        {u"Source", [](const Cells& row) { return SourceText(TextForm::Placeholders, row); }},
        {u"Plain", [](const Cells& row) { return SourceText(TextForm::Plain, row); }},
        {u"Segment", [](const Cells& row) { return SourceText(TextForm::Segment, row); }},
        {u"Translation",
         [](const Cells& row) {
             SegmentTextMaker maker(TextForm::Placeholders);
             maker.Source(row[2]);
             return StripCodeMarkers(maker.Translation(row[3]));
         }},
        {u"PlainText", [](const Cells& row) { return PlainText(row[2]); }},
        {u"CodesOf", Codes},
        {u"CompareCodes", CodeDifferences},
        {u"CompareWords", Marked},
        {u"RestoreHiddenCodes", Restored},
    };
    for (const auto& row : CaseTable("functions.tsv")) {
        EXPECT_EQ(functions.at(row[0])(row), row[1]) << testing::PrintToString(row);
    }
}

TEST(LanguageTags, EveryIdentifierComesBackFromItsTag) {
    std::set<std::u16string> tags;
    for (std::int32_t langId = 1; langId <= 0xFFFF; ++langId) {
        const std::u16string tag = TagOfLangId(langId);
        ASSERT_EQ(LangIdOfTag(tag), langId) << Bytes(tag);
        ASSERT_TRUE(tags.insert(tag).second) << Bytes(tag);
    }
}

TEST(StatusNames, ReadAndWriteEachOther) {
    for (std::int32_t status = 0; status < 0x20000; status += 7) {
        ASSERT_EQ(ParseStatus(StatusText(status)), status);
    }
}

class RandomTexts : public testing::Test {
  protected:
    std::u16string Make() {
        constexpr std::u16string_view Pieces[] = {
            u"%s", u"{",     u"}",   u"\\",     u"<b>",          u"%(n)d",  u"{x}",    u"ab",
            u" ",  u"  ",    u"%",   u"<",      u"\xD800",       u"\xFFFF", u"\x05D0", u"\r\n",
            u"12", u"{{y}}", u"{1}", u"\x4E2D", u"\xD83D\xDE00", u"'"};
        std::u16string text;
        for (unsigned int i = random() % 14; i > 0; --i) {
            text += Pieces[random() % std::size(Pieces)];
        }
        return text;
    }

    SeededRandom random;
};

TEST_F(RandomTexts, AreTheirPlainTextAgain) {
    for (int round = 0; round < 5000; ++round) {
        const std::u16string text = Make();
        for (const TextForm form : {TextForm::Plain, TextForm::Placeholders}) {
            SegmentTextMaker maker(form);
            ASSERT_EQ(PlainText(maker.Source(text)), text);
            maker.Source(u"%s {x} %(n)d");
            ASSERT_EQ(PlainText(maker.Translation(text)), text);
        }
    }
}

TEST_F(RandomTexts, AreComparedAsPromised) {
    for (int round = 0; round < 20000; ++round) {
        const std::u16string before = Make(), after = Make();
        ASSERT_TRUE(KeepsPromises(before, after))
            << testing::PrintToString(std::pair(before, after));
    }
}

TEST_F(RandomTexts, LongOnesThatShareLittleAreComparedInBounds) {
    std::u16string a;
    std::u16string b;
    for (int i = 0; i < 40000; ++i) {
        a.append({static_cast<char16_t>(u'a' + random() % 26), u' '});
        b.append({static_cast<char16_t>(u'a' + random() % 26), u' '});
    }
    EXPECT_TRUE(KeepsPromises(a, b));
    b = a;
    b.insert(b.size() / 2, u"new ");
    EXPECT_EQ(CompareWords(a, b, 1033).size(), 3U) << "a small change in a long text is found";
}

}  // namespace
}  // namespace generalutilities
