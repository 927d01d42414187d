#include <generalutilities/code_pages.h>
#include <generalutilities/text/detection.h>

#include "case_table.h"

#include <random>
#include <string>

namespace generalutilities {
namespace {

using namespace std::string_literals;

std::string Encode(std::uint32_t codePage, std::u16string_view text) {
    // The Vietnamese page has tones as marks of their own.
    std::u16string parts;
    for (const char16_t unit : text) {
        if (codePage == 1258 && unit >= 0x1EA0) {
            parts += unit == u'ể' ? u"ê\u0309" : unit == u'ở' ? u"ơ\u0309" : u"â\u0323";
        } else {
            parts += unit;
        }
    }
    const auto converter = OpenCodePage(codePage);
    EXPECT_EQ(converter->FindForeignUnit(parts), CodePageConverter::NotFound) << codePage;
    std::string bytes(converter->MeasureBytes(parts), '\0');
    converter->ToBytes(parts, bytes.data());
    return bytes;
}

Detection Plain(std::string_view bytes, std::uint32_t preferred = 0) {
    return DetectEncodings(bytes, DetectionMode::PlainText, preferred, 10);
}

TEST(Detection, NamesPageAndLanguageOfShortTexts) {
    for (const auto& row : CaseTable("detection.tsv")) {
        SCOPED_TRACE(testing::PrintToString(row));
        const auto codePage = static_cast<std::uint32_t>(Number(row[0]));
        const std::string bytes = Encode(codePage, row[2]);
        const Detection found = Plain(bytes);
        ASSERT_EQ(found.status, DetectionStatus::Language);
        EXPECT_EQ(found.encodings[0].codePage, Number(row[0]));
        EXPECT_EQ(found.encodings[0].langId, Number(row[1]));
        EXPECT_EQ(DetectCodePage(bytes, 0), Number(row[0]));
        EXPECT_EQ(DetectLanguage(bytes), Number(row[1]));
    }
}

TEST(Detection, SaysNothingWhereNothingCanBeSaid) {
    for (const std::string& bytes : {""s, "123 - 456"s, "\r\n"s, std::string(40, '\0')}) {
        EXPECT_EQ(Plain(bytes).status, DetectionStatus::Failed);
        EXPECT_EQ(DetectCodePage(bytes, 1251), 1251);
        EXPECT_EQ(DetectLanguage(bytes), std::nullopt);
    }
    const Detection symbols = Plain("\xE2\x82\xAC 100");
    EXPECT_EQ(symbols.status, DetectionStatus::NoLanguage);
    EXPECT_EQ(symbols.encodings.at(0).codePage, 65001);
}

TEST(Detection, TakesTheHintOnlyWhereTheBytesLeaveItOpen) {
    EXPECT_EQ(Plain("plain letters", 1251).encodings.at(0).codePage, 1251);
    EXPECT_EQ(Plain("plain letters", 99999).encodings.at(0).codePage, 1252);
    EXPECT_EQ(Plain("caf\xE9 cr\xE8me", 1254).encodings.at(0).codePage, 1254);
    EXPECT_EQ(Plain(Encode(1253, u"Το αρχείο δεν βρέθηκε"), 1251).encodings.at(0).codePage, 1253);
}

TEST(Detection, ReadsTheTextOfMarkupAlone) {
    const std::string page =
        "<html lang=\"en\"><!-- the head of the page > --><style>body { color: black }</style>"
        "<SCRIPT>if (a < b) { window.alert('this is an English script') }</SCRIPT><p "
        "class='first'>" +
        Encode(1253, u"Το αρχείο &nbsp; δεν βρέθηκε, 1 < 2") + "</p><a href";
    const auto plain = Plain(page).encodings;
    const auto markup = DetectEncodings(page, DetectionMode::Markup, 0, 10).encodings;
    ASSERT_FALSE(plain.empty());
    ASSERT_FALSE(markup.empty());
    EXPECT_EQ(markup[0].codePage, 1253);
    EXPECT_EQ(markup[0].docPercent, 100);
    EXPECT_EQ(plain[0].langId, 1033);
    EXPECT_EQ(DetectLanguage(page), 1032);
    EXPECT_EQ(DetectCodePage(page, 0), 1253);
    EXPECT_EQ(DetectLanguage("<html><body></body></html>"), std::nullopt);
}

// The part that is looked at is small; the page has to hold for all of the input all the same.
TEST(Detection, NamesNoPageThatCannotDecodeTheInput) {
    std::string greek = Encode(1253, u"Το αρχείο δεν βρέθηκε ");
    for (int doubling = 0; doubling < 10; ++doubling) {
        greek += greek;
    }
    EXPECT_EQ(Plain(greek).encodings.at(0).codePage, 1253);
    EXPECT_NE(Plain(greek + '\xFF').encodings.at(0).codePage, 1253);
    const std::string japanese = Encode(932, u"ファイルを開くことができません");
    for (const DetectedEncoding& reading : Plain(japanese + '\x83').encodings) {
        EXPECT_NE(reading.codePage, 932);
    }
}

TEST(Detection, LivesWithAnyBytes) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int round = 0; round < 300; ++round) {
        std::string bytes(random() % 100, '\0');
        const unsigned range = 1 + random() % 256;
        for (char& byte : bytes) {
            byte = static_cast<char>(random() % range);
        }
        for (const auto mode : {DetectionMode::PlainText, DetectionMode::Markup}) {
            const Detection found = DetectEncodings(bytes, mode, random() % 1300, 4);
            EXPECT_EQ(found.encodings.empty(), found.status == DetectionStatus::Failed);
            EXPECT_LE(found.encodings.size(), 4u);
            for (const DetectedEncoding& reading : found.encodings) {
                EXPECT_EQ(OpenCodePage(static_cast<std::uint32_t>(reading.codePage))
                              ->FindUndefinedBytes(bytes),
                          CodePageConverter::NotFound);
            }
        }
    }
}

/// A run with this many results, the first of which has this page, confidence and share.
Detection FakeRun(std::size_t count, std::int32_t codePage = 0, std::int32_t confidence = 50,
                  std::int32_t docPercent = 50) {
    if (count == 0) {
        return {};
    }
    return {DetectionStatus::Language, {count, {1033, codePage, docPercent, confidence}}};
}

TEST(ChooseCodePage, FollowsTheRuns) {
    constexpr std::int32_t Default = 1251;
    const Detection failed = FakeRun(0);
    const Detection ran = FakeRun(1, 7);
    const Detection plain = FakeRun(2, 1, 50, 50);
    const struct {
        const char* what;
        DetectionRuns runs;
        std::int32_t expected;
    } cases[] = {
        {"both failed", {failed, failed, ran, ran}, Default},
        {"plain failed", {failed, FakeRun(9, 2), failed, failed}, 2},
        {"markup failed", {plain, failed, failed, ran}, 1},
        {"preferred markup failed", {plain, FakeRun(1, 2), failed, failed}, 1},
        {"preferred plain failed", {plain, FakeRun(9, 2, 1, 1), failed, ran}, 2},
        {"markup has fewer", {plain, FakeRun(1, 2, 1, 1), ran, ran}, 2},
        {"markup has more", {plain, FakeRun(3, 2, 99, 99), ran, ran}, 1},
        {"markup is better in both", {plain, FakeRun(2, 2, 51, 51), ran, ran}, 2},
        {"markup is only more confident", {plain, FakeRun(2, 2, 51, 50), ran, ran}, 1},
        {"markup has only the higher share", {plain, FakeRun(2, 2, 50, 51), ran, ran}, 1},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(ChooseCodePage(test.runs, Default), test.expected) << test.what;
    }
}

}  // namespace
}  // namespace generalutilities
