// Codes of a segment as numbered markers.

#include <generalutilities/error.h>
#include <generalutilities/tagged/serialize_codes.h>

#include "random_tags.h"
#include "textbook.h"

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

using Texts = std::vector<std::u16string>;

std::vector<TagScan> Scans(const Texts& texts) {
    std::vector<TagScan> scans(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_FALSE(ScanTags(texts[i], scans[i]));
    }
    return scans;
}

/// The marked texts and the codes in one line, with (11) for the marker 11.
std::u16string Serialized(const Texts& texts, std::int32_t lastNumber) {
    const SerializedCodes result = SerializeCodes(Scans(texts), lastNumber);
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

TEST(SerializeCodes, NumbersAndMergesCodes) {
    const struct {
        Texts texts;
        const char16_t* line;
    } cases[] = {
        {{u""}, u" | "},
        {{u"a<p>b<p>c", u"<p>d"}, u"a(11)b(12)c | (11)d | <p>,<p>,"},
        {{u"<b><i>x", u"y<b><i>"}, u"(11)x | y(11) | <b><i>,"},
        {{u"<b><i>x", u"<b>y<i>"}, u"(11)(12)x | (11)y(12) | <b>,<i>,"},
        {{u"<b>", u"<i>x<b>", u"<I><i>"}, u"(11) | (12)x(11) | (13)(12) | <b>,<i>,<I>,"},
        {{u"<a>", u"<b>x<b>", u"<b>y<b>z<b>"},
         u"(11) | (12)x(13) | (12)y(13)z(14) | <a>,<b>,<b>,<b>,"},
        {{u"<ut>a</ut><ut>b</ut>c", u"<ut>a</ut><ut>b</ut>"},
         u"(11)c | (11) | <ut>a</ut><ut>b</ut>,"},
        {{u"<a><b><c><d>", u""}, u"(11) |  | <a><b><c><d>,"},
        {{u"<a><a><a>", u"x<a><a>"}, u"(11)(12) | x(11) | <a><a>,<a>,"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(Serialized(row.texts, 10), row.line);
    }
    EXPECT_EQ(Serialized({u"<a>x<b>"}, -1), u"(0)x(1) | <a>,<b>,");
    EXPECT_EQ(Serialized({u"<a>"}, 0x7FFFFFFE), u"(2147483647) | <a>,");
    EXPECT_THROW(Serialized({u"<a>x<b>"}, 0x7FFFFFFE), Error);
}

TEST(SerializeCodes, IsTheTextbooks) {
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    for (int i = 0; i < 20000; ++i) {
        Texts texts(1 + random() % 4);
        const std::size_t most = random() % 20;
        for (std::u16string& text : texts) {
            text = i % 2 == 0
                       ? RandomTags(random, {u"<a>", u"<b>", u"<c>", u"<d>", u"x"}, most)
                       : RandomTags(random, {u"<a>", u"<b>", u"<a>", u"<b>", u"<c>", u"x"}, most);
        }
        const std::vector<TagScan> scans = Scans(texts);
        Texts marked;
        const auto codes = textbook::SerializeCodes(scans, 7, marked);
        const SerializedCodes result = SerializeCodes(scans, 7);
        SCOPED_TRACE(testing::Message() << "seed " << seed << testing::PrintToString(texts));
        ASSERT_EQ(result.texts, marked);
        ASSERT_EQ(result.lastNumber, 7 + static_cast<int>(codes.size()));
        std::int32_t number = 7;
        for (const std::u16string_view code : result.codes) {
            ASSERT_EQ(code, codes.at(++number));
        }
    }
}

TEST(SerializeCodes, MergesHostileSegmentsInTime) {
    Texts texts(2);
    for (int i = 0; i < 100000; ++i) {
        const std::string number = std::to_string(i);
        texts[0] += u"<" + std::u16string(number.begin(), number.end()) + u">";
    }
    texts[1] = texts[0];
    EXPECT_EQ(SerializeCodes(Scans(texts), 0).codes.size(), 1u);
    texts.assign(1, u"");
    for (int i = 0; i < 100000; ++i) {
        texts[0] += u"<p><b>x<p><" + std::u16string(static_cast<std::size_t>(i % 500), u'c') + u">";
    }
    texts.resize(3000, u"<p><p><b>");
    EXPECT_EQ(SerializeCodes(Scans(texts), 0).texts.size(), 3000u);
}

}  // namespace
}  // namespace generalutilities
