#include "extview/rtf/rtf_file_pager.h"
#include "memory_file.h"

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

using testing::FileOf;

constexpr std::uint32_t Page = RtfFilePager::PageSize;

TEST(RtfFilePager, FindsNothingInWhatTheFileDoesNotHold) {
    RtfFilePager pager;
    EXPECT_EQ(pager.Find(0, "a"), RtfFilePager::NotFound);  // closed
    ASSERT_TRUE(pager.Open(FileOf("aab")));
    EXPECT_EQ(pager.Find(0, "ab"), 1u);
    EXPECT_EQ(pager.Find(0, "abc"), RtfFilePager::NotFound);
    EXPECT_EQ(pager.Find(3, "b"), RtfFilePager::NotFound);
    EXPECT_EQ(pager.Find(RtfFilePager::NotFound, "b"), RtfFilePager::NotFound);
    pager.Close();
    EXPECT_EQ(pager.Find(0, "a"), RtfFilePager::NotFound);  // nothing is left in the buffers
}

TEST(RtfFilePager, TwoDistantPlacesAreReadInTurnWithoutTheDisc) {
    std::string content(3 * Page, 'a');
    content[Page] = 'b';
    content[2 * Page + 1] = 'c';
    auto file = FileOf(content);
    const auto* reads = &file->reads;
    RtfFilePager pager;
    ASSERT_TRUE(pager.Open(std::move(file)));
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(pager.ByteAt(Page), 'b');
        EXPECT_EQ(pager.ByteAt(2 * Page + 1), 'c');
    }
    EXPECT_EQ(*reads, 2);
    std::string bytes;
    pager.Read(Page - 2, 4, bytes);
    EXPECT_EQ(bytes, "aaba");
    pager.Read(3 * Page - 1, 4, bytes);
    EXPECT_EQ(bytes, "a");
}

TEST(RtfFilePager, RefusesFilesOf4GiB) {
    for (const std::uint64_t size : {std::uint64_t{0xFFFFFFFF}, std::uint64_t{1} << 32}) {
        auto file = FileOf("x");
        file->reportedSize = size;
        RtfFilePager pager;
        EXPECT_FALSE(pager.Open(std::move(file)));
        EXPECT_EQ(pager.FileSize(), 0u);
    }
}

TEST(RtfFilePager, AFailedReadEndsTheFile) {
    auto file = FileOf(std::string(3 * Page, 'a'));
    file->failingRead = 2;
    RtfFilePager pager;
    ASSERT_TRUE(pager.Open(std::move(file)));
    EXPECT_EQ(pager.ByteAt(0), 'a');
    EXPECT_FALSE(pager.ReadFailed());
    EXPECT_EQ(pager.ByteAt(Page), '\0');
    EXPECT_TRUE(pager.ReadFailed());
    EXPECT_EQ(pager.FileSize(), Page);

    file = FileOf(std::string(10, 'a'));
    file->reportedSize = 20;  // the file has become shorter since it was opened
    ASSERT_TRUE(pager.Open(std::move(file)));
    EXPECT_FALSE(pager.ReadFailed());
    EXPECT_EQ(pager.BytesFrom(5).size(), 5u);
    EXPECT_TRUE(pager.ReadFailed());
    EXPECT_TRUE(pager.BytesFrom(10).empty());
}

}  // namespace
}  // namespace generalutilities
