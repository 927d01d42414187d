// The stream of a document: what is written is read back, and damaged streams are refused.

#include "case_table.h"
#include "sample_document.h"
#include "seeded_random.h"

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

using namespace std::string_view_literals;

/// Whether a document that is written is read as the same one.
bool IsReadBack(const ItdDocument& document) {
    const std::string stream = SerializeTextPart(document);
    ItdTextHeader header;
    ItdDocument again;
    return ParseTextHeader(stream, header) == ItdParse::Complete &&
           header.targetLanguage == u"de-DE" && stream[header.targetLanguageOffset] == 5 &&
           ParseTextPart(stream, header.statusEntryCount, again) == ItdParse::Complete &&
           again.headerBytes == document.headerBytes &&
           again.statusEntries == document.statusEntries &&
           again.sourceSegments == document.sourceSegments &&
           again.commentStrings == document.commentStrings && again.gapBytes == document.gapBytes &&
           again.sectionWord == document.sectionWord &&
           again.targetSegments == document.targetSegments &&
           again.footerBytes == document.footerBytes && SerializeTextPart(again) == stream;
}

TEST(TextPart, WhatIsWrittenIsReadBack) {
    SeededRandom random;
    for (int i = 0; i < 3000; ++i) {
        ASSERT_TRUE(IsReadBack(RandomDocument(random)));
    }
}

/// A document of one record a section, the first of which looks like its own marker.
ItdDocument SmallDocument(std::u16string_view sourceText, std::uint32_t sectionWord = 7,
                          std::uint32_t targetPid = 1) {
    ItdDocument document;
    document.headerBytes = SampleHeader(1, true) + SampleStatusTable(1);
    document.statusEntries = {{1, 0.25}};
    document.sourceSegments = {
        document.Store(std::vector<ItdRecord>{{{0xFFFEFF, ItdLastOfSection, 2, 3}, sourceText}})};
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
            const auto number = [&row](std::size_t cell) {
                return static_cast<std::uint32_t>(std::stoul(Bytes(row[cell]), nullptr, 16));
            };
            ItdDocument document = SmallDocument(row[0], number(1), number(2));
            document.commentStrings.assign(commented ? 1 : 0, u"x" + row[0]);
            EXPECT_EQ(IsReadBack(document) ? u"same" : u"lost", row[commented ? 4 : 3])
                << testing::PrintToString(row) << commented;
        }
    }
}

/// A stream with one change: what comes of it when it is read, and written if it can be.
TEST(TextPart, ChangesAreReadOrRefused) {
    ItdDocument document = SmallDocument(u"Hi");
    document.commentStrings = {u"a", u"b"};
    const std::string stream = SerializeTextPart(document);
    for (const auto& row : CaseTable("changes.tsv")) {
        const std::string from = Bytes(row[0]);
        const std::string bytes =
            std::string(stream).replace(stream.find(from), from.size(), Bytes(row[1]));
        const ItdParse parse = ParseTextPart(bytes, 1, document);
        const std::string written = SerializeTextPart(document);
        const std::string outcome = parse != ItdParse::Complete
                                        ? std::to_string(static_cast<int>(parse))
                                    : written == stream ? "as before"
                                    : written == bytes  ? "as changed"
                                                        : "otherwise";
        EXPECT_EQ(outcome, Bytes(row[2])) << testing::PrintToString(row);
    }
}

TEST(TextHeader, WideStringsAreSkippedInEachForm) {
    const std::string rest = SampleHeader(5, true).substr(9);
    for (const auto& row : CaseTable("header_starts.tsv")) {
        const std::string header = std::string(8, '\0') + Bytes(row[0]) + rest;
        const bool known = row[1] == u"known";
        const std::size_t whole = known ? header.find(std::string(8, '\xFF')) : header.size() + 1;
        ItdTextHeader read;
        for (std::size_t size = 0; size <= header.size(); ++size) {
            EXPECT_EQ(ParseTextHeader(header.substr(0, size), read) == ItdParse::Complete,
                      size >= whole);
        }
        if (known) {
            EXPECT_EQ(read.sourceLanguage + read.targetLanguage, u"en-USde-DE");
            EXPECT_EQ(header.substr(read.sourceLanguageOffset, 6), "\5en-US");
            EXPECT_EQ(read.statusEntryCount, 5U);
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
