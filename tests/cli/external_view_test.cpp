#include "program.h"
#include "sample_project.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sqlite3.h>
#include <sys/stat.h>

/// `genutil export` and `genutil import` on real projects, and on all that is wrong with some.
namespace generalutilities::cli_test {
namespace {

using nlohmann::json;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

void Replace(std::string& text, const std::string& from, const std::string& to) {
    const std::size_t place = text.find(from);
    ASSERT_NE(place, std::string::npos) << from;
    text.replace(place, from.size(), to);
}

class ExternalView : public testing::Test {
  protected:
    Result Export(const std::vector<std::string>& more = {},
                  const Surroundings& surroundings = {}) {
        std::vector<std::string> arguments{"export", project, "-o", file, "-l", "fr-FR"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Genutil(arguments, surroundings);
    }
    Result Import(const std::vector<std::string>& more = {},
                  const Surroundings& surroundings = {}) {
        std::vector<std::string> arguments{"import", project, file, "-l", "fr-FR"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Genutil(arguments, surroundings);
    }
    /// Exports, and changes the file by replacing texts.
    void ExportAndEdit(const std::vector<std::pair<std::string, std::string>>& edits) {
        ASSERT_EQ(Export({"--status-column", "--status-value"}).exitCode, 0);
        std::string content = ReadFile(file);
        for (const auto& [from, to] : edits) {
            Replace(content, from, to);
        }
        folder.Write("review.rtf", content);
    }
    void ExpectNothingLeft() {
        EXPECT_FALSE(std::filesystem::exists(file));
        EXPECT_EQ(folder.FileCount(), 1U);  // the project
    }

    TemporaryFolder folder;
    std::string project = MakeProject(folder);
    std::string file = folder / "review.rtf";
};

TEST_F(ExternalView, EveryOptionReachesTheFile) {
    struct {
        std::vector<std::string> options;
        int rows;
        std::string holds;
        std::string lacks;
    } const cases[] = {
        {{}, 6, " ID}", " Status}"},
        {{"--no-id-column"}, 6, " Source}", " ID}"},
        {{"--only-untranslated"}, 1, "Untranslated", "Bonjour"},
        {{"--only-translated"}, 5, "Bonjour", "Untranslated"},
        {{"--only-with-comments"}, 1, "Ne pas changer", "Bonjour"},
        {{"--unique-pairs"}, 5, "Chapitre 1", "Chapitre 2"},
        {{"--skip-locked"}, 5, "Bonjour", "Locked row"},
        {{"--skip-exact"}, 5, "Locked row", "Bonjour"},
        {{"--skip-guaranteed"}, 6, "Bonjour", ""},
        {{"--remove-codes"}, 6, "Bonjour monde.", "\\{1\\}"},
        {{"--copy-source", "--only-untranslated"}, 1, "Untranslated}\n\\cell\\pard\\intbl", ""},
        {{"--sort-by-source"}, 6, "A4", ""},
        {{"--color-all-rows"}, 6, "\\clcbpat3", ""},
        {{"--file-column"}, 6, " Filename}", "docs/one"},
        {{"--file-column", "--file-paths"}, 6, "docs/one.html", ""},
        {{"--hide-read-only"}, 6, "\\v ", ""},
        {{"--status-column"}, 6, " Status}", ""},
        {{"--status-column", "--status-value"}, 6, "\\noproof 512", ""},
        {{"--status-column", "--color-status-cell"}, 6, "\\clcbpat0", ""},
        {{"--file", "two.html"}, 3, "Chapitre 2", "Bonjour"},
        {{"--file", "1"}, 3, "Bonjour", "Chapitre 2"},
        {{"--file", "lexicon", "--order-by", "Freq DESC"}, 1, "terme", "Bonjour"},
        {{"--file", "all+lexicon"}, 7, "terme", ""},
        {{"--source-font", "Courier", "--target-font", "Arial"},
         6,
         "Arial;}}",
         "\\fprq0 Tahoma;}}"},
        {{"--color-locked", "#102030"}, 6, "\\red16\\green32\\blue48;", ""},
        {{"--color-exact", "#0A0b0C", "--color-machine-translated", "#FF0000"},
         6,
         "\\red255\\green255\\blue255;\\red10\\green11\\blue12;",
         ""},
    };
    for (const auto& one : cases) {
        std::vector<std::string> options = one.options;
        options.insert(options.end(), {"--force", "--json"});
        const Result result = Export(options);
        const std::string called = testing::PrintToString(one.options);
        ASSERT_EQ(result.exitCode, 0) << called << result.error;
        const json summary = json::parse(result.output);
        EXPECT_EQ(summary["format"], "genutil.export/1");
        EXPECT_EQ(summary["rowsWritten"], one.rows) << called;
        const std::string content = ReadFile(file);
        EXPECT_THAT(content, HasSubstr(one.holds)) << called;
        if (!one.lacks.empty()) {
            EXPECT_THAT(content, Not(HasSubstr(one.lacks))) << called;
        }
    }
}

TEST_F(ExternalView, AnswersNoWhenNothingMatches) {
    const Result result = Export({"--only-pending"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("no row matches"));
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(ExternalView, KeepsAnExistingFile) {
    folder.Write("review.rtf", "old");
    const Result result = Export();
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.error, HasSubstr("exists already; --force replaces it"));
    EXPECT_EQ(ReadFile(file), "old");
    EXPECT_EQ(Export({"--force"}).exitCode, 0);
    EXPECT_THAT(ReadFile(file), testing::StartsWith("{\\rtf1"));
    EXPECT_EQ(folder.FileCount(), 2U);

    const Result itself = Genutil({"export", project, "-o", project, "-l", "fr", "--force"});
    EXPECT_EQ(itself.exitCode, 2);
    EXPECT_THAT(itself.error, HasSubstr("is the project itself"));
}

TEST_F(ExternalView, NamesWhatTheProjectLacks) {
    struct {
        std::vector<std::string> arguments;
        std::string error;
    } const cases[] = {
        {{"export", project, "-o", file, "-l", "de-DE"},
         "no columns for the language de-DE (1031) (missing: Target_1031, Status_1031, "
         "Comments_1031, Percentage_1031); the project has fr-FR (1036), ar-SA (1025)"},
        {{"export", project, "-o", file, "-l", "fr", "--file", "nine.html"}, "1  one.html"},
        {{"export", project, "-o", folder / "no/folder", "-l", "fr"}, "No such file or directory"},
        {{"export", project, "-o", folder.Path().string(), "-l", "fr"}, "is a folder"},
        {{"export", project, "-o", file, "-l", "fr", "--file", "lexicon", "--order-by", "Nonsense"},
         "Invalid Query\n  reported by GeneralUtilities.ExtViewHelper.1, status 0x80040020"},
        {{"import", project, folder.Write("empty.rtf", ""), "-l", "de-DE"}, "no columns for"},
    };
    for (const auto& one : cases) {
        const Result result = Genutil(one.arguments);
        EXPECT_EQ(result.exitCode, 3) << result.error;
        EXPECT_THAT(result.error, HasSubstr(one.error));
        EXPECT_THAT(result.error, HasSubstr("reported by"));
        EXPECT_FALSE(std::filesystem::exists(file));
    }
}

TEST_F(ExternalView, RefusesWhatIsNoProject) {
    const std::string whole = ReadFile(project);
    folder.Write("cut.project", whole.substr(0, whole.size() / 2));
    folder.Write("text.project", std::string(5000, 'x'));
    folder.Write("none.project", "");
    RunSql(folder / "bare.project", "CREATE TABLE Other(a)");
    RunSql(folder / "few.project", "CREATE TABLE Pairs(ID TEXT, Source TEXT)");
    for (const std::string name :
         {"cut.project", "text.project", "none.project", "bare.project", "few.project",
          "missing.project", ".", "missing/folder.project"}) {
        for (const std::string command : {"export", "import"}) {
            const std::vector<std::string> arguments =
                command == "export"
                    ? std::vector<std::string>{"export", folder / name, "-o", file, "-l", "fr"}
                    : std::vector<std::string>{"import", folder / name, project, "-l", "fr"};
            const Result result = Genutil(arguments);
            EXPECT_EQ(result.exitCode, 3) << command << " " << name << result.error;
            EXPECT_THAT(result.error, HasSubstr(folder / name)) << command;
            EXPECT_THAT(result.error, HasSubstr("reported by")) << command;
            EXPECT_FALSE(std::filesystem::exists(file));
        }
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "missing.project"));
}

TEST_F(ExternalView, TellsThatAnotherProgramHoldsTheProject) {
    sqlite3* holder = nullptr;
    ASSERT_EQ(sqlite3_open(project.c_str(), &holder), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(holder, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    const Result result = Export();
    sqlite3_close(holder);
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.error, HasSubstr("lock"));
    ExpectNothingLeft();
}

TEST_F(ExternalView, NoticesThatTheOutputDoesNotReachTheDisk) {
    project = MakeLongProject(folder, 2000);
    std::filesystem::remove(folder / "a.project");
    for (const std::vector<std::string>& more : {std::vector<std::string>{}, {"--no-id-column"}}) {
        // The project's own journal stays far below this limit.
        const Result result = Export(more, {.fileSizeLimit = 1'200'000});
        EXPECT_EQ(result.exitCode, 3) << result.error;
        EXPECT_THAT(result.error, HasSubstr("writing failed behind character"));
        ExpectNothingLeft();
    }
    file = "/dev/full";
    const Result result = Export({"--force"});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.error, HasSubstr("No space left on device"));
}

TEST_F(ExternalView, WritesToADeviceDirectly) {
    file = "/dev/stdout";
    const Result result = Export();
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_THAT(result.output, testing::StartsWith("{\\rtf1"));
    EXPECT_THAT(result.output, testing::EndsWith("}\n"));
    EXPECT_THAT(result.error, HasSubstr("Wrote 6 rows"));
}

TEST_F(ExternalView, ShowsProgressOnlyWhereItBelongs) {
    project = MakeLongProject(folder, 200);
    EXPECT_EQ(Export().error, "");
    EXPECT_EQ(Export({"--force", "--progress", "bar"}).error, "");
    const Result plain = Export({"--force", "--progress", "plain"});
    EXPECT_THAT(plain.error, HasSubstr("exporting: 50 %\n"));
    EXPECT_THAT(plain.error, HasSubstr("exporting: 100 %\n"));
    EXPECT_THAT(plain.error, Not(HasSubstr("\r")));
    EXPECT_THAT(plain.output, Not(HasSubstr("%")));
}

TEST_F(ExternalView, AnUntouchedFileComesHomeWhole) {
    ASSERT_EQ(Export().exitCode, 0);
    const Result result = Import();
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_THAT(result.output, HasSubstr("Stored 6 rows for fr-FR (1036)"));
    EXPECT_EQ(result.error, "");
}

TEST_F(ExternalView, ReportsWhatBecameOfEveryRow) {
    ExportAndEdit({{"Bonjour \\{1\\}monde\\{2\\}", "Salut \\{1\\}monde"},
                   {"Ligne verrouill", "Ligne toujours verrouill"},
                   {"1024 A5}", "1024 B5}"}});
    for (const bool dryRun : {true, false}) {
        std::vector<std::string> options{"--json"};
        if (dryRun) {
            options.push_back("--dry-run");
        }
        const Result result = Import(options);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_THAT(result.error, HasSubstr("the project has no row \"B5\""));
        EXPECT_THAT(result.error,
                    HasSubstr(dryRun ? "Dry run: nothing was stored" : "Stored 5 rows"));
        const json report = json::parse(result.output);
        EXPECT_EQ(report["format"], "genutil.import/1");
        EXPECT_EQ(report["summary"]["rows"], 6);
        EXPECT_EQ(report["summary"]["changed"], 2);
        EXPECT_EQ(report["summary"]["codesDiffer"], 1);
    }
}

TEST_F(ExternalView, TakesOverWhatTheReviewerChanged) {
    ExportAndEdit({{"Chapitre 1", "Premier chapitre"}, {"Ligne verrouill", "Rang verrouill"}});
    EXPECT_EQ(Genutil({"review", project, "-l", "fr-FR"}).exitCode, 3);  // nothing was imported
    ASSERT_EQ(Import().exitCode, 0);
    const json review = json::parse(Genutil({"review", project, "-l", "fr-FR", "--json"}).output);
    ASSERT_EQ(review["rows"].size(), 2U);
    EXPECT_EQ(review["rows"][1]["id"], "A3");
    EXPECT_EQ(review["rows"][1]["newTarget"], "Premier chapitre");

    const Result accepted = Genutil({"accept", project, "-l", "fr-FR"});
    EXPECT_EQ(accepted.exitCode, 0) << accepted.error;
    const std::string rows = Genutil({"project", "rows", project, "-l", "fr-FR"}).output;
    EXPECT_THAT(rows, HasSubstr("Premier chapitre"));
    EXPECT_THAT(rows, Not(HasSubstr("Rang verrouill")));
}

TEST_F(ExternalView, WritesTheReportWhereItIsWanted) {
    ASSERT_EQ(Export().exitCode, 0);
    const std::string report = folder / "report.html";
    Result result = Import({"--dry-run", "--report-file", report});
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_THAT(ReadFile(report), HasSubstr("<html"));
    result = Import({"--dry-run", "--report-file", report});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.error, HasSubstr("--force"));
    result = Import({"--dry-run", "--report-file", report, "--report", "text", "--force"});
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_THAT(ReadFile(report), Not(HasSubstr("<html")));
    result = Import({"--dry-run", "--report-file", "/dev/full", "--report", "json"});
    EXPECT_EQ(result.exitCode, 3);
}

TEST_F(ExternalView, RefusesWhatIsNoReviewedTable) {
    struct {
        std::string name;
        std::string content;
        std::string error;
    } const cases[] = {
        {"empty.rtf", "", "the file is empty"},
        {"short.rtf", "{\\rt", "byte offset 0: expected \"{\\rtf1\""},
        {"a.docx", "PK\x03\x04...........", "looks like a DOCX"},
        {"a.html", "<!DOCTYPE html>", "looks like HTML"},
        {"moved.rtf", "\n{\\rtf1", "stands at byte offset 1;"},
        {"cut.rtf", "{\\rtf1{\\fonttbl", "ends at byte offset 15, before the first row"},
        {"bare.rtf", "{\\rtf1 Hello}", "no \"\\fonttbl\" in it"},
        {"table.rtf", "{\\rtf1{\\fonttbl{\\f0\\fcharset0 A;}}{\\stylesheet{\\s0 N;}}\\pard x}",
         "no \"\\row\" in it"},
    };
    for (const auto& one : cases) {
        file = folder.Write(one.name, one.content);
        const Result result = Import();
        EXPECT_EQ(result.exitCode, 3) << one.name;
        EXPECT_THAT(result.error, HasSubstr(one.error)) << one.name;
        EXPECT_THAT(result.error, HasSubstr(one.name)) << one.name;
    }
    const std::pair<const char*, const char*> unreadable[] = {
        {".", "is a folder"},
        {"missing.rtf", "missing.rtf: cannot be opened: No such file"},
        {"empty.rtf/below", "empty.rtf/below: cannot be opened: Not a directory"},
    };
    for (const auto& [name, error] : unreadable) {
        file = folder / name;
        const Result result = Import();
        EXPECT_EQ(result.exitCode, 3) << name;
        EXPECT_THAT(result.error, HasSubstr(error)) << name;
    }
}

TEST_F(ExternalView, SurvivesAFileCutAnywhere) {
    ASSERT_EQ(Export().exitCode, 0);
    const std::string whole = ReadFile(file);
    int complete = 0;
    for (std::size_t length = 0; length <= whole.size(); length += 97) {
        folder.Write("review.rtf", whole.substr(0, length));
        const Result result = Import();
        ASSERT_THAT(result.exitCode, AnyOf(0, 1, 3)) << length << result.error;
        if (result.exitCode == 0) {
            ++complete;
            EXPECT_THAT(result.output, HasSubstr("Stored 6 rows")) << length;
        } else {
            EXPECT_NE(result.error + result.output, "") << length;
        }
    }
    EXPECT_LT(complete, 3);  // only the closing brace may be missing unnoticed
}

TEST_F(ExternalView, ChangesNothingInAProjectThatCannotBeWritten) {
    ASSERT_EQ(Export().exitCode, 0);
    // The engine refuses to write a file whose header asks for a newer write version.
    std::string content = ReadFile(project);
    content[18] = 3;
    std::ofstream(project, std::ios::binary) << content;
    const Result result = Import();
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.error, HasSubstr("cannot be changed"));
    EXPECT_EQ(ReadFile(project), content);
    EXPECT_EQ(Import({"--dry-run"}).exitCode, 0);

    const Result unique = Export({"--force", "--unique-pairs"});
    EXPECT_EQ(unique.exitCode, 3);
    EXPECT_THAT(unique.error, HasSubstr("duplicates cannot be marked"));
    EXPECT_EQ(Export({"--force"}).exitCode, 0);
}

/// The sample of the demonstration, rewritten the way a word processor writes: every script comes
/// home, and exactly the reviewer's edits are found.
TEST(WordProcessor, ReviewedTablesComeHomeInEveryScript) {
    const TemporaryFolder folder;
    const std::string demo = DEMO_FOLDER;
    const std::string project = folder / "sample.project";
    std::vector<std::string> create{"project", "create", project, "--codes",
                                    demo + "/handbook.csv"};
    for (const auto& catalog : std::filesystem::directory_iterator(demo + "/po")) {
        create.push_back(catalog.path().string());
    }
    const Result created = Genutil(create);
    ASSERT_EQ(created.exitCode, 0) << created.error;

    // Chapters 1 and 2, the two "Cancel", and the two rows about Ctrl+S, whose codes hide tags.
    const Result unique = Genutil({"export", project, "-o", folder / "unique.rtf", "-l", "fr-FR",
                                   "--unique-pairs", "--json"});
    EXPECT_EQ(json::parse(unique.output)["duplicatesLeftOut"], 3);

    for (const std::string language : {"fr-FR", "de-DE", "ru-RU", "el-GR", "ar-SA", "he-IL",
                                       "ja-JP", "zh-CN", "hi-IN", "th-TH"}) {
        const std::string exported = folder / (language + ".rtf");
        const std::string reviewed = folder / (language + "-reviewed.rtf");
        ASSERT_EQ(Genutil({"export", project, "-o", exported, "-l", language, "--status-column",
                           "--status-value"})
                      .exitCode,
                  0);
        const Result edited =
            cli_test::Run(demo + "/edit_like_a_word_processor.py", {exported, reviewed, language});
        ASSERT_EQ(edited.exitCode, 0) << edited.error;
        const Result result = Genutil({"import", project, reviewed, "-l", language, "--json"});
        EXPECT_EQ(result.exitCode, 1) << result.error;
        const json summary = json::parse(result.output)["summary"];
        // Hindi and Thai have two open rows; the reviewer fills the one with a line end.
        const bool hadOpenRows = language == "hi-IN" || language == "th-TH";
        EXPECT_EQ(summary["rows"], 20) << language;
        EXPECT_EQ(summary["changed"], hadOpenRows ? 5 : 4) << language;
        EXPECT_EQ(summary["unchanged"], 14) << language;
        EXPECT_EQ(summary["lineEndsOnly"], hadOpenRows ? 0 : 1) << language;
        EXPECT_EQ(summary["unknownIds"], 1) << language;
        EXPECT_EQ(summary["commentsChanged"], 2) << language;
        EXPECT_EQ(summary["lockedChanged"], 1) << language;
        EXPECT_EQ(summary["codesDiffer"], 1) << language;
    }
}

}  // namespace
}  // namespace generalutilities::cli_test
