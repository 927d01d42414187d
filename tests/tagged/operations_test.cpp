// The operations on tags, as data/operations.tsv lists what they make of texts.

#include <generalutilities/error.h>
#include <generalutilities/tagged/font_tags.h>
#include <generalutilities/tagged/font_wrapping.h>
#include <generalutilities/tagged/serialize_codes.h>
#include <generalutilities/tagged/tag_scan.h>

#include "case_table.h"

#include <algorithm>

namespace generalutilities {
namespace {

using Texts = std::vector<std::u16string>;

/// "text[tag]text", or the fault with its position.
std::u16string Cut(std::u16string_view text) {
    TagScan scan;
    if (const auto fault = ScanTags(text, scan)) {
        const std::string words = fault->Words() + std::to_string(fault->position);
        return {words.begin(), words.end()};
    }
    EXPECT_EQ(JoinTagScan(scan), text);
    std::u16string cut(scan.texts[0]);
    for (std::size_t i = 0; i < scan.tags.size(); ++i) {
        cut.append(u"[").append(scan.tags[i]).append(u"]").append(scan.texts[i + 1]);
    }
    return cut;
}

/// The marked texts and the codes in one line, with (11) for the marker 11.
std::u16string Serialized(const Texts& texts, std::int32_t lastNumber) {
    std::vector<TagScan> scans(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_FALSE(ScanTags(texts[i], scans[i]));
    }
    const SerializedCodes result = SerializeCodes(scans, lastNumber);
    std::u16string line;
    for (const std::u16string& text : result.texts) {
        line += text + u" | ";
    }
    std::ranges::replace(line, CodeMarkerStart, u'(');
    std::ranges::replace(line, CodeMarkerEnd, u')');
    for (const std::u16string_view code : result.codes) {
        line.append(code).append(u",");
    }
    return line;
}

int asked;

/// Page 1 carries small Latin letters and 3 and 4 capitals; 2 also "a" and U+1F600.
bool Carries(std::u16string_view character, std::uint32_t page) {
    ++asked;
    const char16_t unit = character[0];
    const bool isSmall = unit >= u'a' && unit <= u'z';
    const bool isCapital = unit >= u'A' && unit <= u'Z';
    return page == 1 ? isSmall
                     : isCapital || (page == 2 && (unit == u'a' || character == u"\U0001F600"));
}

void AddPages(FontWrapper& wrapper, std::uint32_t count) {
    for (std::uint32_t page = 1; page <= count; ++page) {
        wrapper.AddCodePage(page, std::u16string(u"F") + static_cast<char16_t>(u'0' + page));
    }
}

TEST(Operations, MakeOfTextsWhatIsListed) {
    FontWrapper wrappers[3]{FontWrapper(Carries), FontWrapper(Carries), FontWrapper(Carries)};
    for (std::uint32_t pages = 0; pages < 3; ++pages) {
        AddPages(wrappers[pages], pages);
    }
    for (const Texts& row : CaseTable("operations.tsv")) {
        const std::u16string& name = row[0];
        EXPECT_EQ(name == u"cut"         ? Cut(row[2])
                  : name == u"strip"     ? StripFontAttributes(row[2])
                  : name == u"serialize" ? Serialized({row.begin() + 2, row.end()}, 10)
                                         : wrappers[name.back() - u'0'].AddFonts(row[2]),
                  row[1])
            << testing::PrintToString(row);
    }
    EXPECT_EQ(Serialized({u"<a>x<b>"}, -1), u"(0)x(1) | <a>,<b>,");
    EXPECT_EQ(Serialized({u"<a>"}, 0x7FFFFFFE), u"(2147483647) | <a>,");
    EXPECT_THROW(Serialized({u"<a>x<b>"}, 0x7FFFFFFE), Error);
}

TEST(Operations, AskOncePerUnitAndPage) {
    FontWrapper wrapper(Carries);
    AddPages(wrapper, 3);
    asked = 0;
    EXPECT_EQ(wrapper.AddFonts(u"#b#A"), u"<df F3>#</df><df F1>b</df><df F3>#A</df>");
    EXPECT_EQ(asked, 3 + 2 + 1);  // "#" by all three, "b" by page 3 and 1, "A" by page 3
    wrapper.AddFonts(u"b#A#");
    EXPECT_EQ(asked, 6);
    // The first character with a high surrogate speaks for all of them, split by tags or not.
    EXPECT_EQ(wrapper.AddFonts(u"\xD83D<b>\xDE00"), u"<df F2>\xD83D<b>\xDE00</df>");
    EXPECT_EQ(wrapper.AddFonts(u"\xD83D"), u"<df F2>\xD83D</df>");
    wrapper.Reset();
    AddPages(wrapper, 3);
    EXPECT_EQ(wrapper.AddFonts(u"\xD83D"), u"<df F3>\xD83D</df>");
}

std::u16string Repeat(std::u16string_view piece, int count) {
    std::u16string text;
    while (count-- > 0) {
        text += piece;
    }
    return text;
}

/// Each would take minutes if a step of it looked at the rest of the text again.
TEST(HostileTexts, TakeOnePass) {
    const std::u16string opening = Repeat(u"<df a=\"1\" font=\"A\">x", 200000);
    FontWrapper wrapper([](std::u16string_view character, std::uint32_t page) {
        return (character == u"x") == (page == 1);
    });
    AddPages(wrapper, 2);
    for (const std::u16string& text :
         {Repeat(u"<", 1 << 20), Repeat(u"<ut>", 300000), Repeat(u"<a>", 300000),
          Repeat(u"< ", 500000), Repeat(u"<ut x></ut>y", 100000), opening,
          opening + Repeat(u"y</df>", 200000), Repeat(u"</df>xy", 200000),
          Repeat(u"<df a=\"1\">x</df><df a=\"1\" font=\"\">y</df>", 100000)}) {
        TagScan scan;
        const bool fails = ScanTags(text, scan).has_value();
        EXPECT_TRUE(fails || JoinTagScan(scan) == text);
        const std::u16string stripped = StripFontAttributes(text);
        EXPECT_EQ(StripFontAttributes(stripped), stripped);
        const std::u16string wrapped = wrapper.AddFonts(text);
        EXPECT_TRUE(fails ? wrapped == text : wrapped.size() >= stripped.size());
    }
}

TEST(HostileTexts, SerializeInTime) {
    std::u16string numbers, pairs;
    for (int i = 0; i < 100000; ++i) {
        const std::string number = std::to_string(i);
        numbers += u"<" + std::u16string(number.begin(), number.end()) + u">";
        pairs += u"<p><b>x<p><" + Repeat(u"c", i % 500) + u">";
    }
    EXPECT_TRUE(Serialized({numbers, numbers}, 0).starts_with(u"(1) | (1) | <0><1><2>"));
    Texts texts(3000, u"<p><p><b>");
    texts[0] = pairs;
    EXPECT_FALSE(Serialized(texts, 0).empty());
}

}  // namespace
}  // namespace generalutilities
