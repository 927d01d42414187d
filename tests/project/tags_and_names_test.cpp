#include <generalutilities/project/language_tags.h>
#include <generalutilities/project/line_ends.h>
#include <generalutilities/project/status_names.h>

#include "case_table.h"

#include <set>

namespace generalutilities {
namespace {

TEST(LanguageTags, KnowTagsInEverySpelling) {
    for (const auto& row : CaseTable("language_tags.tsv")) {
        EXPECT_EQ(LangIdOfTag(row[0]), Number(row[1])) << Bytes(row[0]);
    }
}

TEST(LanguageTags, RefuseWhatIsNoLanguage) {
    for (const std::u16string_view tag :
         {u"", u"-", u"f", u"french", u"fr-XX", u"xx", u"0", u"65536", u"-1", u"0x", u"10a",
          u"99999999999", u"ru-Latn", u"zh-Latn-CN", u"\u0444\u0440", u"@latin", u"."}) {
        EXPECT_EQ(LangIdOfTag(tag), std::nullopt) << std::string(tag.begin(), tag.end());
    }
}

TEST(LanguageTags, EveryIdentifierComesBackFromItsTag) {
    std::set<std::u16string> tags;
    for (std::int32_t langId = 1; langId <= 0xFFFF; ++langId) {
        const std::u16string tag = TagOfLangId(langId);
        ASSERT_EQ(LangIdOfTag(tag), langId) << std::string(tag.begin(), tag.end());
        ASSERT_TRUE(tags.insert(tag).second) << std::string(tag.begin(), tag.end());
    }
    EXPECT_EQ(TagOfLangId(1036), u"fr-FR");
    EXPECT_EQ(TagOfLangId(2052), u"zh-CN");
    EXPECT_EQ(TagOfLangId(5), u"5");
}

TEST(StatusNames, ReadAndWriteEachOther) {
    EXPECT_EQ(StatusText(0), u"none");
    EXPECT_EQ(StatusText(0x201), u"exact+locked");
    EXPECT_EQ(StatusText(0x10022), u"fuzzy+machine+exact-extra");
    EXPECT_EQ(StatusText(0x40000004), u"assembled+0x40000000");
    for (std::uint32_t bits = 0; bits < 0x20000; bits += 7) {
        const auto status = static_cast<std::int32_t>(bits);
        ASSERT_EQ(ParseStatus(StatusText(status)), status) << bits;
    }
    EXPECT_EQ(ParseStatus(u" Exact , LOCKED|pending "), 0x601);
    EXPECT_EQ(ParseStatus(u"513"), 513);
    EXPECT_EQ(ParseStatus(u"0x201"), 513);
    EXPECT_EQ(ParseStatus(u""), 0);
    for (const std::u16string_view wrong :
         {u"translated", u"-1", u"+", u"exact+", u"2147483648", u"1.5", u"0x", u"\u00E9"}) {
        EXPECT_EQ(ParseStatus(wrong), std::nullopt) << std::string(wrong.begin(), wrong.end());
    }
}

TEST(LineEnds, AreOneWhateverTheirForm) {
    EXPECT_TRUE(EqualButForLineEnds(u"a\r\nb\n", u"a\nb\r"));
    EXPECT_TRUE(EqualButForLineEnds(u"", u""));
    EXPECT_FALSE(EqualButForLineEnds(u"a\r\nb", u"a\n\nb"));
    EXPECT_FALSE(EqualButForLineEnds(u"a\n", u"a"));
    EXPECT_FALSE(EqualButForLineEnds(u"a\r", u"a "));
}

TEST(LineEnds, TakeTheFormOfTheStoredText) {
    EXPECT_EQ(WithLineEndsOf(u"a\r\nb\r\n", u"x\ny"), u"a\nb\n");
    EXPECT_EQ(WithLineEndsOf(u"a\r\nb", u"x\ry"), u"a\rb");
    EXPECT_EQ(WithLineEndsOf(u"a\r\nb", u"x\r\ny"), u"a\r\nb");
    EXPECT_EQ(WithLineEndsOf(u"a\r\nb", u"x\ny\r\nz"), u"a\r\nb") << "two forms: none is the one";
    EXPECT_EQ(WithLineEndsOf(u"a\r\nb", u"no line end"), u"a\r\nb");
    EXPECT_EQ(WithLineEndsOf(u"a\nb\r\r\n", u"x\ny"), u"a\nb\n\n") << "none joins its neighbour";
}

}  // namespace
}  // namespace generalutilities
