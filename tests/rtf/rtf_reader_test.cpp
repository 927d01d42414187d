#include "extview/rtf/rtf_reader.h"

#include "case_table.h"
#include "sample_head.h"

namespace generalutilities {
namespace {

using testing::FileOf;
using testing::Head;
using testing::RecordingReader;
using testing::TextOf;

TEST(RtfReader, Texts) {
    for (const auto& row : CaseTable("reader_texts.tsv")) {
        EXPECT_EQ(TextOf(Bytes(row[0])), row[1]) << Bytes(row[0]);
    }
}

void OpenBody(RecordingReader& reader, std::string_view body) {
    reader.controlWords.Add("cell");
    reader.controlWords.Add("row");
    reader.events.origin = static_cast<std::uint32_t>(Head.size());
    EXPECT_TRUE(reader.Open(FileOf(Head + std::string(body))));
    EXPECT_TRUE(reader.Prepare());
}

TEST(RtfReader, RunsTheirPlacesAndStops) {
    for (const auto& row : CaseTable("reader_runs.tsv")) {
        const auto stopAt = static_cast<std::size_t>(Number(row[0]));
        RecordingReader reader;
        OpenBody(reader, Bytes(row[1]));
        reader.events.goOn = [&] { return reader.events.all.size() != stopAt; };
        std::string words;
        std::size_t told = 0;
        for (bool stopped = true; stopped;) {
            stopped = reader.Parse();
            for (; told < reader.events.all.size(); ++told) {
                words += (words.empty() ? "" : " ") + reader.events.all[told];
            }
            words += stopped ? " @" + std::to_string(reader.Position() - Head.size()) : "";
        }
        EXPECT_EQ(words, Bytes(row[2])) << Bytes(row[1]);
        EXPECT_EQ(reader.Position(), reader.FileSize());
    }
}

TEST(RtfReader, GroupsNestAsDeepAsTheFileLikes) {
    const std::size_t depth = 1'000'000;
    std::string body = "\\pard\\s5";
    body += std::string(depth, '{') + "\\s6 a" + std::string(depth, '}') + "b{";
    RecordingReader reader;
    OpenBody(reader, body);
    EXPECT_FALSE(reader.Parse());
    EXPECT_EQ(reader.events.text, u"ab");
    EXPECT_EQ(reader.CurrentStyle(), 5);
}

}  // namespace
}  // namespace generalutilities
