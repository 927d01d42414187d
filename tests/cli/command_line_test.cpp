#include "program.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace generalutilities::cli_test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

/// A command line and what must come of it. `output` and `error` are pieces of the two streams.
struct CommandLine {
    std::vector<std::string> arguments;
    int exitCode;
    std::string output;
    std::string error;
    std::string input = {};
};

void Check(const std::vector<CommandLine>& lines) {
    for (const CommandLine& line : lines) {
        const Result result = Genutil(line.arguments, {.input = line.input});
        const std::string called = testing::PrintToString(line.arguments);
        EXPECT_EQ(result.exitCode, line.exitCode) << called << result.error;
        EXPECT_THAT(result.output, HasSubstr(line.output)) << called;
        EXPECT_THAT(result.error, HasSubstr(line.error)) << called;
        EXPECT_THAT(result.output + result.error, Not(HasSubstr("\x1b"))) << called;
        if (line.exitCode >= 2) {
            EXPECT_THAT(result.error, testing::StartsWith("genutil: ")) << called;
        }
    }
}

TEST(CommandLine, WrongUseIsToldWithoutRunningAnything) {
    Check({
        {{}, 2, "", "subcommand is required"},
        {{"nonsense"}, 2, "", "\"nonsense\" is no command"},
        {{"--nonsense"}, 2, "", "\"--nonsense\" is no option"},
        {{"export", "p", "--nonsense"}, 2, "", "\"--nonsense\" is no option"},
        {{"classes", "A", "B"}, 2, "", "\"B\""},
        {{"text"}, 2, "", "Try: genutil text --help"},
        {{"text", "upper", "--size", "3"}, 2, "", "--size"},
        {{"text", "key", "--size", "0", "x"}, 2, "", "--size"},
        {{"text", "words", "--language", "xx-YY", "x"}, 2, "", "\"xx-YY\" is no known language"},
        {{"text", "words", "--language", "70000", "x"}, 2, "", "no known language"},
        {{"text", "upper", "good", "b\xFF"},
         2,
         "",
         "TEXT 2, byte offset 1, byte 0xFF: not valid UTF-8"},
        {{"language", "name", "klingon"}, 2, "", "\"klingon\" is no known language"},
        {{"text", "find", "b\xFF", "x"}, 2, "", "SOUGHT: byte 1 is not valid UTF-8"},
        {{"text", "find", "a", "--start", "0", "x"}, 2, "", "--start"},
        {{"text", "generate", "--script", "40"}, 2, "", "--script 40: no such script key"},
        {{"export", "p"}, 2, "", "required"},
        {{"export", "p", "-o", "x", "-l", "fr", "--color-exact", "red"}, 2, "", "#RRGGBB"},
        {{"export", "p", "-o", "x", "-l", "fr", "--source-font", "A;B"}, 2, "", "A;B"},
        {{"export", "p", "-o", "x", "-l", "fr", "--status-value"}, 2, "", "--status-column"},
        {{"export", "p", "-o", "x", "-l", "fr", "--only-pending", "--only-translated"},
         2,
         "",
         "excludes"},
        {{"export", "p", "-o", "x", "-l", "fr", "--order-by", "Freq"}, 2, "", "--file lexicon"},
        {{"export", "p", "-o", "x", "-l", "fr", "--progress", "loud"}, 2, "", "--progress"},
        {{"import", "p", "f"}, 2, "", "--language"},
        {{"import", "p", "f", "-l", "fr", "--report", "pdf"}, 2, "", "--report"},
        {{"import", "p", "f", "-l", "fr", "--report", "text", "--json"}, 2, "", "--json"},
    });
}

TEST(CommandLine, HelpSuffices) {
    EXPECT_THAT(Genutil({"--version"}).output, HasSubstr("genutil 0."));
    EXPECT_THAT(Genutil({"--help"}).output, HasSubstr("Exit codes: 0 done"));
    for (const std::string command : {"export", "import", "review", "accept", "project", "text",
                                      "codepage", "classes", "register", "unregister"}) {
        const Result result = Genutil({command, "--help"});
        EXPECT_EQ(result.exitCode, 0) << command;
        EXPECT_THAT(result.output, HasSubstr("Usage: genutil " + command)) << command;
        EXPECT_EQ(result.error, "") << command;
    }
}

TEST(CommandLine, ConvertsTexts) {
    Check({
        {{"text", "upper", "straße", "éa"}, 0, "STRASSE\nÉA\n", ""},
        {{"text", "deaccent", "Crème brûlée"}, 0, "Creme brulee\n", ""},
        {{"text", "simplify", "「a」"}, 0, "(a)\n", ""},
        {{"text", "simplify", "--language", "el-GR", "τι;"}, 0, "τι?\n", ""},
        {{"text", "key", "  {1}Hello   42 worlds "}, 0, "Hello worlds\n", ""},
        {{"text", "key", "--size", "2", "ab cd"}, 0, "ab\n", ""},
        {{"text", "upper"}, 0, "AB\n\nCD\n", "", "ab\n\r\ncd"},
        {{"text", "words", "--language", "fr-FR", "l'homme a 1 000,50 {1}"},
         0,
         "word\tl'\nword\thomme\nseparator\t \nword\ta\nseparator\t \ndigit\t1 000,50\n"
         "separator\t \ncode\t{1}\n",
         ""},
        {{"text", "words", "漢", "a\tb"}, 0, "dbcs\t漢\n\nword\ta\nseparator\t␉\nword\tb\n", ""},
        {{"language", "name", "ja-JP", "1049"}, 0, "日本語\nРусский\n", ""},
        {{"language", "name", "1171", "de"}, 1, "Deutsch\n", "quc-CO (1171): no name is known"},
        {{"text", "upper"},
         3,
         "",
         "line 2, byte offset 4, byte 0xFF: not valid UTF-8",
         "ab\nc\xFFx\n"},
    });
}

TEST(CommandLine, ConvertsCodePages) {
    const TemporaryFolder folder;
    const std::string file = folder.Write("old.txt", "\xCF\xF0\xFF\n");
    const std::string result = folder / "new.txt";
    Check({
        {{"codepage", "convert", "--from", "1251", file}, 0, "Пря\n", ""},
        {{"codepage", "convert", "--from", "1251", file, "-o", result}, 0, "", ""},
        {{"codepage", "convert", "--from", "1251", file, "-o", result}, 3, "", "exists"},
        {{"codepage", "convert", "--from", "65001", "--to", "1251", result},
         0,
         "\xCF\xF0\xFF\n",
         ""},
        {{"codepage", "convert", "--from", "65001", "--to", "866"},
         0,
         "\xA1",
         "",
         "\xEF\xBB\xBF\xD0\xB1"},
        {{"codepage", "convert", "--from", "1252"}, 0, "", "", ""},
        {{"codepage", "convert", "--from", "932"},
         3,
         "",
         "standard input, byte offset 3, byte 0x83: no character of code page 932 begins here",
         "a\x83\x65\x83"},
        {{"codepage", "convert", "--from", "65001", "--to", "1252"},
         3,
         "",
         "byte offset 2, byte 0xD0: U+0410 is not in code page 1252; --replace",
         "é\xD0\x90"},
        {{"codepage", "convert", "--from", "65001", "--to", "1252", "--replace", "-"},
         0,
         "\xE9?",
         "warning: standard input, byte offset 2",
         "é\xD0\x90"},
        {{"codepage", "convert", "--from", "10001"}, 2, "", "--from 10001: this code page is not"},
        {{"codepage", "convert", "--from", "1251", folder / "none"}, 3, "", "No such file"},
        {{"codepage", "fits", "café", "שלום"}, 0, "1252 1250 1254 1256 1257 1258 936\n1255\n", ""},
        {{"codepage", "fits", "אб"}, 1, "\n", ""},
        {{"codepage", "fits", "--code-page", "1252"},
         1,
         "yes\nno\t7\tU+03A9\n",
         "",
         "A\nnaïve Ω\n"},
        {{"codepage", "fits", "-c", "99999", "A"}, 2, "", "--code-page 99999"},
    });
    EXPECT_THAT(Genutil({"codepage", "list"}).output,
                HasSubstr("\n1361\ticonv\tJOHAB\tKorean (Johab)\n"));
}

TEST(CommandLine, SearchesAndMeasuresTexts) {
    const TemporaryFolder folder;
    const std::string file = folder / "lines.txt";
    std::ofstream(file) << "x\nStra\u00DFe\r\n";
    Check({
        {{"text", "find", "cat", "a CAT, cat"}, 0, "1\t3\t3\tCAT\n", ""},
        {{"text", "find", "cat", "a CAT, cat", "--match-case"}, 0, "1\t8\t3\tcat\n", ""},
        {{"text", "find", "A", "--all", "aXa", "\xF0\x9F\x98\x80 a"},
         0,
         "1\t1\t1\ta\n1\t3\t1\ta\n2\t4\t1\ta\n",
         ""},
        {{"text", "find", "", "--all", "ab", "--start", "2"}, 0, "1\t2\t0\t\n", ""},
        {{"text", "find", "STRASSE", "--file", file}, 0, "2\t1\t6\tStra\u00DFe\n", ""},
        {{"text", "find", "cat", "--whole-word"}, 1, "", "", "catalog\n"},
        {{"text", "find", "b", "--match-case"},
         1,
         "",
         "ends at this U+0000",
         std::string("a\0b", 3)},
        {{"text", "find", "b", "--file", folder / "none"},
         3,
         "",
         "none cannot be read: No such file"},
        {{"text", "find", "b", "--file", folder.Path().string()},
         3,
         "",
         "cannot be read: Is a directory"},
        {{"text", "distance", "Flaw", "flaw", "lawn", "--case-penalty", "0.1"}, 0, "0.1\n2\n", ""},
        {{"text", "distance", "a", "A", "--case-penalty", "nan"}, 0, "2\n", ""},
        {{"text", "fold-digits", "\u0664\u2169\u4E8C\u5341"}, 0, "4020\n", ""},
        {{"text", "fold-digits", "--digits-only", "\u2169\u2168"}, 0, "\u21699\n", ""},
        {{"text", "generate", "--script", "33", "--length", "0"}, 0, "\n", ""},
    });
    const json found =
        json::parse(Genutil({"text", "find", "b", "abB", "x", "--all", "--json"}).output);
    EXPECT_EQ(found["results"][0]["matches"], json::parse(R"([{"position":2,"length":1,"text":"b"},
                              {"position":3,"length":1,"text":"B"}])"));
    EXPECT_TRUE(found["results"][1]["matches"].empty());
    const json measured = json::parse(Genutil({"text", "distance", "a", "ab", "--json"}).output);
    EXPECT_EQ(measured["results"][0]["distance"], 1.0);
    const json made = json::parse(
        Genutil({"text", "generate", "--script", "31", "--count", "2", "--json"}).output);
    EXPECT_EQ(made["results"].size(), 2U);
    EXPECT_EQ(made["results"][0]["result"].get<std::string>().size(), 60U) << "20 units of Braille";
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

    Check({
        {{"classes", "StringUtils"}, 0, "ToUpper(", ""},
        {{"classes", "GeneralUtilities.LongSet"}, 0, "ILongSet (default)", ""},
        {{"classes", "WordTypeEnum"}, 0, "qlnwtCode = 4", ""},
        {{"classes", "_IExtViewHelperEvents"}, 0, "[2] ImportProgress(", ""},
        {{"classes", "NoSuchClass"}, 1, "", "NoSuchClass"},
    });
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
