#include "platform/code_pages/code_pages.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace generalutilities {
namespace {

std::u16string Decode(std::uint32_t codePage, std::string_view bytes) {
    std::u16string text = u"<";
    EXPECT_TRUE(code_pages::AppendDecoded(codePage, bytes, text)) << codePage;
    return text.substr(1);
}

// One or two characters that tell a page from its neighbours and from its namesakes.
TEST(CodePages, DecodeByNumber) {
    const struct {
        std::uint32_t codePage;
        std::string_view bytes;
        std::u16string_view text;
    } cases[] = {
        {0, "\x80\xE9", u"€é"},
        {1252, "\x80\x81\xE9", u"€\u0081é"},
        {1250, "\xE9\xF8", u"éř"},
        {1251, "\xCF\x98", u"П\u0098"},
        {1253, "\xE1\xDC", u"αά"},
        {1254, "\xFE\xF0", u"şğ"},
        {1255, "\xE0\xF9\xC0", u"אש\u05B0"},
        {1256, "\xC7\x81", u"اپ"},
        {1257, "\xE0\xF8", u"ąų"},
        {1258, "\xD5\xFE", u"Ơ₫"},
        {874, "\xA1\x80", u"ก€"},
        {932, "\x83\x65\x83\x58\x83\x67\xB1", u"テストｱ"},
        {932, "\x81\x60\x87\x40", u"\uFF5E①"},  // the Windows tilde, and a row the standard lacks
        {936, "\xD6\xD0\x80", u"中€"},
        {949, "\xC7\xD1\x81\x41", u"한갂"},
        {950, "\xA4\xA4\xF9\xD6", u"中碁"},
        {1361, "\xD0\x65\x88\x61", u"한가"},
        {42, "\x1F\x20\xB7\xFF", u"\u001F\uF020\uF0B7\uF0FF"},
        {437, "\x1A\x1C\x7F\xE1", u"\u001A\u001C\u007Fß"},
        {850, "\x9B\xD5", u"øı"},
        {10000, "\x8E\xDB", u"é€"},
        {10006, "\xE1", u"α"},
        {10007, "\x80", u"А"},
        {10029, "\xE1", u"Š"},
        {10081, "\xDC", u"İ"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Decode(test.codePage, test.bytes), test.text) << test.codePage;
    }
}

TEST(CodePages, BytesBelow0x80StandForThemselves) {
    std::string bytes;
    for (char byte = 0; byte >= 0 && bytes.size() < 0x80; ++byte) {
        bytes.push_back(byte);
    }
    const std::u16string text(bytes.begin(), bytes.end());
    for (const std::uint32_t codePage : {437, 850, 874, 932, 936, 949, 950, 1252, 1361, 10000}) {
        EXPECT_EQ(Decode(codePage, bytes), text) << codePage;
    }
}

TEST(CodePages, UndefinedBytesBecomeReplacements) {
    const struct {
        std::uint32_t codePage;
        std::string_view bytes;
        std::u16string_view text;
    } cases[] = {
        {1255, "\xFFz", u"\uFFFDz"},     {932, "\x83", u"\uFFFD"},  // half a character at the end
        {932, "\x83\x20z", u"\uFFFD z"},  // the second byte is a character of its own
        {932, "\x85\x9Fz", u"\uFFFDz"},   // an unassigned pair
        {1361, "\xD0", u"\uFFFD"},       {1361, "\xD0\x20", u"\uFFFD "},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Decode(test.codePage, test.bytes), test.text) << test.codePage;
    }
    // A half character leaves nothing behind for the next call.
    EXPECT_EQ(Decode(932, "\x65"), u"e");
}

TEST(CodePages, UnknownPagesGiveNothing) {
    for (const std::uint32_t codePage :
         {0xFFFFFFFFu, 10001u, 10003u, 10008u, 10002u, 10005u, 10004u, 10021u, 1u}) {
        std::u16string text = u"x";
        EXPECT_FALSE(code_pages::AppendDecoded(codePage, "abc", text)) << codePage;
        EXPECT_EQ(text, u"x");
    }
}

TEST(CodePages, ThreadsShareThePages) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 50; ++round) {
                EXPECT_EQ(Decode(949, "\xB0\xA1"), u"가");
                EXPECT_EQ(Decode(1361, "\x88\x61"), u"가");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
}  // namespace generalutilities
