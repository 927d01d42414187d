#include <generalutilities/text_file.h>

#include "case_table.h"

namespace generalutilities {
namespace {

class TextFile : public testing::Test {
  protected:
    std::unique_ptr<TextFileStream> Open(TextFileFormat format) {
        return CreateTextFileFactory()->OpenTextFile(path, format);
    }

    const TemporaryFolder folder;
    const std::u16string path = folder.Path(u"\u00E4");
};

TEST_F(TextFile, OneByteKeepsTheLowByte) {
    std::u16string text;
    std::string expected;
    for (int unit = 0; unit < 0x10000; unit += 0x61) {
        text.push_back(static_cast<char16_t>(unit));
        expected.push_back(static_cast<char>(unit & 0xFF));
    }
    auto stream = Open(TextFileFormat::OneByte);
    EXPECT_TRUE(stream->Write(text) && stream->Write(u"") && stream->Close());
    EXPECT_EQ(ReadFile(path), expected);
}

TEST_F(TextFile, Utf8ReplacesUnpairedSurrogates) {
    for (const auto& row : CaseTable("utf8.tsv")) {
        auto stream = Open(TextFileFormat::Utf8);
        EXPECT_TRUE(stream->Write(row[0]) && stream->Write(row[1]));
        EXPECT_TRUE(stream->Close() && stream->Close());
        EXPECT_FALSE(stream->Write(u"late"));
        EXPECT_EQ(ReadFile(path), std::filesystem::path(row[2]).string());
    }
}

// Sizes around the buffer: nothing is lost or doubled where one buffer ends and the next begins.
TEST_F(TextFile, LongTextsInPieces) {
    for (const auto format : {TextFileFormat::OneByte, TextFileFormat::Utf8}) {
        std::string expected;
        {
            auto stream = Open(format);
            for (std::size_t length = 1; expected.size() < 3'000'000; length = length * 3 + 1) {
                std::u16string text(length, u'a');
                text.back() = format == TextFileFormat::Utf8 ? u'\u20AC' : u'z';
                EXPECT_TRUE(stream->Write(text));
                expected.append(length - 1, 'a');
                expected.append(format == TextFileFormat::Utf8 ? "\xE2\x82\xAC" : "z");
            }
        }  // released without Close: what was written arrives all the same
        EXPECT_TRUE(ReadFile(path) == expected);
    }
}

TEST_F(TextFile, EmptiesAnExistingFileOrCannotBeOpened) {
    WriteFile(path, "old and longer");
    Open(TextFileFormat::OneByte)->Close();
    EXPECT_EQ(ReadFile(path), "");
    for (const std::u16string& name :
         {folder.Path(u""), folder.Path(u"missing/file"), std::u16string(),
          folder.Path(std::u16string_view(u"a\0b", 3)), folder.Path(u"a\xD800")}) {
        EXPECT_FALSE(CreateTextFileFactory()->OpenTextFile(name, TextFileFormat::OneByte));
    }
    EXPECT_EQ(folder.FileCount(), 1U);
}

TEST(TextFileFailure, IsRemembered) {
    auto stream = CreateTextFileFactory()->OpenTextFile(u"/dev/full", TextFileFormat::OneByte);
    EXPECT_TRUE(stream->Write(u"fits into the buffer"));
    EXPECT_FALSE(stream->Write(std::u16string(1'000'000, u'a')));
    EXPECT_FALSE(stream->Write(u"a") || stream->Close() || stream->Close());

    stream = CreateTextFileFactory()->OpenTextFile(u"/dev/full", TextFileFormat::Utf8);
    EXPECT_TRUE(stream->Write(u"noticed at the end"));
    EXPECT_FALSE(stream->Close());
}

}  // namespace
}  // namespace generalutilities
