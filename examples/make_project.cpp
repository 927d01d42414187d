// Makes a project file from a table, and prints which languages it has and the first words of it:
//   make-project handbook.csv handbook.project

#include <generalutilities/error.h>
#include <generalutilities/project/contents.h>
#include <generalutilities/project/create.h>
#include <generalutilities/project/inputs.h>
#include <generalutilities/project/language_tags.h>
#include <generalutilities/text/folding.h>
#include <generalutilities/text/words.h>
#include <generalutilities/utf8.h>

#include <iostream>

using namespace generalutilities;

namespace {

void MakeProject(const std::string& table, const std::string& project) {
    std::vector<std::unique_ptr<RowSource>> sources;
    sources.push_back(OpenDelimitedInput({.path = FromUtf8(table)}));
    CreateOptions options;
    options.replaceExisting = true;
    const CreateResult made = CreateProject(FromUtf8(project), sources, options);
    std::cout << made.rows << " rows and " << made.lexiconRows << " lexicon entries\n";
}

void ListProject(const std::string& project) {
    DatabaseFailure failure;
    const auto database = OpenDatabase(FromUtf8(project), OpenMode::ReadWrite, failure);
    if (database == nullptr) {
        throw Error(E_FAIL, ToUtf8(failure.description));
    }
    const ProjectInfo info = ReadProjectInfo(*database);
    for (const LanguageCounts& language : info.languages) {
        std::cout << ToUtf8(TagOfLangId(language.langId)) << ": " << language.translated
                  << " translated, " << language.empty << " empty\n";
    }
    RowFilter firstThree{.langId = info.languages.front().langId, .limit = 3};
    ReadProjectRows(*database, firstThree, [&](const ProjectRow& row) {
        const std::u16string key = ToIndex(row.source, info.sourceLanguage);
        std::cout << ToUtf8(row.id) << ' ' << ToUtf8(DeAccentUpperCaseString(key)) << '\n';
    });
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: make-project TABLE.csv PROJECT\n";
        return 2;
    }
    try {
        MakeProject(argv[1], argv[2]);
        ListProject(argv[2]);
        return 0;
    } catch (const Error& error) {
        std::cerr << "make-project: " << error.what() << '\n';
        return 3;
    }
}
