#include <generalutilities/extview/segment_text.h>

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace generalutilities {
namespace {

struct Case {
    const char16_t* text;
    const char16_t* expected;
};

// The obvious versions: they rewrite the text again and again, as the rules are told.

std::u16string RewriteCodeMarkers(std::u16string text) {
    constexpr auto None = std::u16string::npos;
    for (std::size_t p = text.find(u'\6'); p != None; p = text.find(u'\6')) {
        const std::size_t e7 = text.find(u'\7', p + 1);
        const std::size_t e8 = text.find(u'\b', p + 1);
        const std::size_t shownEnd = std::min(e7, e8);
        if (e8 != None) {
            text = text.substr(0, p) + text.substr(p + 1, shownEnd - p - 1) + text.substr(e8 + 1);
        } else if (e7 != None) {
            text = text.substr(0, p) + text.substr(p + 1, e7 - p - 1) + text.substr(e7 + 1);
        } else {
            text.erase(p, 1);
        }
    }
    std::erase(text, u'\7');
    std::erase(text, u'\b');
    return text;
}

std::u16string EraseBraces(std::u16string text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::size_t slashes = 0;
        while (slashes < i && text[i - 1 - slashes] == u'\\') {
            ++slashes;
        }
        if (text[i] == u'{' && slashes % 2 == 0) {
            const std::size_t end = text.find(u'}', i);
            // A stand-in keeps the neighbours of a removed group apart.
            text = text.substr(0, i) + u'\1' + (end == text.npos ? u"" : text.substr(end + 1));
        }
    }
    std::erase(text, u'\1');
    return text;
}

TEST(StripCodeMarkers, LeavesTheShownText) {
    const Case cases[] = {
        {u"a\6shown\7hidden\bz", u"ashownz"},
        {u"\6one\7x\b\6two\7y\b", u"onetwo"},
        {u"\6\7hidden\b", u""},
        {u"a\6shown\bz\7y", u"ashownzy"},    // the end comes before the hidden text
        {u"a\6shown\7rest", u"ashownrest"},  // no U+0008: only the marks go
        {u"a\6b", u"ab"},                    // no end at all: it loses itself
        {u"a\7b\bc", u"abc"},                // ends without a beginning
        {u"\6a\6b\7x\bc\7y\bd", u"abcd"},    // a code inside the shown text
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(StripCodeMarkers(text), expected) << testing::PrintToString(text);
    }
}

TEST(StripBraces, RemovesGroups) {
    const Case cases[] = {
        {u"a{1}b{22}c", u"abc"},
        {u"{}", u""},
        {u"a{b{c}d}e", u"ad}e"},  // the first brace ends the group
        {u"a{never closed", u"a"},
        {u"a\\{b}c", u"a\\{b}c"},   // escaped
        {u"a\\\\{b}c", u"a\\\\c"},  // an escaped backslash
        {u"a\\\\\\{b}c", u"a\\\\\\{b}c"},
        {u"a{b\\}c}d", u"ac}d"},  // inside a group a backslash is nothing special
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(StripBraces(text), expected) << testing::PrintToString(text);
    }
}

TEST(SegmentText, AgreesWithTheObviousVersions) {
    std::mt19937 random(20240611);
    for (int round = 0; round < 20000; ++round) {
        std::u16string marked, braced;
        for (auto length = random() % 14; length > 0; --length) {
            marked.push_back(u"\6\6\7\bxy"[random() % 6]);
            braced.push_back(u"{{}\\\\xy"[random() % 7]);
        }
        ASSERT_EQ(StripCodeMarkers(marked), RewriteCodeMarkers(marked))
            << testing::PrintToString(marked);
        ASSERT_EQ(StripBraces(braced), EraseBraces(braced)) << testing::PrintToString(braced);
    }
}

// A version that is not linear needs minutes for these.
TEST(SegmentText, StaysLinearOnHostileTexts) {
    constexpr std::size_t Million = 1'000'000;
    const auto repeated = [](std::u16string_view piece) {
        std::u16string text;
        while (text.size() < 2 * Million) {
            text.append(piece);
        }
        return text;
    };
    EXPECT_EQ(StripCodeMarkers(repeated(u"\6")), u"");
    EXPECT_EQ(StripCodeMarkers(repeated(u"\6\7")), u"");
    EXPECT_EQ(StripCodeMarkers(repeated(u"\6a\7b\b")).size(), 2 * Million / 5);
    EXPECT_EQ(StripCodeMarkers(repeated(u"\6") + repeated(u"\b")), u"");
    EXPECT_EQ(StripBraces(repeated(u"{")), u"");
    EXPECT_EQ(StripBraces(repeated(u"\\")).size(), 2 * Million);
    EXPECT_EQ(StripBraces(repeated(u"\\") + u"\\{").size(), 2 * Million + 2);
    EXPECT_EQ(StripBraces(repeated(u"\\{")).size(), 2 * Million);
}

}  // namespace
}  // namespace generalutilities
