#include "platform/files/files.h"

#include "database/temporary_folder.h"
#include "platform/files/utf8.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace generalutilities::files {
namespace {

TEST(Utf8, KeepsEveryScalarValueAndRefusesUnpairedSurrogates) {
    for (char32_t point = 0; point <= 0x10FFFF; ++point) {
        const bool surrogate = point >= 0xD800 && point < 0xE000;
        std::u16string text;
        if (point >= 0x10000) {
            text += static_cast<char16_t>(0xD7C0 + (point >> 10));
        }
        text += static_cast<char16_t>(point < 0x10000 ? point : 0xDC00 + (point & 0x3FF));
        const auto bytes = ToUtf8(text);
        ASSERT_EQ(bytes.has_value(), !surrogate) << std::hex << std::uint32_t{point};
        ASSERT_EQ(FromUtf8(ToUtf8Lossy(text)), surrogate ? u"\uFFFD" : text)
            << std::hex << std::uint32_t{point};
    }
}

TEST(Utf8, MarksEachByteThatIsPartOfNoSequence) {
    for (const char* bytes : {"\x80", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80",
                              "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5", "\xFF", "\xE2\x82"}) {
        const std::u16string marks(std::string_view(bytes).size(), u'\uFFFD');
        EXPECT_EQ(FromUtf8(std::string("a") + bytes + "b"), u"a" + marks + u"b");
    }
}

TEST(Files, ReadsAtAnyOffsetAndStopsAtTheEnd) {
    const TemporaryFolder folder;
    const std::u16string path = folder.Path(u"\u4E2D\U0001F600 a.bin");
    std::ofstream(ToNativePath(path), std::ios::binary) << "0123456789";
    const auto file = OpenForReading(path);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->Size(), 10U);
    struct Case {
        std::uint64_t offset;
        std::size_t length;
        const char* expected;
    };
    for (const Case& c : {Case{0, 10, "0123456789"}, Case{3, 4, "3456"}, Case{8, 16, "89"},
                          Case{10, 1, ""}, Case{11, 1, ""}, Case{UINT64_MAX, 5, ""}}) {
        char buffer[16];
        std::size_t read = 99;
        EXPECT_TRUE(file->ReadAt(c.offset, buffer, c.length, read));
        EXPECT_EQ(std::string(buffer, read), c.expected) << c.offset;
    }
}

TEST(Files, RefusesWhatIsNoRegularFile) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo(ToNativePath(folder.Path(u"pipe")).c_str(), 0600), 0);
    struct Case {
        std::u16string path;
        int error;
    };
    for (const Case& c : {Case{folder.Path(u"missing"), ENOENT}, Case{folder.Path(u""), EISDIR},
                          Case{folder.Path(u"pipe"), EINVAL}, Case{u"", ENOENT},
                          Case{folder.Path(u"a\xD800"), ENOENT},
                          Case{folder.Path(std::u16string(u"pipe\0x", 6)), ENOENT}}) {
        errno = ENOTTY;
        EXPECT_FALSE(OpenForReading(c.path));
        EXPECT_EQ(errno, c.error) << ToUtf8Lossy(c.path);
    }
}

}  // namespace
}  // namespace generalutilities::files
