#include "unicode.h"

#include "failure.h"

#include <gtest/gtest.h>

namespace generalutilities::cli {
namespace {

TEST(Unicode, FindsTheFirstByteThatIsNoUtf8) {
    struct {
        std::string text;
        int offset;  ///< -1: none
    } const cases[] = {
        {"", -1},
        {"a\u00e9\u20ac\U0001F642\xF4\x8F\xBF\xBF", -1},
        {"\xF4\x90\x80\x80", 0},
        {"ab\x80", 2},  // a continuation alone
        {"\xC0\x80", 0},
        {"x\xE0\x9F\xBF", 1},
        {"\xF0\x8F\xBF\xBF", 0},
        {"\xED\xA0\x80", 0},  // a surrogate
        {"a\xE2\x82", 1},
        {"caf\xE9 noir", 3},
    };
    for (const auto& one : cases) {
        const auto offset = FindInvalidUtf8(one.text);
        EXPECT_EQ(offset ? static_cast<int>(*offset) : -1, one.offset) << one.text;
    }
    EXPECT_EQ(ToUtf16(std::string("\U0001F642\0\xFFz", 7)),
              std::u16string(u"\U0001F642\0\uFFFDz", 5));
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
