// The stream of a document: what is written is read back, and damaged streams are refused.

#include "sample_document.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace generalutilities {
namespace {

using namespace std::string_view_literals;

void ExpectSameSegments(std::span<const ItdSegment> a, std::span<const ItdSegment> b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        ASSERT_EQ(a[i].Stored(), b[i].Stored()) << i;
    }
}

/// Whether bytes that are no marker stand where the format takes them for one.
bool IsAmbiguous(const ItdDocument& document) {
    const bool longWord = document.sectionWord > 0xFFFF;
    std::string between = longWord ? "\xFF\xFF" : "";
    between.append(reinterpret_cast<const char*>(&document.sectionWord), longWord ? 4 : 2);
    const std::u16string_view head = document.targetSegments[0].Stored();
    between.append(reinterpret_cast<const char*>(head.data()), 19);
    const std::size_t found = between.find("\xFF\xFE"sv);
    const ItdBlock first = (*document.sourceSegments[0].begin()).block;
    const std::string start(reinterpret_cast<const char*>(&first), sizeof first);
    return start.find("\xFF\xFE"sv) != start.npos ||
           (found != between.size() - 3 && between.substr(found, 3) == "\xFF\xFE\xFF"sv) ||
           (document.commentStrings.empty() && between.substr(2, 2) == "\xFF\xFE"sv);
}

TEST(TextPart, WhatIsWrittenIsReadBack) {
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    int read = 0;
    for (int i = 0; i < 3000; ++i) {
        const ItdDocument document = RandomDocument(random);
        if (IsAmbiguous(document)) {
            continue;
        }
        ++read;
        const std::string stream = SerializeTextPart(document);
        ItdTextHeader header;
        ASSERT_EQ(ParseTextHeader(stream, header), ItdParse::Complete);
        ASSERT_EQ(header.targetLanguage, u"de-DE");
        ASSERT_EQ(stream[header.targetLanguageOffset], 5);
        ItdDocument again;
        ASSERT_EQ(ParseTextPart(stream, header.statusEntryCount, again), ItdParse::Complete);
        ASSERT_EQ(again.headerBytes, document.headerBytes);
        ExpectSameSegments(again.sourceSegments, document.sourceSegments);
        ExpectSameSegments(again.targetSegments, document.targetSegments);
        ASSERT_EQ(again.commentStrings, document.commentStrings);
        ASSERT_EQ(again.sectionWord, document.sectionWord);
        ASSERT_EQ(again.gapBytes, "");
        ASSERT_EQ(again.footerBytes, document.footerBytes);
        ASSERT_EQ(again.statusEntries, document.statusEntries);
        ASSERT_EQ(SerializeTextPart(again), stream);
    }
    EXPECT_GT(read, 1000);
}

TEST(TextPart, DamageIsRefusedOrHarmless) {
    std::mt19937 random(7);
    for (int i = 0; i < 20; ++i) {
        ItdDocument document = RandomDocument(random);
        const std::string stream = SerializeTextPart(document);
        if (stream.size() > 2000) {
            continue;
        }
        const auto entries = static_cast<std::uint32_t>(document.statusEntries.size());
        const auto parse = [&](std::string_view bytes) {
            ItdTextHeader header;
            ParseTextHeader(bytes, header);
            const ItdParse result = ParseTextPart(bytes, entries, document);
            if (result == ItdParse::Complete) {
                SerializeTextPart(document);
            } else {
                EXPECT_TRUE(result == ItdParse::NoTextPart || result == ItdParse::FaultyStream);
            }
            return result;
        };
        for (std::size_t at = 0; at < stream.size(); ++at) {
            parse(stream.substr(0, at));
            for (const std::string_view damage : {"\0"sv, "\xFF"sv, "\xFF\xFE"sv, "\xFF\xFF"sv,
                                                  "\xFF\xFF\xFF\x7F"sv, "\xFF\xFF\xFF\xFF"sv}) {
                std::string bytes = stream;
                bytes.replace(at, damage.size(), damage);
                parse(bytes);
                bytes = stream;
                parse(bytes.insert(at, damage));
            }
        }
        const std::size_t text = stream.size() - document.footerBytes.size();
        EXPECT_NE(parse(std::string_view(stream).substr(0, text - 1)), ItdParse::Complete);
        ItdDocument unread;
        EXPECT_EQ(ParseTextPart(stream, 0xFFFFFFFF, unread), ItdParse::FaultyStream);
    }
}

}  // namespace
}  // namespace generalutilities
