#include <generalutilities/text_file.h>

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <unistd.h>

namespace generalutilities {
namespace {

namespace fs = std::filesystem;

class TextFile : public testing::Test {
  protected:
    TextFile()
        : path(fs::temp_directory_path() /
               ("text-file-test-" + std::to_string(getpid()) + "-\u00E4")) {}
    ~TextFile() override { fs::remove_all(path); }

    std::unique_ptr<TextFileStream> Open(TextFileFormat format) {
        return CreateTextFileFactory()->OpenTextFile(path.u16string(), format);
    }
    std::string Bytes() const {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    const fs::path path;
};

TEST_F(TextFile, OneByteKeepsTheLowByte) {
    std::u16string text;
    std::string expected;
    for (int unit = 0; unit < 0x10000; unit += 0x61) {
        text.push_back(static_cast<char16_t>(unit));
        expected.push_back(static_cast<char>(unit & 0xFF));
    }
    auto stream = Open(TextFileFormat::OneByte);
    ASSERT_TRUE(stream);
    EXPECT_TRUE(stream->Write(text));
    EXPECT_TRUE(stream->Write(u""));
    EXPECT_TRUE(stream->Close());
    EXPECT_EQ(Bytes(), expected);
}

TEST_F(TextFile, Utf8ReplacesUnpairedSurrogates) {
    struct {
        std::u16string first, second;
        std::string expected;
    } const cases[] = {
        {u"a\u00E9\u05D0\uFFFF", u"", "a\xC3\xA9\xD7\x90\xEF\xBF\xBF"},
        {u"\x07FF\x0800", u"\U00010000\U0010FFFF",
         "\xDF\xBF\xE0\xA0\x80\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
        {{0xD83D}, {0xDE00}, "\xF0\x9F\x98\x80"},  // a pair across two calls
        {{0xD83D, u'x'}, {0xDE00}, "\xEF\xBF\xBDx\xEF\xBF\xBD"},
        {{0xD83D}, u"", "\xEF\xBF\xBD"},  // half a pair at the end
        {{0xD83D, 0xD83D, 0xDE00}, u"", "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
    };
    for (const auto& [first, second, expected] : cases) {
        auto stream = Open(TextFileFormat::Utf8);
        ASSERT_TRUE(stream);
        EXPECT_TRUE(stream->Write(first));
        EXPECT_TRUE(stream->Write(second));
        EXPECT_TRUE(stream->Close());
        EXPECT_TRUE(stream->Close());
        EXPECT_FALSE(stream->Write(u"late"));
        EXPECT_EQ(Bytes(), expected);
    }
}

// Sizes around the buffer: nothing is lost or doubled where one buffer ends and the next begins.
TEST_F(TextFile, LongTextsInPieces) {
    for (const auto format : {TextFileFormat::OneByte, TextFileFormat::Utf8}) {
        std::string expected;
        {
            auto stream = Open(format);
            ASSERT_TRUE(stream);
            for (std::size_t length = 1; expected.size() < 3'000'000; length = length * 3 + 1) {
                std::u16string text(length, u'a');
                text.back() = format == TextFileFormat::Utf8 ? u'\u20AC' : u'z';
                EXPECT_TRUE(stream->Write(text));
                expected.append(length - 1, 'a');
                expected.append(format == TextFileFormat::Utf8 ? "\xE2\x82\xAC" : "z");
            }
        }  // released without Close: what was written arrives all the same
        EXPECT_TRUE(Bytes() == expected);
    }
}

TEST_F(TextFile, EmptiesAnExistingFile) {
    std::ofstream(path) << "old and longer";
    Open(TextFileFormat::OneByte)->Close();
    EXPECT_EQ(Bytes(), "");
}

TEST_F(TextFile, CannotBeOpened) {
    const auto factory = CreateTextFileFactory();
    const auto open = [&](const std::u16string& name) {
        return factory->OpenTextFile(name, TextFileFormat::OneByte);
    };
    fs::create_directory(path);
    EXPECT_FALSE(open(path.u16string()));
    EXPECT_FALSE(open((path / "missing" / "file").u16string()));
    EXPECT_FALSE(open(u""));
    EXPECT_FALSE(open((path / "a").u16string() + std::u16string(u"\0b", 2)));
    EXPECT_FALSE(open((path / "a").u16string() + char16_t{0xD800}));
    EXPECT_TRUE(fs::is_empty(path));
}

TEST(TextFileFailure, IsRemembered) {
    if (!fs::exists("/dev/full")) {
        GTEST_SKIP() << "this system has no /dev/full";
    }
    const auto full = CreateTextFileFactory();
    auto stream = full->OpenTextFile(u"/dev/full", TextFileFormat::OneByte);
    ASSERT_TRUE(stream);
    EXPECT_TRUE(stream->Write(u"fits into the buffer"));
    EXPECT_FALSE(stream->Write(std::u16string(1'000'000, u'a')));
    EXPECT_FALSE(stream->Write(u"a"));
    EXPECT_FALSE(stream->Close());
    EXPECT_FALSE(stream->Close());

    stream = full->OpenTextFile(u"/dev/full", TextFileFormat::Utf8);
    ASSERT_TRUE(stream);
    EXPECT_TRUE(stream->Write(u"noticed at the end"));
    EXPECT_FALSE(stream->Close());
}

}  // namespace
}  // namespace generalutilities
