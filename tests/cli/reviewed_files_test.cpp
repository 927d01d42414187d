/// Tables that a real word processor opened, edited and saved (tools/make_reviewed_files.py), each
/// beside the texts that the reviewer left: from the import to the project, as a user does it.

#include "program.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

namespace generalutilities::cli_test {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::HasSubstr;

const std::string Files = TEST_DATA_DIR "/writer/";
constexpr const char* Columns[] = {"id", "source", "target", "comments", "status"};

/// What a cell of a report holds; a status that is no number is not reported.
std::string Cell(const json& row, const std::string& column) {
    const json cell = row.value(column, json(""));
    return cell.is_string() ? cell.get<std::string>() : cell.dump();
}

/// A text with each of its line ends as a CR LF, as a paragraph comes back.
std::string WithParagraphs(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPair = text.compare(i, 2, "\r\n") == 0;
        const bool isEnd = text[i] == '\r' || text[i] == '\n';
        result += isEnd ? "\r\n" : text.substr(i, 1);
        i += isPair ? 1 : 0;
    }
    return result;
}

class ReviewedFiles : public ::testing::TestWithParam<std::string> {
  protected:
    void SetUp() override {
        ASSERT_EQ(Genutil({"project", "create", project, Files + "project.csv"}).exitCode, 0);
    }

    json Import(std::vector<std::string> more) {
        more.insert(more.begin(), {"import", project, file, "-l", language, "--json"});
        const Result result = Genutil(more);
        EXPECT_LE(result.exitCode, 1) << result.error;
        return json::parse(result.output);
    }

    /// The rows of the project, by identifier.
    std::map<std::string, json> Stored() {
        const Result result = Genutil({"project", "rows", project, "-l", language, "--json"});
        std::map<std::string, json> rows;
        const json document = json::parse(result.output);
        for (const json& row : document["rows"]) {
            rows[row["id"]] = row;
        }
        return rows;
    }

    const std::string file = Files + GetParam() + ".rtf";
    const bool isBilingual = GetParam().starts_with("bilingual");
    const std::string language = GetParam() == "right-to-left" ? "ar-SA" : "fr-FR";
    const json expected = json::parse(ReadFile(Files + GetParam() + ".json"));
    const TemporaryFolder folder;
    const std::string project = folder / "a.project";
};

TEST_P(ReviewedFiles, AreWrongAsTheyAreOnlyWhereAReaderCannotTell) {
    const json report = Import({"--as-is", "--dry-run"});
    EXPECT_EQ(report["met"], json::array());
    const auto extraRows = expected["extraRows"].get<std::set<std::string>>();
    const auto swallowed = expected.value("swallowed", std::set<std::string>());
    std::set<std::string> extra;
    std::set<std::vector<std::string>> misread;
    auto left = expected["rows"].begin();
    const auto skipSwallowed = [&] {
        while (left != expected["rows"].end() && swallowed.contains(left->at(0))) {
            ++left;
        }
    };
    for (const json& row : report["rows"]) {
        if (extraRows.contains(row["id"]) && extra.insert(row["id"]).second) {
            continue;
        }
        skipSwallowed();
        ASSERT_NE(left, expected["rows"].end());
        for (std::size_t i = 0; i < std::size(Columns); ++i) {
            if (Cell(row, Columns[i]) != left->at(i)) {
                misread.insert({left->at(0), Columns[i]});
            }
        }
        ++left;
    }
    skipSwallowed();
    EXPECT_EQ(left, expected["rows"].end());
    EXPECT_EQ(extra, extraRows);
    EXPECT_EQ(misread, expected["misread"].get<std::set<std::vector<std::string>>>());
}

TEST_P(ReviewedFiles, ComeHomeWithExactlyWhatTheReviewerLeft) {
    const std::string original = ReadFile(file);
    std::map<std::string, json> wanted = Stored();
    const json report = Import({});
    const json& left = expected["rows"];
    ASSERT_EQ(report["rows"].size(), left.size());
    for (std::size_t i = 0; i < left.size(); ++i) {
        const json& row = report["rows"][i];
        for (std::size_t column = 0; column < std::size(Columns); ++column) {
            EXPECT_EQ(Cell(row, Columns[column]), left[i][column]) << row;
        }
        // The row ends in the reviewed file where its offset says, also when a copy was read.
        const std::size_t end = row["offset"];
        if (isBilingual) {  // or behind text that was typed there
            const std::size_t begin = original.rfind("<ID", end);
            EXPECT_EQ(original.compare(begin + 4, 3, row["id"]), 0) << row;
        } else {
            EXPECT_EQ(original.rfind("\\row", end - 1) + 4, end) << row;
        }

        const auto stored = wanted.find(row["id"]);
        if (stored == wanted.end()) {
            EXPECT_EQ(row["result"], "unknown-id");
            continue;
        }
        const std::string before = stored->second["target"];
        const std::string target = left[i][2];
        const bool isSame = WithParagraphs(target) == WithParagraphs(before);
        EXPECT_EQ(row["result"], !isSame            ? "changed"
                                 : target == before ? "unchanged"
                                                    : "line-ends-only");
        EXPECT_FALSE(row["sourceChanged"] || row["statusChanged"]) << row;
        EXPECT_EQ(row["commentsChanged"],
                  left[i][3] != "" && left[i][3] != stored->second["comments"]);
        if (!isSame) {
            stored->second["target"] = target;
        }
        if (left[i][3] != "") {
            stored->second["comments"] = left[i][3];
        }
    }
    std::vector<std::vector<std::string>> met;
    for (const json& place : report["met"]) {
        const bool isRow = place["finding"] == "deleted-row" || place["finding"] == "damaged-row";
        const std::size_t row = place["row"];
        met.push_back({place["finding"], row <= left.size() ? left[row - 1][0] : json(""),
                       isRow ? "" : Columns[place["cell"].get<std::size_t>()]});
    }
    EXPECT_THAT(met, ::testing::UnorderedElementsAreArray(
                         expected["met"].get<std::vector<std::vector<std::string>>>()));

    const Result accepted = Genutil({"accept", project, "-l", language, "--include-locked"});
    EXPECT_EQ(accepted.exitCode, 0) << accepted.error;
    EXPECT_EQ(Stored(), wanted);  // also the line ends: those alone change nothing
}

TEST(ReviewedFile, IsToldWhatWasMetWhereAndWhatBecameOfIt) {
    const TemporaryFolder folder;
    const std::string project = folder / "a.project";
    ASSERT_EQ(Genutil({"project", "create", project, Files + "project.csv"}).exitCode, 0);
    std::vector<std::string> import{"import", project, Files + "all.rtf", "-l", "fr", "--report"};
    for (const auto& [form, place] : {std::pair("text", "Met:      target of row 21, byte "),
                                      std::pair("html", "<li>target of row 21, byte ")}) {
        import.push_back(form);
        const Result result = Genutil(import);
        import.pop_back();
        EXPECT_THAT(result.output, HasSubstr(place));
        EXPECT_THAT(result.error,
                    AllOf(HasSubstr("warning: " + Files +
                                    "all.rtf: met a picture: its digits left out (target of row "
                                    "21, byte "),
                          HasSubstr("label of a list item: left out (target of row 22"),
                          HasSubstr("; and 1 more)\n")));
    }
    import.push_back("text");

    const Result unwritten = Genutil(import, {.environment = {"TMPDIR=/dev/null"}});
    EXPECT_EQ(unwritten.exitCode, 3);
    EXPECT_THAT(unwritten.error,
                HasSubstr("all.rtf: its prepared copy cannot be written to the folder "
                          "/dev/null: Not a directory; TMPDIR"));
}

std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Files)) {
        if (entry.path().extension() == ".rtf") {
            names.push_back(entry.path().stem());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

INSTANTIATE_TEST_SUITE_P(Writer, ReviewedFiles, ::testing::ValuesIn(Names()), [](const auto& test) {
    std::string name = test.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

}  // namespace
}  // namespace generalutilities::cli_test
