#include <generalutilities/code_pages.h>
#include <generalutilities/text/detection.h>

#include "case_table.h"

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

TEST(ChooseCodePage, FollowsTheRuns) {
    for (const auto& row : CaseTable("code_page_choice.tsv")) {
        const auto run = [&row](std::size_t i) -> Detection {
            std::istringstream cell(Bytes(row[i]));
            std::size_t count = 0;
            DetectedEncoding first{1033, 0, 0, 0};
            return cell >> count >> first.codePage >> first.confidence >> first.docPercent
                       ? Detection{DetectionStatus::Language, {count, first}}
                       : Detection{};
        };
        EXPECT_EQ(ChooseCodePage({run(0), run(1), run(2), run(3)}, 1251), Number(row[4]))
            << testing::PrintToString(row);
    }
}

}  // namespace
}  // namespace generalutilities
