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

/// Whether a stream is read as the document that it was made of.
bool IsReadBack(const ItdDocument& document, const std::string& stream) {
    ItdTextHeader header;
    ItdDocument again;
    return ParseTextHeader(stream, header) == ItdParse::Complete &&
           header.targetLanguage == u"de-DE" && stream[header.targetLanguageOffset] == 5 &&
           ParseTextPart(stream, header.statusEntryCount, again) == ItdParse::Complete &&
           again.headerBytes == document.headerBytes &&
           again.statusEntries == document.statusEntries &&
           SameSegments(again.sourceSegments, document.sourceSegments) &&
           again.commentStrings == document.commentStrings && again.gapBytes == document.gapBytes &&
           again.sectionWord == document.sectionWord &&
           SameSegments(again.targetSegments, document.targetSegments) &&
           again.footerBytes == document.footerBytes && SerializeTextPart(again) == stream;
}

/// Whether bytes that are no marker stand where the format takes them for one.
bool IsAmbiguous(const ItdDocument& document) {
    const bool longWord = document.sectionWord > 0xFFFF;
    std::string between = longWord ? "\xFF\xFF" : "";
    between.append(reinterpret_cast<const char*>(&document.sectionWord), longWord ? 4 : 2);
    const std::u16string_view head = document.targetSegments[0].Stored();
    between.append(reinterpret_cast<const char*>(head.data()), 19);
    const std::size_t marker = between.size() - 3;
    const bool isLikeComments = document.commentStrings.empty() &&
                                between.substr(0, 2) != "\0\0"sv &&
                                between.substr(2, 2) == "\xFF\xFE"sv;
    const ItdBlock first = (*document.sourceSegments[0].begin()).block;
    const std::string start(reinterpret_cast<const char*>(&first), sizeof first);
    const bool tableIsEarly = document.footerBytes.empty() && !document.statusEntries.empty();
    return (!tableIsEarly && start.find("\xFF\xFE"sv) != start.npos) ||
           (document.gapBytes.empty()
                ? isLikeComments || between.find("\xFF\xFE\xFF"sv, 18) != marker
                : between.find("\xFF\xFE"sv) != marker);
}

TEST(TextPart, WhatIsWrittenIsReadBack) {
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    int read = 0;
    for (int i = 0; i < 3000; ++i) {
        const ItdDocument document = RandomDocument(random);
        if (!IsAmbiguous(document)) {
            ASSERT_TRUE(IsReadBack(document, SerializeTextPart(document)));
            ++read;
        }
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
            EXPECT_EQ(IsReadBack(document, SerializeTextPart(document)) ? u"same" : u"lost",
                      row[commented ? 4 : 3]);
        }
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
