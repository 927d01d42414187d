// The operations on tags beside the textbook, on random texts.

#include "textbook.h"

#include <generalutilities/tagged/serialize_codes.h>

#include <gtest/gtest.h>
#include <random>

namespace generalutilities {
namespace {

class Textbook : public testing::Test {
  protected:
    /// Pieces in random order.
    std::u16string Draw(std::initializer_list<const char16_t*> pieces, std::size_t most) {
        std::u16string text;
        for (std::size_t count = random() % (most + 1); count > 0; --count) {
            text += pieces.begin()[random() % pieces.size()];
        }
        return text;
    }

    const unsigned seed = std::random_device()();
    std::mt19937 random{seed};
    const testing::ScopedTrace trace{__FILE__, __LINE__, "seed " + std::to_string(seed)};
};

TEST_F(Textbook, CutsAndStripsAlike) {
    for (int i = 0; i < 20000; ++i) {
        const std::u16string text = Draw(
            {u"<df font=\"A\" a=\"1\">", u"<df a=\"1\">", u"<df fonts=\"\">", u"</df>", u"</df>",
             u"<", u">", u" ", u"<ut>", u"</uT", u"<df", u" Font=\"\"", u" b=\"2\"", u"<b>", u"x"},
            16);
        SCOPED_TRACE(testing::PrintToString(text));
        const std::u16string stripped = StripFontAttributes(text);
        ASSERT_EQ(stripped, textbook::StripFontAttributes(text));
        ASSERT_EQ(StripFontAttributes(stripped), stripped);
        TagScan scan;
        textbook::Scan expected;
        const auto fault = ScanTags(text, scan);
        ASSERT_EQ(fault ? std::optional(fault->kind) : std::nullopt,
                  textbook::ScanTags(text, expected));
        ASSERT_TRUE(std::ranges::equal(scan.texts, expected.texts));
        ASSERT_TRUE(std::ranges::equal(scan.tags, expected.tags));
    }
}

TEST_F(Textbook, SerializesAlike) {
    for (int i = 0; i < 20000; ++i) {
        std::vector<std::u16string> texts(1 + random() % 4), marked;
        std::vector<TagScan> scans(texts.size());
        const std::size_t most = random() % 20;
        for (std::size_t t = 0; t < texts.size(); ++t) {
            texts[t] = i % 2 == 0 ? Draw({u"<a>", u"<b>", u"<c>", u"<d>", u"x"}, most)
                                  : Draw({u"<a>", u"<b>", u"<a>", u"<b>", u"<c>", u"x"}, most);
            ASSERT_FALSE(ScanTags(texts[t], scans[t]));
        }
        SCOPED_TRACE(testing::PrintToString(texts));
        const auto codes = textbook::SerializeCodes(scans, 7, marked);
        const SerializedCodes result = SerializeCodes(scans, 7);
        ASSERT_EQ(result.texts, marked);
        ASSERT_EQ(result.lastNumber, 7 + static_cast<int>(codes.size()));
        std::int32_t number = 7;
        for (const std::u16string_view code : result.codes) {
            ASSERT_EQ(code, codes.at(++number));
        }
    }
}

}  // namespace
}  // namespace generalutilities
