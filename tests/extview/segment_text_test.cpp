#include <generalutilities/extview/segment_text.h>
#include <generalutilities/extview/source_key.h>

#include "case_table.h"
#include "seeded_random.h"

#include <string>

namespace generalutilities {
namespace {

// The obvious versions: they rewrite the text again and again, as the rules are told.

std::u16string RewriteCodeMarkers(std::u16string text) {
    constexpr auto None = std::u16string::npos;
    for (std::size_t p = text.find(u'\6'); p != None; p = text.find(u'\6')) {
        const std::size_t e7 = text.find(u'\7', p + 1);
        const std::size_t e8 = text.find(u'\b', p + 1);
        const std::size_t shownEnd = std::min(e7, e8);
        if (e8 != None) {
            text = text.substr(0, p) + text.substr(p + 1, shownEnd - p - 1) + text.substr(e8 + 1);
        } else if (e7 != None) {
            text = text.substr(0, p) + text.substr(p + 1, e7 - p - 1) + text.substr(e7 + 1);
        } else {
            text.erase(p, 1);
        }
    }
    std::erase(text, u'\7');
    std::erase(text, u'\b');
    return text;
}

std::u16string EraseBraces(std::u16string text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::size_t slashes = 0;
        while (slashes < i && text[i - 1 - slashes] == u'\\') {
            ++slashes;
        }
        if (text[i] == u'{' && slashes % 2 == 0) {
            const std::size_t end = text.find(u'}', i);
            // A stand-in keeps the neighbours of a removed group apart.
            text = text.substr(0, i) + u'\1' + (end == text.npos ? u"" : text.substr(end + 1));
        }
    }
    std::erase(text, u'\1');
    return text;
}

TEST(SegmentText, Tables) {
    const auto check = [](const char* table, auto function) {
        for (const auto& row : CaseTable(table)) {
            const std::int32_t langId = row.size() > 2 ? Number(row[2]) : 1033;
            EXPECT_EQ(function(row[0], langId), row[1]) << table;
        }
    };
    check("code_markers.tsv", [](const auto& text, auto) { return StripCodeMarkers(text); });
    check("braces.tsv", [](const auto& text, auto) { return StripBraces(text); });
    check("source_keys.tsv", MakeSourceKey);
    check("compare_forms.tsv", CompareForm);
}

TEST(SegmentText, AgreesWithTheObviousVersions) {
    SeededRandom random;
    for (int round = 0; round < 20000; ++round) {
        std::u16string marked, braced;
        for (auto length = random() % 14; length > 0; --length) {
            marked.push_back(u"\6\6\7\bxy"[random() % 6]);
            braced.push_back(u"{{}\\\\xy"[random() % 7]);
        }
        ASSERT_EQ(StripCodeMarkers(marked), RewriteCodeMarkers(marked))
            << testing::PrintToString(marked);
        ASSERT_EQ(StripBraces(braced), EraseBraces(braced)) << testing::PrintToString(braced);
    }
}

// A version that is not linear needs minutes for these.
TEST(SegmentText, StaysLinearOnHostileTexts) {
    constexpr std::size_t Million = 1'000'000;
    const auto repeated = [](std::u16string_view piece) {
        std::u16string text;
        while (text.size() < 2 * Million) {
            text.append(piece);
        }
        return text;
    };
    for (const std::u16string piece : {u"\6", u"\6\7", u"{"}) {
        EXPECT_EQ(StripBraces(StripCodeMarkers(repeated(piece))), u"");
    }
    EXPECT_EQ(StripCodeMarkers(repeated(u"\6a\7b\b")).size(), 2 * Million / 5);
    EXPECT_EQ(StripCodeMarkers(repeated(u"\6") + repeated(u"\b")), u"");
    for (const std::u16string piece : {u"\\", u"\\{"}) {
        EXPECT_EQ(StripBraces(repeated(piece) + u"\\{").size(), 2 * Million + 2);
    }
}

}  // namespace
}  // namespace generalutilities
