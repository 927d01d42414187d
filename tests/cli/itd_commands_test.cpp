// `genutil itd` on segments: out to a translator, and translations into a copy.

#include <generalutilities/itd/itd_file.h>
#include <generalutilities/itd/translations.h>

#include "itd/sample_file.h"
#include "program.h"
#include "unicode.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace generalutilities::cli_test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class ItdCommands : public testing::Test {
  protected:
    void SetUp() override {
        WriteItdFile(cli::ToUtf16(reference), SampleTextPart());
        before = ReadFile(reference);
    }
    void TearDown() override { EXPECT_EQ(ReadFile(reference), before); }

    Result Run(const std::string& command, std::vector<std::string> arguments,
               const Surroundings& surroundings = {}) {
        arguments.insert(arguments.begin(), {"itd", command, reference});
        return Genutil(arguments, surroundings);
    }
    /// Applies rows to the reference; gives the exit code, and what was said on standard error.
    Result Apply(const std::string& rows, std::vector<std::string> more = {}) {
        std::vector<std::string> arguments{folder.Write("rows.tsv", rows), "-o",
                                           folder / "out.itd"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Run("apply", arguments);
    }
    std::vector<std::string> Targets(const std::string& file) {
        ItdFile opened = ReadItdFile(cli::ToUtf16(file));
        std::vector<std::string> targets;
        ExtractSegments(opened.document, [&](const ExchangeSegment& segment) {
            targets.push_back(cli::ToUtf8(SegmentTextOf(segment.target)));
        });
        return targets;
    }

    TemporaryFolder folder;
    std::string reference = folder / "a.itd";
    std::string before;
};

TEST_F(ItdCommands, TellWhatADocumentHolds) {
    EXPECT_EQ(Run("languages", {}).output, "en-US\tde-DE\n");
    EXPECT_THAT(Run("info", {}).output,
                HasSubstr("Segments: 4, 2 with text, 1 of them translated, 1 with codes, 1 with"));
    EXPECT_EQ(json::parse(Run("info", {"--json"}).output)["statuses"],
              json::parse(R"([{"status":1,"segments":1},{"status":2,"segments":1}])"));
    EXPECT_EQ(Run("segments", {}).output,
              "segment\tstatus\tscore\tsource\ttarget\tcomment\n"
              "1\t1\t0.25\tone{1}two\teins{1}zwei\tAnn: note\n"
              "2\t2\t0.5\ta\\{b\\\\\t\t\n3\t2\t0.5\t\t\t\n4\t2\t0.5\t\t\t\n");
    const json found = json::parse(Run("segments", {"--find", "zw", "--json"}).output);
    EXPECT_EQ(found["segments"].size(), 1U);
    EXPECT_EQ(found["segments"][0]["codes"], json({"<b>"}));
    EXPECT_THAT(Run("segments", {"--only-untranslated", "--limit", "1"}).output,
                HasSubstr("\n2\t"));
    EXPECT_EQ(Run("segments", {"--skip", "4"}).exitCode, 1);
}

TEST_F(ItdCommands, ApplyWhatWasExtracted) {
    for (const std::string ending : {"tsv", "jsonl", "xlf"}) {
        const std::string rows = folder / ("rows." + ending);
        const std::string output = folder / ("out." + ending);
        ASSERT_EQ(Run("extract", {"-o", rows}).exitCode, 0);
        EXPECT_THAT(
            Run("apply", {rows, "-o", output}).output,
            HasSubstr("Rows: 4, 0 applied, 1 unchanged, 3 without a translation, 0 refused"));
        EXPECT_EQ(Genutil({"itd", "unpack", output}).output, SampleTextPart());
        std::string text = ReadFile(rows);
        const std::string form = ending == "xlf" ? "xliff" : ending;
        EXPECT_EQ(Run("extract", {"--form", form}).output, text);
        text.replace(text.find("eins"), 4, "{neu}\\");
        WriteFile(rows, text);
        const bool isNotation = ending != "xlf";  // where a brace is a character as it stands
        EXPECT_EQ(Run("apply", {rows, "-o", output, "--force"}).exitCode, isNotation ? 1 : 0);
        EXPECT_EQ(Targets(output)[0], isNotation ? "eins{1}zwei" : "\\{neu\\}\\\\{1}zwei");
    }
}

/// The samples have both kinds of header, both places of the status table, columns in both orders
/// and codes that stand elsewhere in the translation.
TEST_F(ItdCommands, SamplesGoRoundUnchanged) {
    ASSERT_EQ(cli_test::Run(SAMPLE_MAKER, {folder / "samples"}).exitCode, 0);
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder / "samples")) {
        const std::string sample = entry.path();
        const std::string rows = folder / (std::to_string(++files) + ".xlf");
        EXPECT_EQ(Genutil({"itd", "extract", sample, "-o", rows}).exitCode, 0);
        const Result result = Genutil({"itd", "apply", sample, rows, "-o", rows + ".itd"});
        EXPECT_THAT(result.output,
                    HasSubstr(" 0 applied, 5 unchanged, 2 without a translation, 0 "));
        const std::string part = folder.Write("part", Genutil({"itd", "unpack", sample}).output);
        EXPECT_EQ(Genutil({"itd", "unpack", rows + ".itd"}).output, ReadFile(part));
        EXPECT_EQ(Genutil({"itd", "pack", part, "-o", rows + ".packed", "--like", sample}).exitCode,
                  0);
        EXPECT_EQ(ReadFile(rows + ".packed"), ReadFile(rows + ".itd"));
    }
    EXPECT_EQ(files, 8);
}

TEST_F(ItdCommands, RefusedRowsAreNamedAndTheRestIsApplied) {
    const std::string rows =
        "segment\tsource\ttarget\n1\t\tx\n2\ta\\{b\\\\\tc\\{d\n1\tone{1}two\tno code\n9\t\tx\n";
    Result result = Apply(rows, {"--json"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("line 2, segment 1: refused: its source is not that of"));
    EXPECT_THAT(result.error, HasSubstr("line 4, segment 1: refused: code lost: {1}"));
    EXPECT_THAT(result.error, HasSubstr("line 5, segment 9: refused: the document has no such"));
    const json document = json::parse(result.output);
    EXPECT_EQ(document["summary"], json::parse(R"({"rows":4,"applied":1,"unchanged":0,
                                                   "no-translation":0,"refused":3})"));
    EXPECT_EQ(document["refused"][1]["reason"], "code lost: {1}");
    EXPECT_THAT(Targets(folder / "out.itd"), testing::ElementsAre("eins{1}zwei", "c\\{d", "", ""));
}

TEST_F(ItdCommands, FailuresLeaveNothing) {
    const std::string row = "segment\ttarget\n2\tx\n";
    const auto expect = [&](const Result& result, int exitCode, const std::string& words,
                            std::size_t files) {
        EXPECT_EQ(result.exitCode, exitCode) << result.error;
        EXPECT_THAT(result.error, HasSubstr(words));
        EXPECT_EQ(folder.FileCount(), files);
    };
    expect(Run("apply", {folder.Write("rows.tsv", row), "--dry-run"}), 0, "", 2);
    expect(Run("apply", {folder / "rows.tsv"}), 2, "--output is wanted", 2);
    expect(Run("apply", {folder / "rows.tsv", "-o", reference, "--force"}), 3, "itself", 2);
    expect(Run("apply", {folder / "rows.tsv", "-o", "/dev/null"}), 3, "a device", 2);
    expect(Run("apply", {folder / "rows.tsv", "-o", folder / "o", "--form", "xliff"}), 3,
           "this is no XML", 2);
    expect(Run("apply", {folder / "rows.tsv", "-o", folder / "o"}, {.fileSizeLimit = 40}), 3,
           "cannot be written", 2);
    expect(Run("extract", {"-o", folder / "o.tsv"}, {.fileSizeLimit = 40}), 3, "cannot be written",
           2);
    expect(Run("extract", {"-o", folder / "o.doc"}), 2, "--form", 2);
    EXPECT_EQ(Apply(row).exitCode, 0);
    expect(Apply(row), 3, "--force", 3);
    EXPECT_THAT(Genutil({"itd", "languages", folder / "rows.tsv"}).error,
                HasSubstr("Bad Magic Number\n  reported by GeneralUtilities.ITDReader.1"));
    EXPECT_THAT(Genutil({"itd", "info", folder / "rows.tsv"}).error, HasSubstr("no ITD file"));
}

}  // namespace
}  // namespace generalutilities::cli_test
