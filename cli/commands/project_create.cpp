#include "commands/project_create.h"

#include <generalutilities/project/create.h>
#include <generalutilities/project/inputs.h>
#include <generalutilities/project/language_tags.h>

#include "failure.h"
#include "interruption.h"
#include "language.h"
#include "progress.h"
#include "unicode.h"

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

/// `genutil project create`: tables and catalogues become a project.
namespace generalutilities::cli {
namespace {

enum class InputKind { Table, Catalog, Template };

struct CreateCommandOptions {
    std::string project;
    std::vector<std::string> inputs;
    std::string sourceLanguage = "en-US";
    std::string tableLanguage;
    std::vector<std::string> moreLanguages;
    std::string kind = "auto";
    std::string templateFile;
    std::string delimiter = "auto";
    bool noQuotes = false;
    std::string texts = "auto";
    bool codes = false;
    bool filesByReference = false;
    bool force = false;
    bool asJson = false;
    ProgressMode progress = ProgressMode::Automatic;
};

std::string EndingOf(const std::string& path) {
    std::string ending = std::filesystem::path(path).extension().string();
    for (char& c : ending) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    }
    return ending;
}

InputKind KindOf(const std::string& path, const std::string& kind) {
    const std::string ending = EndingOf(path);
    if (kind == "po") {
        return ending == ".pot" ? InputKind::Template : InputKind::Catalog;
    }
    if (kind != "auto" || ending == ".csv" || ending == ".tsv" || ending == ".tab") {
        return InputKind::Table;
    }
    if (ending == ".po") {
        return InputKind::Catalog;
    }
    if (ending == ".pot") {
        return InputKind::Template;
    }
    throw UsageError(path +
                     ": the ending tells no kind of input; .csv, .tsv, .po and .pot do, or "
                     "say it with --as");
}

/// The texts of an input; each kind of input has its own usual form.
TextForm FormOf(const CreateCommandOptions& options, TextForm usual) {
    if (options.codes || options.texts == "codes") {
        return TextForm::Placeholders;
    }
    return options.texts == "segment" ? TextForm::Segment
           : options.texts == "plain" ? TextForm::Plain
                                      : usual;
}

char DelimiterOf(const CreateCommandOptions& options, const std::string& path) {
    if (options.delimiter == "auto") {
        const std::string ending = EndingOf(path);
        const bool tabs =
            options.kind == "auto" ? ending == ".tsv" || ending == ".tab" : options.kind == "tsv";
        return tabs ? '\t' : ',';
    }
    const std::pair<std::string_view, char> names[] = {
        {"comma", ','}, {"semicolon", ';'}, {"tab", '\t'}, {"pipe", '|'}};
    for (const auto& [name, delimiter] : names) {
        if (options.delimiter == name) {
            return delimiter;
        }
    }
    return options.delimiter[0];
}

/// A catalogue as typed: "po/fr.po", or with its language "fr=po/french.po".
CatalogFile ParseCatalog(const std::string& argument) {
    const std::size_t sign = argument.find('=');
    std::error_code ignored;
    if (sign != std::string::npos && !std::filesystem::exists(argument, ignored)) {
        const std::int32_t langId = ParseLanguage(argument, argument.substr(0, sign));
        return {ArgumentToUtf16(argument, argument.substr(sign + 1)), langId};
    }
    return {ArgumentToUtf16("INPUT", argument), std::nullopt};
}

std::unique_ptr<RowSource> OpenTable(const CreateCommandOptions& options, const std::string& path) {
    DelimitedInput input;
    input.path = ArgumentToUtf16("INPUT", path);
    input.delimiter = DelimiterOf(options, path);
    input.quoted = !options.noQuotes;
    input.textForm = FormOf(options, TextForm::Segment);
    if (!options.tableLanguage.empty()) {
        input.language = ParseLanguage("--language", options.tableLanguage);
    }
    return OpenDelimitedInput(input);
}

/// All catalogues and the template are one set, and stand where the first of them was typed.
std::vector<std::unique_ptr<RowSource>> OpenInputs(const CreateCommandOptions& options) {
    CatalogInput catalogs;
    catalogs.textForm = FormOf(options, TextForm::Plain);
    catalogs.filesByReference = options.filesByReference;
    for (const std::string& language : options.moreLanguages) {
        catalogs.emptyLanguages.push_back(ParseLanguage("--add-language", language));
    }
    const auto setTemplate = [&](const std::string& name, const std::string& path) {
        if (catalogs.templatePath) {
            throw UsageError(path + ": only one template can be given");
        }
        catalogs.templatePath = ArgumentToUtf16(name, path);
    };
    if (!options.templateFile.empty()) {
        setTemplate("--template", options.templateFile);
    }
    constexpr std::size_t None = static_cast<std::size_t>(-1);
    std::size_t catalogPlace = options.templateFile.empty() ? None : 0;
    std::vector<std::unique_ptr<RowSource>> sources;
    for (const std::string& path : options.inputs) {
        const InputKind kind = KindOf(path, options.kind);
        if (kind == InputKind::Table) {
            sources.push_back(OpenTable(options, path));
            continue;
        }
        catalogPlace = std::min(catalogPlace, sources.size());
        if (kind == InputKind::Template) {
            setTemplate("INPUT", path);
        } else {
            catalogs.catalogs.push_back(ParseCatalog(path));
        }
    }
    if (catalogPlace != None) {
        sources.insert(sources.begin() + static_cast<std::ptrdiff_t>(catalogPlace),
                       OpenCatalogInput(catalogs));
    }
    if (sources.empty()) {
        throw UsageError("INPUT: give at least one table or catalogue");
    }
    return sources;
}

std::string Describe(const CreateResult& result, const std::string& project) {
    std::string text = "Created " + project + ": " + std::to_string(result.rows) + " rows";
    if (result.lexiconRows > 0) {
        text += " and " + std::to_string(result.lexiconRows) + " of the lexicon";
    }
    text += " from " + std::to_string(result.files.size()) +
            (result.files.size() == 1 ? " file" : " files") + ", for";
    for (std::size_t i = 0; i < result.languages.size(); ++i) {
        text += (i == 0 ? " " : ", ") + LanguageName(result.languages[i]);
    }
    return text;
}

nlohmann::json ToJson(const CreateResult& result, const std::string& project) {
    nlohmann::json files = nlohmann::json::array();
    for (const std::u16string& file : result.files) {
        files.push_back(ToUtf8(file));
    }
    return {{"format", "genutil.project-create/1"},
            {"project", project},
            {"rows", result.rows},
            {"lexiconRows", result.lexiconRows},
            {"languages", result.languages},
            {"files", std::move(files)},
            {"notes", result.notes}};
}

ExitCode RunCreate(CommandContext& context, const CreateCommandOptions& options) {
    CreateOptions create;
    create.sourceLanguage = ParseLanguage("--source", options.sourceLanguage);
    create.replaceExisting = options.force;
    for (const std::string& language : options.moreLanguages) {
        create.moreLanguages.push_back(ParseLanguage("--add-language", language));
    }
    const std::u16string path = ArgumentToUtf16("PROJECT", options.project);
    const auto sources = OpenInputs(options);
    CreateResult result;
    {
        const Interruption interruption;
        ProgressDisplay display(context.console, options.progress, "creating");
        create.progress = [&](int percent) {
            interruption.ThrowIfCalled();
            display.Update(percent);
        };
        result = CreateProject(path, sources, create);
    }
    for (const std::string& note : result.notes) {
        context.console.Warn(ShowControls(note));
    }
    context.console.WriteLine(options.asJson ? ToJson(result, options.project).dump(2)
                                             : Describe(result, options.project));
    if (result.rows + result.lexiconRows == 0) {
        context.console.Warn("the inputs hold no row; the project is empty");
        return ExitCode::NegativeAnswer;
    }
    return ExitCode::Done;
}

}  // namespace

void AddProjectCreateCommand(CLI::App& project, CommandContext& context) {
    auto options = std::make_shared<CreateCommandOptions>();
    CLI::App* command =
        project.add_subcommand("create", "Make a project of tables (CSV, TSV) and catalogues (PO)");
    command->add_option("PROJECT", options->project, "The project file to create")->required();
    command
        ->add_option(
            "INPUT", options->inputs,
            "Tables, one catalogue a language (as fr=FILE where neither its header nor its "
            "name tells the language), a template (.pot)")
        ->type_name("FILE");
    command->add_option("--source,-s", options->sourceLanguage, "The language of the sources")
        ->capture_default_str()
        ->type_name("LANGUAGE");
    command
        ->add_option("--language,-l", options->tableLanguage,
                     "The language of a table's columns that name none (target, status, ...)")
        ->type_name("LANGUAGE");
    command
        ->add_option("--add-language", options->moreLanguages,
                     "A target language that no input has; may be given again")
        ->type_name("LANGUAGE")
        ->allow_extra_args(false);
    command->add_option("--as", options->kind, "What the inputs are, whatever their endings")
        ->check(CLI::IsMember({"auto", "csv", "tsv", "po"}))
        ->capture_default_str()
        ->type_name("KIND");
    command
        ->add_option("--template", options->templateFile,
                     "The catalogue that decides the messages and their order")
        ->type_name("FILE");
    command
        ->add_option("--delimiter", options->delimiter,
                     "What parts the cells: comma, semicolon, tab, pipe")
        ->check(CLI::IsMember({"auto", "comma", "semicolon", "tab", "pipe"}))
        ->capture_default_str()
        ->type_name("NAME");
    command->add_flag("--no-quotes", options->noQuotes,
                      "A double quote in a table is text like any other");
    command
        ->add_option("--texts", options->texts,
                     "What the texts are: segment text as it is (usual for tables), plain text "
                     "whose \\ { } are escaped (usual for catalogues), or plain text with codes")
        ->check(CLI::IsMember({"auto", "segment", "plain", "codes"}))
        ->capture_default_str()
        ->type_name("FORM");
    command->add_flag("--codes", options->codes,
                      "The same as --texts codes: %s, {name} and <b> become codes {1}, {2}, ... "
                      "that hide the placeholder");
    command->add_flag("--files-by-reference", options->filesByReference,
                      "A message belongs to the program file of its first reference");
    command->add_flag("--force", options->force, "Replace a file of that name");
    command->add_flag("--json", options->asJson,
                      "The summary as JSON, \"genutil.project-create/1\"");
    AddProgressOption(command, options->progress);
    command->footer(
        "A table has a heading row. Its columns, in any order:\n"
        "  source                  required\n"
        "  target:LANG             the translation into a language: target:fr-FR, target:1031\n"
        "  status:LANG             a number, or names joined by +: exact, fuzzy, assembled,\n"
        "                          propagated, auto-propagated, machine, locked, pending,\n"
        "                          guaranteed, exact-extra\n"
        "  comment:LANG, percentage:LANG\n"
        "  id                      unique; without it rows are numbered 000001, 000002, ...\n"
        "  file                    the file that the row comes from\n"
        "  lexicon, frequency      yes for an entry of the lexicon, and how often it occurs\n"
        "Fuzzy messages of a catalogue become status fuzzy, other translations exact.\n"
        "The project appears when it is complete; a failure leaves nothing. Exit code 1: the\n"
        "inputs hold no row. docs/projects.md tells all about the inputs.\n\n"
        "Examples:\n"
        "  genutil project create app.project --source en-US po/fr.po po/de.po\n"
        "  genutil project create app.project app.pot fr=po/french.po --add-language ja --codes\n"
        "  genutil project create book.project book.csv --delimiter semicolon -l fr-FR");
    context.Runs(command, [&context, options] { return RunCreate(context, *options); });
}

}  // namespace generalutilities::cli
