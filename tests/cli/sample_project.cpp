#include "sample_project.h"

#include <generalutilities/project/create.h>
#include <generalutilities/project/inputs.h>

#include "unicode.h"

#include <sqlite3.h>
#include <stdexcept>

namespace generalutilities::cli_test {
namespace {

std::string CreateFrom(const TemporaryFolder& folder, const std::string& name,
                       const std::string& table) {
    DelimitedInput input;
    input.path = cli::ToUtf16(folder.Write(name + ".csv", table));
    std::vector<std::unique_ptr<RowSource>> sources;
    sources.push_back(OpenDelimitedInput(input));
    CreateProject(cli::ToUtf16(folder / name), sources, {});
    std::filesystem::remove(folder / (name + ".csv"));
    return folder / name;
}

}  // namespace

std::string MakeProject(const TemporaryFolder& folder, const std::string& name) {
    return CreateFrom(
        folder, name,
        "id,file,lexicon,source,target:fr-FR,status:fr-FR,comment:fr-FR,target:ar-SA\n"
        "A1,docs/one.html,,Hello {1}world{2}.,Bonjour {1}monde{2}.,exact,,مرحبا\n"
        "A2,docs/one.html,,Locked row,Ligne verrouillée,locked,Ne pas changer,مقفل\n"
        "A3,docs/one.html,,Chapter 1,Chapitre 1,none,,الفصل 1\n"
        "A4,docs/two.html,,Chapter 2,Chapitre 2,none,,الفصل 2\n"
        "A5,docs/two.html,,Untranslated,,none,,\n"
        "A6,docs/two.html,,\"Two\nlines\",\"Deux\nlignes\",fuzzy,,سطران\n"
        "L1,,yes,term,terme,none,,مصطلح\n");
}

std::string MakeLongProject(const TemporaryFolder& folder, int rows) {
    std::string table = "source,target:fr-FR\n";
    for (int i = 0; i < rows; ++i) {
        table += "Sentence " + std::to_string(i) + ",\"" + std::string(200, 'x') + "\"\n";
    }
    return CreateFrom(folder, "long.project", table);
}

void RunSql(const std::string& path, const std::string& sql) {
    sqlite3* database = nullptr;
    char* message = nullptr;
    if (sqlite3_open(path.c_str(), &database) != SQLITE_OK ||
        sqlite3_exec(database, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
        throw std::runtime_error(sql + ": " + (message == nullptr ? "?" : message));
    }
    sqlite3_close(database);
}

}  // namespace generalutilities::cli_test
