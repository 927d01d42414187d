#include "case_table.h"
#include "program.h"
#include "sample_project.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

/// `genutil project`, `review` and `accept`, as a user meets them.
namespace generalutilities::cli_test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

const std::string Table =
    "source,target:fr-FR,target:ar,status:fr-FR\n"
    "Open {1},Ouvrir {1},افتح {1},exact\n"
    "Close,Fermer,,fuzzy\n";
const std::string Catalog =
    "msgid \"\"\nmsgstr \"Language: fr\\nContent-Type: text/plain; charset=UTF-8\\n\"\n\n"
    "msgid \"Save %s\"\nmsgstr \"Enregistrer %s\"\n";

class ProjectCommands : public testing::Test {
  protected:
    Result Create(std::vector<std::string> arguments, const Surroundings& surroundings = {}) {
        arguments.insert(arguments.begin(), {"project", "create", project});
        return Genutil(arguments, surroundings);
    }

    TemporaryFolder folder;
    std::string project = folder / "a.project";
};

TEST_F(ProjectCommands, CreateFromTablesAndCatalogues) {
    const Result result = Create({folder.Write("a.csv", Table), folder.Write("f.po", Catalog),
                                  "--add-language", "ja", "--json", "--source", "en-GB"});
    ASSERT_EQ(result.exitCode, 0) << result.error;
    const json summary = json::parse(result.output);
    EXPECT_EQ(summary["format"], "genutil.project-create/1");
    EXPECT_EQ(summary["rows"], 3);
    EXPECT_EQ(summary["languages"], json({1036, 1025, 1041}));

    const json info = json::parse(Genutil({"project", "info", project, "--json"}).output);
    EXPECT_EQ(info["sourceTag"], "en-GB");
    EXPECT_EQ(info["languages"][0]["statuses"], json({{"exact", 2}, {"fuzzy", 1}}));
    EXPECT_EQ(info["languages"][1]["empty"], 2);
    EXPECT_EQ(info["files"][1]["name"], "f.po");
    EXPECT_TRUE(info["reimportedRows"].is_null());
}

TEST_F(ProjectCommands, CreateSaysWhatIsWrongAndLeavesNothing) {
    const std::string table = folder.Write("a.csv", Table);
    const struct {
        std::vector<std::string> arguments;
        int exitCode;
        std::string error;
    } cases[] = {
        {{}, 2, "INPUT"},
        {{"a.doc"}, 2, "--as"},
        {{table, "--source", "klingon"}, 2, "klingon"},
        {{"xx-YY=a.po"}, 2, "xx-YY"},
        {{"a.pot", "b.pot"}, 2, "only one template"},
        {{folder / "absent.po"}, 3, "absent.po"},
        {{folder.Write("b.csv", "source,target:fr\nx\n")}, 3, "b.csv, line 2"},
        {{folder.Write("g.csv", "source,target\nx,y\n")}, 3, "target:fr-FR"},
    };
    const std::size_t files = folder.FileCount();
    for (const auto& test : cases) {
        const Result result = Create(test.arguments);
        EXPECT_EQ(result.exitCode, test.exitCode) << test.error << result.error;
        EXPECT_THAT(result.error, HasSubstr(test.error));
        EXPECT_EQ(folder.FileCount(), files) << test.error;
    }
    EXPECT_EQ(Create({folder / "g.csv", "--language", "fr"}).exitCode, 0);
    EXPECT_THAT(Create({table}).error, HasSubstr("already"));
    EXPECT_EQ(Create({table, "--force"}).exitCode, 0);
    EXPECT_EQ(folder.FileCount(), files + 1);

    const Result none = Create({folder.Write("n.csv", "source,target:fr\n,\n"), "--force"});
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_THAT(none.error, HasSubstr("1 rows without any text"));
}

TEST_F(ProjectCommands, CreateOnAFullDiskLeavesNothing) {
    std::string rows = "source,target:fr\n";
    for (int i = 0; i < 3000; ++i) {
        rows += "Sentence " + std::to_string(i) + "," + std::string(200, 'x') + "\n";
    }
    const std::string table = folder.Write("a.csv", rows);
    for (const long limit : {0L, 300000L}) {
        const Result result = Create({table}, {.fileSizeLimit = limit});
        EXPECT_EQ(result.exitCode, 3) << result.error;
        EXPECT_EQ(folder.FileCount(), 1U) << result.error;
    }
}

TEST_F(ProjectCommands, PlaceholdersBecomeCodes) {
    ASSERT_EQ(Create({folder.Write("f.po", Catalog), "--codes"}).exitCode, 0);
    EXPECT_THAT(Genutil({"project", "rows", project}).output, HasSubstr("Save ␆{1}␇%s␈"));
    EXPECT_THAT(Genutil({"project", "rows", project, "--plain"}).output,
                HasSubstr("000001\texact\tSave %s\tEnregistrer %s"));
}

TEST_F(ProjectCommands, RowsAreFiltered) {
    const std::string path = MakeProject(folder);
    for (const auto& row : CaseTable("row_filters.tsv")) {
        std::vector<std::string> arguments = Arguments(row[0]);
        arguments.insert(arguments.begin(), {"project", "rows", path, "--json"});
        const Result result = Genutil(arguments);
        EXPECT_EQ(result.exitCode, Number(row[1])) << testing::PrintToString(arguments);
        std::string ids;
        const json answer = result.exitCode > 1 ? json() : json::parse(result.output);
        for (const json& found : answer.is_null() ? json() : answer["rows"]) {
            ids += found["id"].get<std::string>() + " ";
        }
        EXPECT_EQ(ids, Bytes(row[2]));
    }
    EXPECT_THAT(Genutil({"project", "rows", path, "-l", "fr", "--find", "Two"}).output,
                HasSubstr("Two␊lines\tDeux␊lignes"));
    EXPECT_EQ(Genutil({"project", "info", folder.Write("x", "no project")}).exitCode, 3);
}

class Returned : public testing::Test {
  protected:
    void Import(const std::vector<std::pair<std::string, std::string>>& edits) {
        const std::string file = folder / "review.rtf";
        ASSERT_EQ(Genutil({"export", project, "-o", file, "-l", "fr", "--force"}).exitCode, 0);
        std::string content = ReadFile(file);
        for (const auto& [from, to] : edits) {
            const std::size_t place = content.find(from);
            ASSERT_NE(place, std::string::npos) << from;
            content.replace(place, from.size(), to);
        }
        folder.Write("review.rtf", content);
        ASSERT_EQ(Genutil({"import", project, file, "-l", "fr"}).exitCode, 0);
    }

    TemporaryFolder folder;
    std::string project = MakeProject(folder);
};

TEST_F(Returned, ReviewMarksTheChangedWords) {
    Import({{"Bonjour \\{1\\}monde", "Salut monde"}, {"Ligne", "Rang"}, {"lignes", "rangs"}});
    const Result result = Genutil({"review", project});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.output, HasSubstr("A1  code lost: {1}\n    Hello {1}world{2}.\n"
                                         "  - [-Bonjour {1}-]monde{2}.\n"
                                         "  + [+Salut +]monde{2}.\n"));
    EXPECT_THAT(result.output, HasSubstr("A2  not marked as accepted (locked)"));
    EXPECT_THAT(result.output, HasSubstr("  - Deux[-␊lignes-]\n  + Deux[+␍␊rangs+]\n"));
    EXPECT_THAT(result.output, Not(HasSubstr("A3")));
    EXPECT_THAT(Genutil({"review", project, "--all"}).output, HasSubstr("A3"));

    const json document = json::parse(Genutil({"review", project, "--json"}).output);
    EXPECT_EQ(document["format"], "genutil.review/1");
    EXPECT_EQ(document["language"], 1036);
    ASSERT_EQ(document["rows"].size(), 3U);
    EXPECT_EQ(document["rows"][0]["stretches"][0]["new"], "Salut ");
    const Result coloured = Genutil({"review", project}, {.terminal = true});
    EXPECT_THAT(coloured.output, HasSubstr("\x1b[31mBonjour {1}"));
    EXPECT_THAT(coloured.output, Not(HasSubstr("[-")));
}

TEST_F(Returned, AcceptTakesOverInOneGo) {
    EXPECT_EQ(Genutil({"review", project}).exitCode, 3) << "no import yet";
    Import({});
    EXPECT_EQ(Genutil({"review", project}).exitCode, 1) << "nothing to review";
    Import({{"Bonjour \\{1\\}monde", "Salut monde"}, {"Ligne", "Rang"}, {"Chapitre 1", "Tome 1"}});
    const std::string before = ReadFile(project);
    const Result dry = Genutil({"accept", project, "--dry-run", "--list"});
    EXPECT_EQ(dry.exitCode, 0);
    EXPECT_THAT(dry.output, HasSubstr("A3\ttaken\tTome 1\n"));
    EXPECT_THAT(dry.output, HasSubstr("Would take over 2 of 6 rows"));
    EXPECT_EQ(ReadFile(project), before);

    const Result strict = Genutil({"accept", project, "--refuse-code-changes", "--json"});
    EXPECT_EQ(strict.exitCode, 1);
    const json document = json::parse(strict.output);
    EXPECT_EQ(document["summary"]["taken"], 1);
    EXPECT_EQ(document["summary"]["refused"], 1);
    EXPECT_EQ(document["summary"]["notAccepted"], 1);
    EXPECT_EQ(document["rows"][0]["codes"][0]["kind"], "lost");

    const Result all = Genutil({"accept", project, "--include-locked"});
    EXPECT_EQ(all.exitCode, 0);
    EXPECT_THAT(all.error, HasSubstr("row A1: code lost: {1}"));
    EXPECT_THAT(Genutil({"project", "rows", project, "-l", "fr"}).output,
                HasSubstr("Rang verrouillée"));
    EXPECT_THAT(Genutil({"accept", project}).output, HasSubstr("Took over 0 of 6 rows"));
    EXPECT_EQ(Genutil({"accept", project, "--id", "A1", "--id", "Z9"}).exitCode, 1);
}

TEST_F(Returned, AcceptRefusesWhatChangedMeanwhile) {
    Import({{"Bonjour", "Salut"}, {"Chapitre 1", "Tome 1"}});
    RunSql(project, "UPDATE Pairs SET Target_1036 = 'Autre' WHERE ID = 'A1'");
    const Result result = Genutil({"accept", project, "-l", "fr"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("row A1 was not taken over"));
    EXPECT_THAT(result.output, HasSubstr("Took over 1 of 6 rows"));
}

}  // namespace
}  // namespace generalutilities::cli_test
