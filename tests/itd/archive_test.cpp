// The file around the text part: its envelope, and the compressed stream in it.

#include <generalutilities/error.h>
#include <generalutilities/itd/itd_file.h>

#include "sample_file.h"

#include <algorithm>
#include <random>

namespace generalutilities {
namespace {

using namespace std::string_literals;

template <class Number>
std::string Raw(Number number) {
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

std::string Envelope(std::size_t versionLength, std::size_t firstPartLength,
                     const std::string& compressed) {
    return "SDLXARCH" + Raw(static_cast<std::int32_t>(versionLength)) +
           std::string(versionLength, 'v') + Raw(static_cast<std::uint32_t>(firstPartLength)) +
           std::string(firstPartLength, 'f') + "opaque..." +
           Raw(static_cast<std::uint32_t>(compressed.size())) + compressed + "tail";
}

class ArchiveTest : public testing::Test {
  protected:
    HRESULT ReadHeader(const std::string& bytes) {
        WriteFile(folder / "a.itd", bytes);
        return ReadArchiveHeader(path, header);
    }

    TemporaryFolder folder;
    std::u16string path = folder.Path(u"a.itd");
    ItdArchiveHeader header;
};

TEST_F(ArchiveTest, EnvelopeIsReadUpToItsTrailer) {
    EXPECT_EQ(ReadArchiveHeader(path, header), itderrUnableToOpenFile);
    EXPECT_EQ(ReadArchiveHeader(folder.Path().u16string(), header), itderrUnableToOpenFile);
    for (const std::size_t length : {0, 255}) {
        ASSERT_EQ(ReadHeader(Envelope(length, 300, "zip")), S_OK) << length;
        EXPECT_EQ(header.lengthFieldOffset, 25 + length + 300);
        EXPECT_EQ(header.versionText, std::string(length, 'v'));
        EXPECT_EQ(header.compressedLength, 3U);
        EXPECT_EQ(Raw(header.trailerValue), "tail");
        EXPECT_EQ(std::string(header.partBlock.begin(), header.partBlock.end()), "opaque...");
    }
    EXPECT_EQ(ReadHeader(Envelope(256, 0, "")), itderrBadVersion);
    const std::string whole = Envelope(2, 3, "zip");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_EQ(ReadHeader(whole.substr(0, size)), size < 8    ? itderrBadMagic
                                                     : size < 12 ? itderrBadVersion
                                                                 : itderrUnableToReadFile);
    }
    for (const std::size_t field : {8, 14, 30}) {  // each length at its extremes
        for (const std::uint32_t value : {0x7FFFFFFFU, 0x80000000U, 0xFFFFFFE0U, 0xFFFFFFFFU}) {
            EXPECT_EQ(ReadHeader(std::string(whole).replace(field, 4, Raw(value))),
                      field == 8 ? itderrBadVersion : itderrUnableToReadFile);
        }
    }
    EXPECT_EQ(ReadHeader("sDLXARCH" + whole.substr(8)), itderrBadMagic);
    ReadHeader(std::string(whole).replace(14, 4, Raw(0xFFFFFFE0)));
    std::filesystem::resize_file(path, std::uint64_t{1} << 33);
    EXPECT_EQ(ReadArchiveHeader(path, header), itderrUnableToReadFile) << "beyond 32 bits";
}

TEST_F(ArchiveTest, TextPartsComeBack) {
    std::mt19937 random(1);
    std::string noise(100000, '\0');
    std::ranges::generate(noise, [&] { return static_cast<char>(random()); });
    const std::string file = Envelope(2, 3, std::string(5000, 'z'));
    ASSERT_EQ(ReadHeader(file), S_OK);
    for (const std::string& bytes : {""s, "x"s, "odd"s, noise, std::string(3000000, 'x')}) {
        PutTextPart(path, header.lengthFieldOffset, bytes);
        EXPECT_TRUE(ReadItdTextPart(path, header) == bytes) << bytes.size();
        EXPECT_EQ(header.trailerValue, TextPartTrailer(bytes));
        const std::string written = ReadFile(folder / "a.itd");
        EXPECT_EQ(written.size(), header.TextPartOffset() + header.compressedLength + 4);
        EXPECT_EQ(written.substr(0, 30), file.substr(0, 30));
    }
    EXPECT_EQ(TextPartTrailer("123456789"), 0xCBF43926U) << "the check value of CRC-32";

    // Every bit of the stream counts, but for those that fill up a byte.
    const std::string text = "some text, some more text";
    PutTextPart(path, header.lengthFieldOffset, text);
    const std::string good = ReadFile(folder / "a.itd");
    for (std::size_t at = header.TextPartOffset(); at < good.size() - 4; ++at) {
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ 1 << at % 8);
        WriteFile(folder / "a.itd", bad);
        try {
            EXPECT_EQ(ReadItdTextPart(path, header), text) << at;
        } catch (const Error& error) {
            EXPECT_EQ(error.Status(), ErrorInvalidData) << at;
        }
    }
}

TEST_F(ArchiveTest, SizesAreLimited) {
    EXPECT_EQ(UnpackLimit(0), std::size_t{64} << 20);
    EXPECT_EQ(UnpackLimit(1 << 20), std::size_t{256} << 20);
    EXPECT_EQ(UnpackLimit(0xFFFFFFFF), 0x7FFFFFFFU);
    ASSERT_EQ(ReadHeader(Envelope(0, 0, "")), S_OK);
    std::uint32_t packed = 0;
    const std::size_t limit = UnpackLimit(0);
    std::string room;
    std::size_t size = 0;
    const auto give = [&room](std::size_t most) {
        room.resize(most);
        return room.data();
    };
    for (const std::size_t length : {limit, limit + 1}) {
        ASSERT_EQ(PackTextPart(path, 29, std::string(length, '\0'), packed), S_OK);
        EXPECT_EQ(UnpackTextPart(path, 29, packed, give, size),
                  length == limit ? S_OK : ErrorFileTooLarge);
        EXPECT_EQ(room.size(), limit);
    }
    EXPECT_EQ(UnpackTextPart(path, 29, 0xFFFFFFFF, give, size), ErrorInvalidData);
    EXPECT_EQ(UnpackTextPart(folder.Path(u"none"), 29, 5, give, size), ErrorFileNotFound);
    EXPECT_EQ(PackTextPart(folder.Path(u"none"), 29, "x", packed), ErrorFileNotFound);
    EXPECT_EQ(CloseTextPart(folder.Path(u"none"), 25, 0, 0), itderrUnableToOpenFile);
    EXPECT_EQ(folder.FileCount(), 1U);
}

}  // namespace
}  // namespace generalutilities
