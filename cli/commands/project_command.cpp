#include "commands/project_command.h"

#include <generalutilities/extview/export_options.h>
#include <generalutilities/project/contents.h>
#include <generalutilities/project/language_tags.h>
#include <generalutilities/project/segment_codes.h>
#include <generalutilities/project/status_names.h>

#include "commands/project_create.h"
#include "component_client.h"
#include "failure.h"
#include "language.h"
#include "project_checks.h"
#include "unicode.h"

#include <charconv>
#include <memory>
#include <nlohmann/json.hpp>

/// `genutil project info` and `rows`: what a project holds.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct RowsOptions {
    std::string project;
    std::string language;
    std::string file = "all";
    std::string status;
    std::string find;
    bool onlyUntranslated = false;
    bool plainTexts = false;
    bool asJson = false;
    std::uint64_t skip = 0;
    std::optional<std::uint64_t> limit;
};

std::string Number(std::uint64_t number, std::string_view one, std::string_view many) {
    return std::to_string(number) + " " + std::string(number == 1 ? one : many);
}

std::string Describe(const LanguageCounts& language) {
    std::string text = "  " + LanguageName(language.langId) + ": " +
                       std::to_string(language.translated) + " translated, " +
                       std::to_string(language.empty) + " empty, " +
                       std::to_string(language.withComments) + " with comments";
    for (const auto& [bit, rows] : language.rowsPerStatusBit) {
        text += ", " + std::to_string(rows) + " " + ToUtf8(StatusText(bit));
    }
    return text;
}

std::string Describe(const ProjectInfo& info) {
    std::string text = "Source language: " + LanguageName(info.sourceLanguage) +
                       "\nRows: " + std::to_string(info.rows);
    if (info.lexiconRows > 0) {
        text += ", and " + std::to_string(info.lexiconRows) + " of the lexicon";
    }
    text += "\nTarget languages:";
    for (const LanguageCounts& language : info.languages) {
        text += "\n" + Describe(language);
    }
    text += "\nFiles:";
    for (const FileCounts& file : info.files) {
        text += "\n  " + std::to_string(file.id) + "  " + ShowControls(ToUtf8(file.name)) + ", " +
                Number(file.rows, "row", "rows");
        if (file.spec != file.name) {
            text += "  (" + ShowControls(ToUtf8(file.spec)) + ")";
        }
    }
    if (info.reimportedRows) {
        text += "\nThe latest import left " + Number(*info.reimportedRows, "row", "rows") +
                " to look at: genutil review";
    }
    return text;
}

json ToJson(const ProjectInfo& info, const std::string& project) {
    json languages = json::array();
    for (const LanguageCounts& language : info.languages) {
        json statuses = json::object();
        for (const auto& [bit, rows] : language.rowsPerStatusBit) {
            statuses[ToUtf8(StatusText(bit))] = rows;
        }
        languages.push_back({{"language", language.langId},
                             {"tag", ToUtf8(TagOfLangId(language.langId))},
                             {"translated", language.translated},
                             {"empty", language.empty},
                             {"withComments", language.withComments},
                             {"statuses", std::move(statuses)}});
    }
    json files = json::array();
    for (const FileCounts& file : info.files) {
        files.push_back({{"id", file.id},
                         {"name", ToUtf8(file.name)},
                         {"spec", ToUtf8(file.spec)},
                         {"rows", file.rows}});
    }
    json document{{"format", "genutil.project-info/1"},
                  {"project", project},
                  {"sourceLanguage", info.sourceLanguage},
                  {"sourceTag", ToUtf8(TagOfLangId(info.sourceLanguage))},
                  {"rows", info.rows},
                  {"lexiconRows", info.lexiconRows},
                  {"languages", std::move(languages)},
                  {"files", std::move(files)}};
    document["reimportedRows"] = info.reimportedRows ? json(*info.reimportedRows) : json(nullptr);
    return document;
}

ExitCode RunInfo(CommandContext& context, const std::string& path, bool asJson) {
    const OpenProject project = OpenProjectFile(path);
    const ProjectInfo info = ReadProjectInfo(*project.database);
    context.console.WriteLine(asJson ? ToJson(info, path).dump(2) : Describe(info));
    return ExitCode::Done;
}

/// The file that a name or number of `--file` means; nothing for all of them.
std::optional<std::int32_t> FileOf(const OpenProject& project, const std::string& file) {
    if (file == "all") {
        return std::nullopt;
    }
    if (file == "lexicon") {
        return Lexicon;
    }
    std::int32_t number = 0;
    const char* end = file.data() + file.size();
    const auto [stop, error] = std::from_chars(file.data(), end, number);
    const bool isNumber = error == std::errc() && stop == end;
    const std::u16string name = ArgumentToUtf16("--file", file);
    std::string known;
    for (const FileCounts& one : ReadProjectInfo(*project.database).files) {
        if ((isNumber && one.id == number) || one.name == name || one.spec == name) {
            return one.id;
        }
        known += "\n  " + std::to_string(one.id) + "  " + ShowControls(ToUtf8(one.name));
    }
    throw Failure("--file: the project has no file \"" + file + "\"; it has" +
                  (known.empty() ? " none" : known));
}

std::int32_t LanguageOf(const OpenProject& project, const std::string& language) {
    if (!language.empty()) {
        return ParseLanguage("--language", language);
    }
    const std::vector<std::int32_t> languages = ProjectLanguages(*project.database);
    if (languages.size() > 1) {
        throw UsageError(
            "--language: the project has several target languages; give one, such as " +
            ToUtf8(TagOfLangId(languages.front())));
    }
    return languages.front();
}

RowFilter FilterOf(const OpenProject& project, const RowsOptions& options) {
    RowFilter filter;
    filter.langId = LanguageOf(project, options.language);
    filter.fileId = FileOf(project, options.file);
    filter.onlyUntranslated = options.onlyUntranslated;
    filter.text = ArgumentToUtf16("--find", options.find);
    filter.skip = options.skip;
    filter.limit = options.limit;
    if (!options.status.empty()) {
        const auto status = ParseStatus(ArgumentToUtf16("--status", options.status));
        if (!status) {
            throw UsageError("--status: \"" + options.status + "\" is no status; the names are " +
                             ToUtf8(StatusNameList()));
        }
        filter.statusMask = *status;
    }
    return filter;
}

class RowPrinter {
  public:
    RowPrinter(Console& standardOutput, const RowsOptions& chosen, std::int32_t langId)
        : console(standardOutput), options(chosen) {
        if (options.asJson) {
            console.Write(R"({"format": "genutil.project-rows/1", "project": )" +
                          json(options.project).dump() +
                          ", \"language\": " + std::to_string(langId) + ", \"rows\": [");
        } else {
            console.WriteLine(console.Paint(Style::Bold, "id\tstatus\tsource\ttarget\tcomment"));
        }
    }

    void Print(const ProjectRow& row) {
        const std::string source = Text(row.source);
        const std::string target = Text(row.target);
        if (options.asJson) {
            const json line{{"id", ToUtf8(row.id)},
                            {"source", source},
                            {"target", target},
                            {"comments", ToUtf8(row.comments)},
                            {"status", row.status},
                            {"statusText", ToUtf8(StatusText(row.status))},
                            {"percentage", row.percentage},
                            {"fileId", row.fileId}};
            console.Write((isFirst ? "\n  " : ",\n  ") + line.dump());
            isFirst = false;
            return;
        }
        console.WriteLine(ShowControls(ToUtf8(row.id)) + "\t" + ToUtf8(StatusText(row.status)) +
                          "\t" + ShowControls(source) + "\t" + ShowControls(target) + "\t" +
                          ShowControls(ToUtf8(row.comments)));
    }

    void Finish() {
        if (options.asJson) {
            console.WriteLine(isFirst ? "]}" : "\n]}");
        }
    }

  private:
    std::string Text(std::u16string_view text) const {
        return ToUtf8(options.plainTexts ? PlainText(text) : std::u16string(text));
    }

    Console& console;
    const RowsOptions& options;
    bool isFirst = true;
};

ExitCode RunRows(CommandContext& context, const RowsOptions& options) {
    const OpenProject project = OpenProjectFile(options.project);
    const RowFilter filter = FilterOf(project, options);
    RequireLanguage(project, filter.langId);
    RowPrinter printer(context.console, options, filter.langId);
    const std::uint64_t count = ReadProjectRows(*project.database, filter,
                                                [&](const ProjectRow& row) { printer.Print(row); });
    printer.Finish();
    if (count == 0) {
        context.console.Note("no row matches");
        return ExitCode::NegativeAnswer;
    }
    return ExitCode::Done;
}

void AddInfoCommand(CLI::App& project, CommandContext& context) {
    auto path = std::make_shared<std::string>();
    auto asJson = std::make_shared<bool>(false);
    CLI::App* command = project.add_subcommand(
        "info", "Languages, files, and how many rows are translated, locked, commented ...");
    command->add_option("PROJECT", *path, "The project file")->required();
    command->add_flag("--json", *asJson, "One JSON document, \"genutil.project-info/1\"");
    command->footer("Example:\n  genutil project info app.project");
    context.Runs(command, [&context, path, asJson] { return RunInfo(context, *path, *asJson); });
}

void AddRowsCommand(CLI::App& project, CommandContext& context) {
    auto options = std::make_shared<RowsOptions>();
    CLI::App* command = project.add_subcommand(
        "rows", "List rows of one language, in the order of their identifiers");
    command->add_option("PROJECT", options->project, "The project file")->required();
    command
        ->add_option("--language,-l", options->language,
                     "The target language; may be left out when the project has only one")
        ->type_name("LANGUAGE");
    command
        ->add_option("--file", options->file, "all, lexicon, or one file by its identifier or name")
        ->capture_default_str()
        ->type_name("FILE");
    command->add_flag("--only-untranslated", options->onlyUntranslated,
                      "Rows with an empty target");
    command
        ->add_option("--status", options->status,
                     "Rows with any of these status bits: fuzzy, locked+pending, ...")
        ->type_name("NAMES");
    command
        ->add_option("--find", options->find,
                     "Rows with this text in source, target, comment or identifier; case does not "
                     "count")
        ->type_name("TEXT");
    command->add_option("--skip", options->skip, "Pass over so many matching rows")
        ->check(CLI::NonNegativeNumber)
        ->type_name("COUNT");
    command->add_option("--limit", options->limit, "Give at most so many rows")
        ->check(CLI::NonNegativeNumber)
        ->type_name("COUNT");
    command->add_flag("--plain", options->plainTexts,
                      "Plain texts: escapes undone, codes as the placeholders that they hide");
    command->add_flag("--json", options->asJson, "One JSON document, \"genutil.project-rows/1\"");
    command->footer(
        "A line a row: identifier, status, source, target and comment, parted by tabs; line ends\n"
        "and other control characters stand as their pictures. Exit code 1: no row matches.\n\n"
        "Examples:\n"
        "  genutil project rows app.project -l fr-FR --only-untranslated --limit 20\n"
        "  genutil project rows app.project -l de --status fuzzy --json | jq '.rows[].id'");
    context.Runs(command, [&context, options] { return RunRows(context, *options); });
}

}  // namespace

void AddProjectCommand(CLI::App& parent, CommandContext& context) {
    CLI::App* project = parent.add_subcommand("project", "Create a project, or show what it holds");
    project->require_subcommand(1);
    AddProjectCreateCommand(*project, context);
    AddInfoCommand(*project, context);
    AddRowsCommand(*project, context);
}

}  // namespace generalutilities::cli
