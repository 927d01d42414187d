#include "case_table.h"
#include "program.h"
#include "unicode.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <regex>

namespace generalutilities::cli_test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

void Check(const std::vector<std::string>& arguments, int exitCode, const std::string& output,
           const std::string& error, const std::string& input = {}) {
    const Result result = Genutil(arguments, {.input = input});
    SCOPED_TRACE(testing::PrintToString(arguments) + result.error);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_THAT(result.output, HasSubstr(output));
    EXPECT_THAT(result.error, HasSubstr(error));
    EXPECT_THAT(result.output + result.error, Not(HasSubstr("\x1b")));
    EXPECT_TRUE(exitCode < 2 || result.error.starts_with("genutil: "));
}

TEST(CommandLine, Answers) {
    const TemporaryFolder folder;
    folder.Write("lines.txt", "x\nStra\u00DFe\r\n");
    folder.Write("old.txt", "\xCF\xF0\xFF\n");
    for (const auto& row : CaseTable("command_lines.tsv")) {
        std::vector<std::string> arguments = Arguments(row[0]);
        for (std::string& argument : arguments) {
            argument = std::regex_replace(argument, std::regex("^\\$F"), folder.Path().string());
        }
        Check(arguments, Number(row[1]), cli::ToUtf8(row[2]), cli::ToUtf8(row[3]),
              cli::ToUtf8(row[4]));
    }
    // Bytes that are no UTF-8.
    Check({"text", "upper", "good", "b\xFF"}, 2, "",
          "TEXT 2, byte offset 1, byte 0xFF: not valid UTF-8");
    Check({"text", "find", "b\xFF", "x"}, 2, "", "SOUGHT: byte 1 is not valid UTF-8");
    Check({"text", "upper"}, 3, "", "line 2, byte offset 4, byte 0xFF: not valid UTF-8",
          "ab\nc\xFFx\n");
    Check({"codepage", "convert", "--from", "65001", "--to", "1251", folder / "new.txt"}, 0,
          "\xCF\xF0\xFF\n", "");
    Check({"codepage", "convert", "--from", "65001", "--to", "866"}, 0, "\xA1", "",
          "\xEF\xBB\xBF\xD0\xB1");
    Check({"codepage", "convert", "--from", "932"}, 3, "",
          "standard input, byte offset 3, byte 0x83: no character of code page 932 begins here",
          "a\x83\x65\x83");
    Check({"codepage", "convert", "--from", "65001", "--to", "1252", "--replace", "-"}, 0, "\xE9?",
          "warning: standard input, byte offset 2", "é\xD0\x90");
    const std::string russian =
        "\xCD\xE5 \xF3\xE4\xE0\xEB\xEE\xF1\xFC \xEE\xF2\xEA\xF0\xFB\xF2\xFC";
    Check({"codepage", "detect"}, 0, "1251\n", "", russian);
    Check({"language", "detect", "-"}, 0, "ru-RU (1049)\tРусский\n", "", russian);
    Check({"language", "detect", "--json"}, 0, "\"codePage\": 1251", "", russian);
    EXPECT_THAT(Genutil({"codepage", "list"}).output,
                HasSubstr("\n1361\ticonv\tJOHAB\tKorean (Johab)\n"));
}

TEST(CommandLine, HelpSuffices) {
    EXPECT_THAT(Genutil({"--version"}).output, HasSubstr("genutil 0."));
    EXPECT_THAT(Genutil({"--help"}).output, HasSubstr("Exit codes: 0 done"));
    for (const std::string command :
         {"export", "import", "review", "accept", "project", "text", "codepage", "tags", "itd",
          "draw", "classes", "register", "unregister"}) {
        const Result result = Genutil({command, "--help"});
        EXPECT_EQ(result.exitCode, 0) << command;
        EXPECT_THAT(result.output, HasSubstr("Usage: genutil " + command)) << command;
        EXPECT_EQ(result.error, "") << command;
    }
}

TEST(CommandLine, GivesSearchesAndMeasuresAsJson) {
    const json found =
        json::parse(Genutil({"text", "find", "b", "abB", "x", "--all", "--json"}).output);
    EXPECT_EQ(found["results"][0]["matches"], json::parse(R"([{"position":2,"length":1,"text":"b"},
                              {"position":3,"length":1,"text":"B"}])"));
    EXPECT_TRUE(found["results"][1]["matches"].empty());
    const json segments =
        json::parse(Genutil({"tags", "serialize", "--json"}, {.input = "<p>a\t<p>\nb<p>"}).output);
    EXPECT_EQ(segments["lastNumber"], 2);
    EXPECT_EQ(segments["results"][0]["texts"], json({"\x11"
                                                     "1\x12"
                                                     "a",
                                                     "\x11"
                                                     "1\x12"}));
    EXPECT_EQ(segments["results"][1]["codes"], json::parse(R"([{"number":2,"tag":"<p>"}])"));
    const json cut = json::parse(Genutil({"tags", "scan", "a<b>", "<ut>", "--json"}).output);
    EXPECT_EQ(cut["results"][0]["parts"], json::parse(R"([{"type":"text","text":"a"},
                              {"type":"tag","text":"<b>"}])"));
    EXPECT_EQ(cut["results"][1]["fault"]["position"], 1);
    const json measured = json::parse(Genutil({"text", "distance", "a", "ab", "--json"}).output);
    EXPECT_EQ(measured["results"][0]["distance"], 1.0);
    const json made = json::parse(
        Genutil({"text", "generate", "--script", "31", "--count", "2", "--json"}).output);
    EXPECT_EQ(made["results"].size(), 2U);
    EXPECT_EQ(made["results"][0]["result"].get<std::string>().size(), 60U) << "20 units of Braille";
}

TEST(CommandLine, DrawsWhatItMeasures) {
    const TemporaryFolder folder;
    for (const std::string format : {"png", "pdf", "svg"}) {
        const std::string file = folder / ("text." + format);
        const json drawn =
            json::parse(Genutil({"draw", "-o", file, "--width", "100", "two words, a line end",
                                 "and another line", "--margin", "5", "--json"})
                            .output);
        EXPECT_EQ(drawn["fileFormat"], format);
        EXPECT_EQ(drawn["width"], 110);
        EXPECT_EQ(drawn["height"], drawn["textHeight"].get<int>() + 10);
        EXPECT_GT(ReadFile(file).size(), 500U);
    }
    Check({"draw", "-o", folder / "cut.png", "--height", "4", "x"}, 1, "Wrote ", "higher than");
    folder.Write("libpangocairo-1.0.so.0", "");
    const Result result = Genutil({"draw", "--measure", "x"},
                                  {.environment = {"LD_LIBRARY_PATH=" + folder.Path().string()}});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.error, HasSubstr("libpangocairo-1.0.so.0"));
}

TEST(CommandLine, TellsThatAZeroUnitEndsATextWhereItDoes) {
    const std::string input("ab\0cd\n", 6);
    EXPECT_EQ(Genutil({"text", "upper"}, {.input = input}).output, std::string("AB\0CD\n", 6));
    for (const std::string operation : {"key", "simplify"}) {
        const Result result = Genutil({"text", operation}, {.input = input});
        EXPECT_EQ(result.output, "ab\n") << operation;
        EXPECT_THAT(result.error, HasSubstr("warning:")) << operation;
    }
}

TEST(CommandLine, GivesTextsAsJson) {
    const json words =
        json::parse(Genutil({"text", "words", "--json", "--language", "1036", "a 1 000"}).output);
    EXPECT_EQ(words["format"], "genutil.text/1");
    EXPECT_EQ(words["language"], 1036);
    EXPECT_EQ(words["results"][0]["tokens"],
              json::parse(R"([{"type":"word","position":1,"text":"a"},
                              {"type":"separator","position":2,"text":" "},
                              {"type":"digit","position":3,"text":"1 000"}])"));
    const json lines =
        json::parse(Genutil({"text", "lower", "--json"}, {.input = "A\"\nB\\\n"}).output);
    EXPECT_EQ(lines["results"][0]["result"], "a\"");
    EXPECT_EQ(lines["results"][1]["text"], "B\\");
}

TEST(CommandLine, ListsWhatTheTypeInformationSays) {
    const json library = json::parse(Genutil({"classes", "--json"}).output);
    EXPECT_EQ(library["format"], "genutil.classes/1");
    EXPECT_EQ(library["classes"].size(), 10U);
    EXPECT_EQ(library["interfaces"].size(), 11U);
    EXPECT_EQ(library["classes"].size() + library["interfaces"].size() + library["types"].size(),
              28U);

    const json one = json::parse(Genutil({"classes", "extviewhelper", "--json"}).output);
    ASSERT_EQ(one["classes"].size(), 1U);
    EXPECT_EQ(one["classes"][0]["progId"], "GeneralUtilities.ExtViewHelper.1");
    ASSERT_EQ(one["interfaces"].size(), 2U);
    const json& methods = one["interfaces"][0]["methods"];
    EXPECT_EQ(methods[0]["name"], "ExportExternalView");
    EXPECT_EQ(methods[0]["id"], 1);
    EXPECT_EQ(methods[0]["arguments"].size(), 15U);
}

TEST(CommandLine, RegistersInTheUsersDataFolder) {
    const TemporaryFolder folder;
    const Surroundings surroundings{.environment = {"XDG_DATA_HOME=" + folder.Path().string()}};
    const std::string file = folder / "generalutilities/registry.reg";

    Result result = Genutil({"register"}, surroundings);
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_THAT(result.output, HasSubstr(file));
    EXPECT_THAT(ReadFile(file), HasSubstr("GeneralUtilities.StringUtils.1"));

    result = Genutil({"unregister"}, surroundings);
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_THAT(ReadFile(file), Not(HasSubstr("GeneralUtilities.StringUtils.1")));
}

TEST(CommandLine, OutputThatCannotBeWrittenIsAFailure) {
    Result result = Genutil({"classes"}, {.outputTo = "/dev/full"});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.error, HasSubstr("No space left on device"));

    result = Genutil({"classes"}, {.brokenPipe = true});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_THAT(result.error, HasSubstr("Broken pipe"));
}

TEST(CommandLine, ColoursOnATerminalAlone) {
    const auto output = [](std::vector<std::string> environment) {
        return Genutil({"classes", "StringUtils"},
                       {.environment = std::move(environment), .terminal = true})
            .output;
    };
    EXPECT_THAT(output({"TERM=xterm", "NO_COLOR="}), HasSubstr("\x1b["));
    EXPECT_THAT(output({"TERM=xterm", "NO_COLOR=1"}), Not(HasSubstr("\x1b[")));
    EXPECT_THAT(output({"TERM=dumb", "NO_COLOR="}), Not(HasSubstr("\x1b[")));
}

}  // namespace
}  // namespace generalutilities::cli_test
