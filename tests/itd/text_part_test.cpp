// The stream of a document: what is written is read back, and damaged streams are refused.

#include "case_table.h"
#include "sample_document.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace generalutilities {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

bool SameSegments(std::span<const ItdSegment> a, std::span<const ItdSegment> b) {
    return std::ranges::equal(a, b, {}, &ItdSegment::Stored, &ItdSegment::Stored);
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
        ASSERT_TRUE(SameSegments(again.sourceSegments, document.sourceSegments));
        ASSERT_TRUE(SameSegments(again.targetSegments, document.targetSegments));
        ASSERT_EQ(again.commentStrings, document.commentStrings);
        ASSERT_EQ(again.sectionWord, document.sectionWord);
        ASSERT_EQ(again.gapBytes, "");
        ASSERT_EQ(again.footerBytes, document.footerBytes);
        ASSERT_EQ(again.statusEntries, document.statusEntries);
        ASSERT_EQ(SerializeTextPart(again), stream);
    }
    EXPECT_GT(read, 1000);
}

/// A document of one record a section.
ItdDocument SmallDocument(std::u16string_view sourceText, std::uint32_t sectionWord = 7,
                          std::uint32_t targetPid = 1) {
    ItdDocument document;
    document.headerBytes = SampleHeader(0, true);
    document.sourceSegments = {
        document.Store(std::vector<ItdRecord>{{{1, ItdLastOfSection, 2, 3}, sourceText}})};
    document.targetSegments = {
        document.Store(std::vector<ItdRecord>{{{targetPid, ItdLastOfSection, 2, 3}, u"target"}})};
    document.sectionWord = sectionWord;
    document.footerBytes = "footer";
    return document;
}

/// The search for the target section among bytes that look like something else.
TEST(TextPart, SectionsAreFoundAmongLookalikes) {
    for (const auto& row : CaseTable("lookalikes.tsv")) {
        for (const bool commented : {false, true}) {
            SCOPED_TRACE(testing::PrintToString(row) + (commented ? " commented" : ""));
            const auto number = [&row](std::size_t cell) {
                return static_cast<std::uint32_t>(std::stoul(Bytes(row[cell]), nullptr, 16));
            };
            ItdDocument document = SmallDocument(row[0], number(1), number(2));
            if (commented) {
                document.commentStrings = {row[0].empty() ? u"x" : u"x" + row[0]};
            }
            const std::string stream = SerializeTextPart(document);
            ItdDocument again;
            const bool same = ParseTextPart(stream, 0, again) == ItdParse::Complete &&
                              again.sectionWord == document.sectionWord && again.gapBytes.empty() &&
                              again.commentStrings == document.commentStrings &&
                              SerializeTextPart(again) == stream;
            EXPECT_EQ(same ? u"same" : u"lost", row[commented ? 4 : 3]);
        }
    }
}

TEST(TextPart, UnknownBytesBetweenTheSectionsStay) {
    for (std::size_t gap = 1; gap < 40; ++gap) {
        ItdDocument document = SmallDocument(u"source");
        document.gapBytes = std::string(gap, '\x05');
        const std::string stream = SerializeTextPart(document);
        ItdDocument again;
        ASSERT_EQ(ParseTextPart(stream, 0, again), ItdParse::Complete) << gap;
        EXPECT_EQ(again.gapBytes, document.gapBytes);
        EXPECT_EQ((*again.targetSegments[0].begin()).text, u"target");
        EXPECT_EQ(SerializeTextPart(again), stream);
    }
}

TEST(TextPart, LengthsAreReadInEachFormAndWrittenInTheShortest) {
    const std::string stream = SerializeTextPart(SmallDocument(u"Hi"));
    const std::size_t at = stream.find("\xFF\xFE\xFF\2"s) + 2;
    for (const std::string& form : {"\xFF\xFF\2\0"s, "\xFF\xFF\xFF\xFF\2\0\0\0"s}) {
        ItdDocument document;
        ASSERT_EQ(ParseTextPart(std::string(stream).replace(at, 2, form), 0, document),
                  ItdParse::Complete);
        EXPECT_EQ((*document.sourceSegments[0].begin()).text, u"Hi");
        EXPECT_EQ(SerializeTextPart(document), stream);
    }
}

TEST(TextHeader, WideStringsAreSkippedInEachForm) {
    const std::string rest = SampleHeader(5, true).substr(9);
    const struct {
        std::string start;  ///< from the byte that tells the kind on
        bool known;
    } cases[] = {
        {"\x07", true},
        {"\xFF?\xFF\0\1c!"s, true},
        {"\xFF?\xFF\2a\0b\0\0!"s, true},
        {"\xFF?\xFF\xFF\1\0a\0\2cc!"s, true},
        {"\xFF?\xFE\0\1c!"s, false},
        {"\xFF?\0\xFF\1c!"s, false},
    };
    for (const auto& row : cases) {
        const std::string header = std::string(8, '\0') + row.start + rest;
        ItdTextHeader read;
        EXPECT_EQ(ParseTextHeader(header, read) == ItdParse::Complete, row.known);
        if (!row.known) {
            continue;
        }
        EXPECT_EQ(read.sourceLanguage + read.targetLanguage, u"en-USde-DE");
        EXPECT_EQ(header.substr(read.sourceLanguageOffset, 6), "\5en-US");
        EXPECT_EQ(read.statusEntryCount, 5U);
        const std::size_t whole = header.find(std::string(8, '\xFF'));
        for (std::size_t size = 0; size <= whole; ++size) {
            EXPECT_EQ(ParseTextHeader(header.substr(0, size), read) == ItdParse::Complete,
                      size == whole);
        }
    }
}

TEST(TextPart, DamageIsRefusedOrHarmless) {
    std::mt19937 random(7);
    for (int i = 0; i < 20; ++i) {
        const ItdDocument document = RandomDocument(random);
        const std::string stream = SerializeTextPart(document);
        const auto entries = static_cast<std::uint32_t>(document.statusEntries.size());
        // A status table behind the last record is wanted whole.
        const std::size_t wanted = stream.size() - (entries == 0 ? document.footerBytes.size() : 0);
        ItdDocument again;
        EXPECT_EQ(ParseTextPart(stream, 0xFFFFFFFF, again), ItdParse::FaultyStream);
        for (std::size_t at = 0; at < stream.size() && stream.size() < 2000; ++at) {
            EXPECT_EQ(ParseTextPart(stream.substr(0, at), entries, again) == ItdParse::Complete,
                      at >= wanted);
            for (const std::string_view damage : {"\0"sv, "\xFF"sv, "\xFF\xFE"sv, "\xFF\xFF"sv,
                                                  "\xFF\xFF\xFF\x7F"sv, "\xFF\xFF\xFF\xFF"sv}) {
                std::string bytes = stream;
                bytes.replace(at, damage.size(), damage);
                if (ParseTextPart(bytes, entries, again) == ItdParse::Complete) {
                    SerializeTextPart(again);
                }
            }
        }
    }
}

}  // namespace
}  // namespace generalutilities
