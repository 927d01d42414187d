#include "case_table.h"
#include "program.h"
#include "sample_project.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

/// `genutil export` and `genutil import` on real projects, and on all that is wrong with some.
namespace generalutilities::cli_test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

class ExternalView : public testing::Test {
  protected:
    static Result Run(std::vector<std::string> arguments, const std::vector<std::string>& more,
                      const Surroundings& surroundings) {
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Genutil(arguments, surroundings);
    }
    Result Export(const std::vector<std::string>& more = {}, const Surroundings& s = {}) {
        return Run({"export", project, "-o", file, "-l", "fr-FR"}, more, s);
    }
    Result Import(const std::vector<std::string>& more = {}, const Surroundings& s = {}) {
        return Run({"import", project, file, "-l", "fr-FR"}, more, s);
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
    for (const auto& row : CaseTable("export_options.tsv")) {
        SCOPED_TRACE(testing::PrintToString(row));
        std::vector<std::string> options = Arguments(row[0]);
        options.insert(options.end(), {"--force", "--json"});
        const Result result = Export(options);
        ASSERT_EQ(result.exitCode, 0) << result.error;
        const json summary = json::parse(result.output);
        EXPECT_EQ(summary["format"], "genutil.export/1");
        EXPECT_EQ(summary["rowsWritten"], Number(row[1]));
        EXPECT_THAT(ReadFile(file), HasSubstr(Bytes(row[2])));
        EXPECT_TRUE(row[3].empty() || ReadFile(file).find(Bytes(row[3])) == std::string::npos);
    }
}

TEST_F(ExternalView, FormatsAndTheEndingsOfNames) {
    const struct {
        const char* name;
        std::vector<std::string> options;
        const char* start;
        const char* message;
    } cases[] = {
        {"a.HTM", {}, "<html>", ""},
        {"a.twb", {"--no-id-column"}, "{\\rtf1 \\ansi", "have no effect on a bilingual document"},
        {"a", {"--format", "html", "--no-id-column"}, "<html>", ""},
        {"a", {"--locked-is-perfect"}, "{\\rtf1\\adef", "are for --format twb alone"},
        {"a.docx",
         {},
         "",
         "ends in .docx, but --format rtf writes an RTF table; name it with .rtf"},
        {"a.rtf", {"--format", "html"}, "", "writes an HTML page; name it with .html"},
        {"a.html", {"--format", "twb"}, "", "writes a bilingual document, which is RTF; name it"},
    };
    for (const auto& one : cases) {
        file = folder / one.name;
        const Result result = Export(one.options);
        EXPECT_EQ(result.exitCode, *one.start == '\0' ? 2 : 0) << result.error;
        EXPECT_THAT(result.error, HasSubstr(one.message));
        EXPECT_EQ(std::filesystem::exists(file), *one.start != '\0');
        if (*one.start != '\0') {
            EXPECT_THAT(ReadFile(file), testing::StartsWith(one.start));
            std::filesystem::remove(file);
        }
    }
}

/// The page as a browser shows it: its cells, the colours behind them, and their fonts.
TEST_F(ExternalView, ABrowserShowsThePage) {
    const std::string browser = "/usr/bin/chromium";
    if (!std::filesystem::exists(browser)) {
        GTEST_SKIP() << "no chromium: the page is not looked at in a browser";
    }
    const std::string table =
        folder.Write("a.csv",
                     "id,source,target:ar-SA,status:ar-SA,comment:ar-SA\n"
                     "1,\"a  <b> &amp; {1}\ttab\",مرحبا   (1),locked,\"<script>x</script>\"\n"
                     "2,\"two\nlines\",𠮷 é,fuzzy,\n");
    const std::string cells = folder / "cells.project";
    ASSERT_EQ(Genutil({"project", "create", cells, table, "--source", "en-US"}).exitCode, 0);
    file = folder / "page.html";
    const Result written =
        Genutil({"export", cells, "-o", file, "-l", "ar-SA", "--color-locked", "#102030",
                 "--status-column", "--status-value", "--target-font", "DejaVu Serif"});
    ASSERT_EQ(written.exitCode, 0) << written.error;
    // The browser is to tell in plain ASCII what it has made of the page.
    constexpr const char* Script = R"(<script>
        const cells = [...document.querySelectorAll('td')].map(cell => {
            const text = cell.querySelector('p');
            return [text.innerText, getComputedStyle(cell).backgroundColor,
                    getComputedStyle(text).fontFamily];
        });
        document.documentElement.innerHTML = JSON.stringify(cells).replace(/[^ -~]|[<>&]/g,
            c => '\\u' + c.charCodeAt(0).toString(16).padStart(4, '0'));
    </script>)";
    const std::string asked = folder.Write("asked.html", ReadFile(file) + Script);
    const Result shown = cli_test::Run(
        browser, {"--headless", "--no-sandbox", "--disable-gpu",
                  "--user-data-dir=" + (folder / "browser"), "--dump-dom", "file://" + asked});
    const std::size_t begin = shown.output.find("[[");
    ASSERT_NE(begin, std::string::npos) << shown.output << shown.error;
    const json found = json::parse(shown.output.substr(begin, shown.output.find("]]") + 2 - begin));
    const std::string none = "rgba(0, 0, 0, 0)";
    const std::string locked = "rgb(16, 32, 48)";
    const std::string other = "Tahoma";
    const std::string target = "\"DejaVu Serif\"";
    const std::vector<std::vector<std::string>> expected = {
        {"ID", none, other},
        {"Source", none, other},
        {"Target", none, other},
        {"Comments", none, other},
        {"Status", none, other},
        {"1", locked, other},
        {"a \u00A0<b> &amp; {1} tab", locked, other},
        {"مرحبا \u00A0\u00A0(1)", locked, target},
        {"<script>x</script>", locked, other},
        {"512", locked, other},
        {"2", none, other},
        {"two lines", none, other},
        {"𠮷 é", none, target},
        {"", none, other},
        {"2", none, other},
    };
    EXPECT_EQ(found, json(expected));
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

TEST_F(ExternalView, KeepsAnExistingFile) {
    folder.Write("review.rtf", "old");
    EXPECT_THAT(Export().error, HasSubstr("exists already; --force replaces it"));
    EXPECT_EQ(ReadFile(file), "old");
    EXPECT_EQ(Export({"--force"}).exitCode, 0);
    EXPECT_THAT(ReadFile(file), testing::StartsWith("{\\rtf1"));
    EXPECT_EQ(folder.FileCount(), 2U);
    const Result none = Export({"--force", "--only-pending"});
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_THAT(none.error, HasSubstr("no row matches"));
    const Result itself = Genutil({"export", project, "-o", project, "-l", "fr", "--force"});
    EXPECT_EQ(itself.exitCode, 2);
    EXPECT_THAT(itself.error, HasSubstr("is the project itself"));
}

TEST_F(ExternalView, SaysWhatIsWrongWithProjectAndFile) {
    const std::string cut = folder.Write("cut.project", ReadFile(project).substr(0, 20000));
    const std::string few = folder / "few.project";
    RunSql(few, "CREATE TABLE Pairs(ID TEXT, Source TEXT)");
    const std::string missing = folder / "missing/folder.project";
    const std::string bare = folder.Write("bare.rtf", "{\\rtf1 Hello}");
    const struct {
        std::vector<std::string> arguments;
        std::string error;
    } cases[] = {
        {{"export", project, "-o", file, "-l", "de-DE"},
         "no columns for the language de-DE (1031) (missing: Target_1031, Status_1031, "
         "Comments_1031, Percentage_1031); the project has fr-FR (1036), ar-SA (1025)"},
        {{"export", project, "-o", file, "-l", "fr", "--file", "nine.html"}, "1  one.html"},
        {{"export", project, "-o", missing, "-l", "fr"}, "No such file or directory"},
        {{"export", project, "-o", folder.Path().string(), "-l", "fr"}, "is a folder"},
        {{"export", project, "-o", file, "-l", "fr", "--file", "lexicon", "--order-by", "Nonsense"},
         "Invalid Query\n  reported by GeneralUtilities.ExtViewHelper.1, status 0x80040020"},
        {{"export", cut, "-o", file, "-l", "fr"}, cut},
        {{"export", few, "-o", file, "-l", "fr"}, few},
        {{"export", missing, "-o", file, "-l", "fr"}, missing},
        {{"import", project, folder.Write("empty.rtf", ""), "-l", "de-DE"}, "no columns for"},
        {{"import", folder.Path().string(), bare, "-l", "fr"}, folder.Path().string()},
        {{"import", project, folder / "empty.rtf", "-l", "fr"}, "the file is empty"},
        {{"import", project, folder.Write("short.rtf", "{\\rt"), "-l", "fr"},
         "byte offset 0: expected \"{\\rtf1\""},
        {{"import", project, folder.Write("a.docx", "PK\x03\x04..........."), "-l", "fr"},
         "looks like a DOCX"},
        {{"import", project, folder.Write("a.html", "<!DOCTYPE html>"), "-l", "fr"},
         "looks like HTML"},
        {{"import", project, folder.Write("moved.rtf", "\n{\\rtf1"), "-l", "fr"},
         "stands at byte offset 1;"},
        {{"import", project, folder.Write("cut.rtf", "{\\rtf1{\\fonttbl"), "-l", "fr"},
         "ends at byte offset 15, before the first row"},
        {{"import", project, bare, "-l", "fr"}, "no \"\\fonttbl\" in it"},
        {{"import", project, folder / "missing.rtf", "-l", "fr"},
         "missing.rtf: cannot be opened: No such file"},
    };
    for (const auto& one : cases) {
        const Result result = Genutil(one.arguments);
        EXPECT_EQ(result.exitCode, 3) << result.error;
        EXPECT_THAT(result.error, HasSubstr(one.error));
        EXPECT_THAT(result.error, HasSubstr("reported by")) << one.error;
        EXPECT_FALSE(std::filesystem::exists(file));
    }
}

TEST_F(ExternalView, ReportsWhatBecameOfEveryRow) {
    ASSERT_EQ(Export({"--status-column", "--status-value"}).exitCode, 0);
    const Result whole = Import();
    EXPECT_EQ(whole.exitCode, 0) << whole.error;
    EXPECT_THAT(whole.output, HasSubstr("Stored 6 rows for fr-FR (1036)"));
    std::string content = ReadFile(file);
    for (const auto& [from, to] : {std::pair{"Bonjour \\{1\\}monde\\{2\\}", "Salut \\{1\\}monde"},
                                   {"Ligne verrouill", "Ligne toujours verrouill"},
                                   {"1024 A5}", "1024 B5}"}}) {
        content.replace(content.find(from), std::string_view(from).size(), to);
    }
    folder.Write("review.rtf", content);
    for (const std::string more : {"--dry-run", "--force"}) {
        const Result result = Import({"--json", more});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_THAT(result.error, HasSubstr("the project has no row \"B5\""));
        EXPECT_THAT(result.error, HasSubstr(more == "--dry-run" ? "Dry run: nothing was stored"
                                                                : "Stored 5 rows"));
        const json report = json::parse(result.output);
        EXPECT_EQ(report["format"], "genutil.import/1");
        EXPECT_EQ(report["summary"]["rows"], 6);
        EXPECT_EQ(report["summary"]["changed"], 2);
        EXPECT_EQ(report["summary"]["codesDiffer"], 1);
    }
}

TEST_F(ExternalView, WritesTheReportWhereItIsWanted) {
    ASSERT_EQ(Export().exitCode, 0);
    const std::string report = folder / "report.html";
    const auto import = [&](const std::string& to, std::vector<std::string> more) {
        more.insert(more.begin(), {"--dry-run", "--report-file", to});
        return Import(more).exitCode;
    };
    EXPECT_EQ(import(report, {}), 0);
    EXPECT_THAT(ReadFile(report), HasSubstr("<html"));
    EXPECT_EQ(import(report, {}), 3) << "it is there already";
    EXPECT_EQ(import(report, {"--report", "text", "--force"}), 0);
    EXPECT_THAT(ReadFile(report), Not(HasSubstr("<html")));
    EXPECT_EQ(import("/dev/full", {"--report", "json"}), 3);
}

TEST_F(ExternalView, ChangesNothingInAProjectThatCannotBeWritten) {
    ASSERT_EQ(Export().exitCode, 0);
    // The engine refuses to write a file whose header asks for a newer write version.
    std::string content = ReadFile(project);
    content[18] = 3;
    WriteFile(project, content);
    const Result result = Import();
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.error, HasSubstr("cannot be changed"));
    EXPECT_EQ(ReadFile(project), content);
    EXPECT_EQ(Import({"--dry-run"}).exitCode, 0);
    EXPECT_THAT(Export({"--force", "--unique-pairs"}).error,
                HasSubstr("duplicates cannot be marked"));
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
