#include "platform/code_pages/code_pages.h"

#include "case_table.h"

#include <random>
#include <thread>
#include <vector>

namespace generalutilities {
namespace {

std::u16string Decode(std::uint32_t codePage, std::string_view bytes) {
    std::u16string text = u"<";
    EXPECT_TRUE(code_pages::AppendDecoded(codePage, bytes, text)) << codePage;
    return text.substr(1);
}

TEST(CodePages, DecodeByNumber) {
    for (const auto& row : CaseTable("code_pages.tsv")) {
        EXPECT_EQ(Decode(static_cast<std::uint32_t>(Number(row[0])), Bytes(row[1])), row[2]);
    }
    // A half character at the end leaves nothing behind for the next call.
    EXPECT_EQ(Decode(932, "\x83"), u"\uFFFD");
    EXPECT_EQ(Decode(932, "\x65"), u"e");
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

std::string Encode(CodePageConverter& converter, std::u16string_view text) {
    std::string bytes(converter.MeasureBytes(text), '\0');
    converter.ToBytes(text, bytes.data());
    return bytes;
}

std::u16string Decode(CodePageConverter& converter, std::string_view bytes) {
    std::u16string text(converter.MeasureUnits(bytes), u'\0');
    converter.ToUnits(bytes, text.data());
    return text;
}

/// Of every page that is served: a character is in it when it comes back the same, and only then.
/// The pages with a state are sampled.
TEST(CodePages, HoldExactlyWhatComesBack) {
    for (const CodePageDescription& page : KnownCodePages()) {
        const auto converter = OpenCodePage(page.number);
        ASSERT_EQ(converter != nullptr, page.service != CodePageService::None) << page.number;
        if (converter == nullptr) {
            continue;
        }
        const bool isTable = converter->MeasureUnits("\x1B$B\x80\x30\x80\x30") >= 6;
        std::size_t held = 0;
        for (std::uint32_t unit = 0; unit < 0xFFFE; unit += isTable ? 1 : 41) {
            const auto character = static_cast<char16_t>(unit);
            const std::u16string_view text(&character, 1);
            const std::size_t foreign = converter->FindForeignUnit(text);
            const bool comesBack = Decode(*converter, Encode(*converter, text)) == text;
            // The mark itself comes back from what is not in the page, and ISCII reads some
            // characters only beside others.
            if (character != 0xFFFD && page.number / 100 != 570) {
                ASSERT_EQ(foreign == CodePageConverter::NotFound, comesBack)
                    << page.number << " U+" << std::hex << unit;
            }
            held += comesBack ? 1 : 0;
        }
        EXPECT_GT(held, isTable ? 120u : 5u) << page.number;
    }
}

// Blocks, runs and both ends of them: a text converts like its characters one by one.
TEST(CodePages, LongTextsConvertLikeTheirCharacters) {
    const std::uint32_t seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (const std::uint32_t number :
         {1252u, 1250u, 1251u, 1253u, 1256u, 37u, 42u, 932u, 949u, 1361u, 65001u}) {
        const auto page = OpenCodePage(number);
        std::u16string own;
        for (std::uint32_t unit = 0x80; unit < 0xFFFE; unit += unit < 0x600 ? 1 : 7) {
            const auto character = static_cast<char16_t>(unit);
            if (page->FindForeignUnit({&character, 1}) == CodePageConverter::NotFound) {
                own += character;
            }
        }
        for (int round = 0; round < 40; ++round) {
            std::u16string text;
            std::string bytes;
            std::u16string back;
            while (text.size() < 600 || (round == 0 && text.size() < 9000)) {
                const bool ascii = random() % 2 == 0;
                for (std::size_t left = random() % (round * 5 + 2); left > 0; --left) {
                    text +=
                        ascii ? static_cast<char16_t>(random() % 0x80) : own[random() % own.size()];
                    bytes += Encode(*page, {&text.back(), 1});
                    back += Decode(*page, Encode(*page, {&text.back(), 1}));
                }
                text += random() % 4 == 0 ? static_cast<char16_t>(random() % 0xD800) : u'.';
                bytes += Encode(*page, {&text.back(), 1});
                back += Decode(*page, Encode(*page, {&text.back(), 1}));
            }
            ASSERT_EQ(Encode(*page, text), bytes) << number;
            ASSERT_EQ(Decode(*page, bytes), back) << number;
        }
    }
}

TEST(CodePages, AnswerTheSameTwice) {
    for (const auto& row : CaseTable("code_page_calls.tsv")) {
        const auto page = OpenCodePage(static_cast<std::uint32_t>(Number(row[0])));
        for (int call = 0; call < 2; ++call) {
            std::ostringstream answer;
            if (row[1] == u"undefined") {
                answer << static_cast<std::ptrdiff_t>(page->FindUndefinedBytes(Bytes(row[2])));
            } else if (row[1] == u"foreign") {
                answer << static_cast<std::ptrdiff_t>(page->FindForeignUnit(row[2]));
            } else if (row[1] == u"bytes") {
                answer << Encode(*page, row[2]);
            } else {
                for (std::size_t i = 0; i <= page->MeasureUnits(Bytes(row[2])); ++i) {
                    answer << page->OffsetOfUnit(Bytes(row[2]), i) << ",";
                }
            }
            EXPECT_EQ(answer.str(), Bytes(row[3])) << testing::PrintToString(row);
        }
    }
    const std::string far = std::string(9000, 'a') + "\xC3\xA9z\xC3";
    EXPECT_EQ(OpenCodePage(65001)->OffsetOfUnit(far, 9001), 9002u);
    EXPECT_EQ(OpenCodePage(65001)->FindUndefinedBytes(far), 9003u);
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
                const auto stateful = OpenCodePage(50220);
                EXPECT_EQ(Encode(*stateful, u"日"), "\x1B$BF|\x1B(B");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
}  // namespace generalutilities
