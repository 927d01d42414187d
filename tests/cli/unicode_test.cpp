#include "unicode.h"

#include "failure.h"

#include <gtest/gtest.h>

namespace generalutilities::cli {
namespace {

TEST(Unicode, FindsTheFirstByteThatIsNoUtf8) {
    struct {
        const char* what;
        std::string text;
        int offset;  ///< -1: none
    } const cases[] = {
        {"empty", "", -1},
        {"one to four bytes", "a\u00e9\u20ac\U0001F642", -1},
        {"the last code point", "\xF4\x8F\xBF\xBF", -1},
        {"behind the last code point", "\xF4\x90\x80\x80", 0},
        {"a continuation alone", "ab\x80", 2},
        {"overlong, two bytes", "\xC0\x80", 0},
        {"overlong, three bytes", "x\xE0\x9F\xBF", 1},
        {"overlong, four bytes", "\xF0\x8F\xBF\xBF", 0},
        {"a surrogate", "\xED\xA0\x80", 0},
        {"cut behind two of three", "a\xE2\x82", 1},
        {"a byte that is never used", "abc\xFF", 3},
        {"Latin-1", "caf\xE9 noir", 3},
    };
    for (const auto& one : cases) {
        const auto offset = FindInvalidUtf8(one.text);
        EXPECT_EQ(offset ? static_cast<int>(*offset) : -1, one.offset) << one.what;
    }
}

TEST(Unicode, ConvertsBothWays) {
    struct {
        std::string utf8;
        std::u16string utf16;
    } const cases[] = {
        {"", u""},
        {"a\u00e9\u20ac", u"a\u00e9\u20ac"},
        {"\U00010000\U0001F642\U0010FFFF", u"\U00010000\U0001F642\U0010FFFF"},
        {std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(ToUtf16(one.utf8), one.utf16);
        EXPECT_EQ(ToUtf8(one.utf16), one.utf8);
    }
    EXPECT_EQ(ToUtf16("a\xFFz\xE2\x82"), u"a\uFFFDz\uFFFD\uFFFD");
    const char16_t unpaired[] = {u'a', 0xD83D, u'b', 0xDE42, 0xD83D, 0};
    EXPECT_EQ(ToUtf8(unpaired), "a\uFFFDb\uFFFD\uFFFD");
}

TEST(Unicode, NamesTheArgumentAndTheByte) {
    try {
        ArgumentToUtf16("--order-by", "ab\xFF");
        FAIL() << "accepted";
    } catch (const UsageError& error) {
        EXPECT_NE(std::string(error.what()).find("--order-by: byte 2"), std::string::npos);
    }
}

TEST(Unicode, ShowsControlsInsteadOfObeyingThem) {
    EXPECT_EQ(ShowControls("a\tb\n\x1b[31m\x7f"), "a\u2409b\u240a\u241b[31m\u2421");
    EXPECT_EQ(ShowControls("\u009b31m"), "\uFFFD31m");
    EXPECT_EQ(ShowControls("\u05D0\u4E2D"), "\u05D0\u4E2D");
}

}  // namespace
}  // namespace generalutilities::cli
