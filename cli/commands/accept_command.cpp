#include "commands/accept_command.h"

#include <generalutilities/project/accept.h>

#include "failure.h"
#include "language.h"
#include "project_checks.h"
#include "reimport.h"
#include "unicode.h"

#include <memory>
#include <nlohmann/json.hpp>

/// `genutil accept`: the accepted rows of the latest import go over into the project.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct AcceptCommandOptions {
    std::string project;
    std::string language;
    std::vector<std::string> ids;
    bool includeLocked = false;
    bool refuseCodeChanges = false;
    bool dryRun = false;
    bool list = false;
    bool asJson = false;
};

const char* OutcomeName(AcceptOutcome outcome) {
    switch (outcome) {
        case AcceptOutcome::Taken:
            return "taken";
        case AcceptOutcome::Unchanged:
            return "unchanged";
        case AcceptOutcome::NotAccepted:
            return "not-accepted";
        case AcceptOutcome::Refused:
            return "refused";
    }
    return "unknown";
}

/// What is said about the rows is gathered and said when the transaction is through: before,
/// nothing has happened.
class Protocol {
  public:
    explicit Protocol(const AcceptCommandOptions& chosen) : options(chosen) {}

    void Add(const AcceptedRow& row) {
        const std::string id = ShowControls(ToUtf8(row.id));
        if (row.outcome == AcceptOutcome::Refused) {
            warnings.push_back("row " + id + " was not taken over: " + row.reason);
        } else if (row.outcome == AcceptOutcome::Taken && !row.codes.empty()) {
            warnings.push_back("row " + id + ": " + DescribeCodes(row.codes));
        }
        if (options.asJson && row.outcome != AcceptOutcome::Unchanged) {
            rows.push_back(ToJson(row));
        } else if (options.list && row.outcome != AcceptOutcome::Unchanged) {
            lines.push_back(id + "\t" + OutcomeName(row.outcome) + "\t" +
                            ShowControls(ToUtf8(row.newTarget)));
        }
    }

    void Tell(Console& console, const AcceptSummary& summary, std::int32_t langId) {
        for (const std::string& warning : warnings) {
            console.Warn(warning);
        }
        for (const std::u16string& id : summary.unknownIds) {
            console.Warn("--id: the import has no row \"" + ShowControls(ToUtf8(id)) + "\"");
        }
        if (options.asJson) {
            console.WriteLine(Document(summary, langId).dump(2));
            return;
        }
        for (const std::string& line : lines) {
            console.WriteLine(line);
        }
        console.WriteLine(Describe(summary, langId));
    }

  private:
    static json ToJson(const AcceptedRow& row) {
        json codes = json::array();
        for (const CodeDifference& difference : row.codes) {
            codes.push_back({{"kind", CodeKindName(difference.kind)},
                             {"code", ToUtf8(difference.code)},
                             {"count", difference.count}});
        }
        return {{"id", ToUtf8(row.id)},
                {"result", OutcomeName(row.outcome)},
                {"reason", row.reason},
                {"oldTarget", ToUtf8(row.oldTarget)},
                {"newTarget", ToUtf8(row.newTarget)},
                {"sourceEdited", row.sourceEdited},
                {"codes", std::move(codes)}};
    }

    json Document(const AcceptSummary& summary, std::int32_t langId) {
        json unknown = json::array();
        for (const std::u16string& id : summary.unknownIds) {
            unknown.push_back(ToUtf8(id));
        }
        return {{"format", "genutil.accept/1"},
                {"project", options.project},
                {"language", langId},
                {"dryRun", options.dryRun},
                {"rows", std::move(rows)},
                {"summary",
                 {{"rows", summary.rows},
                  {"taken", summary.taken},
                  {"unchanged", summary.unchanged},
                  {"notAccepted", summary.notAccepted},
                  {"refused", summary.refused},
                  {"codesDiffer", summary.codesDiffer},
                  {"sourceEdited", summary.sourceEdited},
                  {"unknownIds", std::move(unknown)}}}};
    }

    std::string Describe(const AcceptSummary& summary, std::int32_t langId) const {
        std::string text = options.dryRun ? "Would take over " : "Took over ";
        text += std::to_string(summary.taken) + " of " + std::to_string(summary.rows) +
                " rows for " + LanguageName(langId);
        const auto part = [&text](std::uint64_t count, const char* what) {
            if (count > 0) {
                text += "; " + std::to_string(count) + " " + what;
            }
        };
        part(summary.unchanged, "unchanged");
        part(summary.notAccepted, "left because they are locked (--include-locked takes them)");
        part(summary.refused, "refused");
        part(summary.codesDiffer, "of those taken differ from their source in codes");
        part(summary.sourceEdited, "of those taken had an edited source, which stays as it was");
        return text;
    }

    const AcceptCommandOptions& options;
    std::vector<std::string> warnings;
    std::vector<std::string> lines;
    json rows = json::array();
};

ExitCode RunAccept(CommandContext& context, const AcceptCommandOptions& options) {
    AcceptOptions accept;
    for (const std::string& id : options.ids) {
        accept.ids.push_back(ArgumentToUtf16("--id", id));
    }
    const OpenProject project = OpenProjectFile(options.project);
    if (!options.dryRun) {
        RequireWritable(project);
    }
    accept.langId = ReimportLanguage(project, options.language);
    accept.includeLocked = options.includeLocked;
    accept.refuseCodeChanges = options.refuseCodeChanges;
    accept.dryRun = options.dryRun;

    Protocol protocol(options);
    const AcceptSummary summary = AcceptReimportedRows(
        *project.database, accept, [&](const AcceptedRow& row) { protocol.Add(row); });
    protocol.Tell(context.console, summary, accept.langId);
    return summary.refused > 0 || !summary.unknownIds.empty() ? ExitCode::NegativeAnswer
                                                              : ExitCode::Done;
}

}  // namespace

void AddAcceptCommand(CLI::App& parent, CommandContext& context) {
    auto options = std::make_shared<AcceptCommandOptions>();
    CLI::App* command =
        parent.add_subcommand("accept", "Take the rows of the latest import over into the project");
    command->add_option("PROJECT", options->project, "The project file")->required();
    command
        ->add_option("--language,-l", options->language,
                     "The language of the import; may be left out where the rows tell it")
        ->type_name("LANGUAGE");
    command
        ->add_option("--id", options->ids, "Only the row with this identifier; may be given again")
        ->type_name("ID")
        ->allow_extra_args(false);
    command->add_flag("--include-locked", options->includeLocked,
                      "Also rows that are locked in the project");
    command->add_flag("--refuse-code-changes", options->refuseCodeChanges,
                      "Leave rows whose codes differ from those of the source");
    command->add_flag("--dry-run,-n", options->dryRun, "Say what would happen, and change nothing");
    command->add_flag("--list", options->list, "Name every row that is not unchanged");
    command->add_flag("--json", options->asJson, "One JSON document, \"genutil.accept/1\"");
    command->footer(
        "Target, comment and status go over, all rows in one transaction. A row is refused, and\n"
        "named, when the project's row has changed since the import, when two rows with its\n"
        "identifier disagree, or when the hidden part of a code would be lost. Sources never\n"
        "change. Exit code 1: rows were refused, or an --id is not in the import.\n\n"
        "Examples:\n"
        "  genutil accept app.project --dry-run --list\n"
        "  genutil accept app.project --language fr-FR --refuse-code-changes\n"
        "  genutil accept app.project --id 000012 --id 000017");
    context.Runs(command, [&context, options] { return RunAccept(context, *options); });
}

}  // namespace generalutilities::cli
