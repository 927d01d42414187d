#include "case_table.h"
#include "extview/rtf/control_word.h"
#include "extview/rtf/rtf_file_pager.h"
#include "memory_file.h"

namespace generalutilities {
namespace {

using testing::FileOf;

constexpr std::uint32_t Page = RtfFilePager::PageSize;

TEST(RtfFilePager, FindsTextAcrossPageBorders) {
    const std::string text = "\\stylesheet";
    for (std::uint32_t offset = Page - 14; offset <= Page + 2; ++offset) {
        // "\\\\sty" before it are beginnings that lead nowhere.
        const std::string content = std::string(offset - 5, 'x') + "\\\\sty" + text + "\\styles";
        RtfFilePager pager;
        ASSERT_TRUE(pager.Open(FileOf(content)));
        EXPECT_EQ(pager.Find(0, text), offset);
        EXPECT_EQ(pager.Find(offset, text), offset);
        EXPECT_EQ(pager.Find(offset + 1, text), RtfFilePager::NotFound);
    }
}

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

TEST(ControlWord, NameArgumentAndSpace) {
    for (const auto& row : CaseTable("control_words.tsv")) {
        const std::string text = Bytes(row[0]);
        const auto end = static_cast<std::uint32_t>(Number(row[4]));
        const auto nameEnd = static_cast<std::uint32_t>(Number(row[3]));
        // At the start of a file, at its end, and around the border of two pages.
        for (const std::uint32_t before :
             {0u, 40u, Page - 17, Page - 3, Page - 2, Page - 1, Page}) {
            for (const char* behind : {"", "}                    "}) {
                if (*behind == '\0' && before == 40) {
                    continue;
                }
                SCOPED_TRACE(text + " at " + std::to_string(before));
                RtfFilePager pager;
                ASSERT_TRUE(pager.Open(FileOf(std::string(before, '.') + text + behind)));
                std::string spill;
                const rtf::ControlWord word = rtf::ReadControlWord(pager, before, spill);
                EXPECT_EQ(word.name, Bytes(row[1]));
                EXPECT_EQ(word.argument, Number(row[2]));
                EXPECT_EQ(word.nameEnd - before, nameEnd);
                EXPECT_EQ(word.end - before, end);
                EXPECT_EQ(word.hasArgument, word.name.size() + 1 <= end && text.at(nameEnd) != ' ');
            }
        }
    }
}

TEST(ControlWordSet, FindsItsWordsAndThoseWithAMeaning) {
    rtf::ControlWordSet words;
    for (const char* name : {"row", "cell", "", "averyveryverylongcontrolword"}) {
        EXPECT_EQ(words.Find(name), nullptr);
        words.Add(name);
        EXPECT_TRUE(words.MayMatter(name));
        EXPECT_NE(words.Find(name), nullptr);
    }
    for (const char* name : {"u", "uc", "*", "rdblquote", "plain", "ts"}) {
        EXPECT_TRUE(words.MayMatter(name)) << name;
        EXPECT_NE(rtf::MeaningOf(name).kind, rtf::WordKind::Other) << name;
        EXPECT_EQ(words.Find(name), nullptr) << name;
    }
    EXPECT_EQ(rtf::MeaningOf("pard").kind, rtf::WordKind::Other);
    EXPECT_EQ(rtf::MeaningOf("").kind, rtf::WordKind::Other);
    words.Clear();
    EXPECT_EQ(words.Find("row"), nullptr);
    EXPECT_TRUE(words.MayMatter("par"));
}

}  // namespace
}  // namespace generalutilities
