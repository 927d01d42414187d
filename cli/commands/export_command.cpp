#include "commands/export_command.h"

#include <generalutilities/automation/progress_events.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/project/contents.h>
#include <generalutilities/project/review_report.h>

#include "commands/export_options.h"
#include "component_client.h"
#include "extview/row_selection.h"
#include "failure.h"
#include "language.h"
#include "output_file.h"
#include "progress.h"
#include "project_checks.h"
#include "unicode.h"
#include "write_watch.h"

#include <charconv>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

/// `genutil export`: a project's rows as a file for a reviewer.
///
/// `ExtViewHelper` writes the file. Around it stands what a host owes its user: the file is written
/// beside its name, its writing is watched, it is read again and compared with the project, and
/// only then it gets its name.
namespace generalutilities::cli {
namespace {

struct ExportCommandOptions {
    std::string project;
    std::string output;
    std::string language;
    std::string file = "all";
    std::string orderBy;
    bool force = false;
    bool asJson = false;
    ProgressMode progress = ProgressMode::Automatic;
    ExportLook look;
};

struct ExportCounts {
    std::uint64_t inSelection = 0;
    std::uint64_t notSelected = 0;  ///< not marked for export in the project
    std::uint64_t duplicates = 0;   ///< another row of the file stands for them
    std::uint64_t written = 0;
};

struct ExportResult {
    ExportCounts counts;
    bool verified = false;
    bool direct = false;  ///< written to a device or a pipe, perhaps standard output itself
};

std::int32_t FileSelectionOf(const OpenProject& project, const std::string& file) {
    if (file == "all") {
        return AllFiles;
    }
    if (file == "lexicon") {
        return Lexicon;
    }
    if (file == "all+lexicon") {
        return FilesAndLexicon;
    }
    std::int32_t number = 0;
    const char* end = file.data() + file.size();
    const auto [stop, error] = std::from_chars(file.data(), end, number);
    const bool isNumber = error == std::errc() && stop == end;

    const std::u16string name = ArgumentToUtf16("--file", file);
    std::string known;
    for (const FileCounts& one : ReadProjectInfo(*project.database).files) {
        if (one.id > 0 && ((isNumber && one.id == number) || one.name == name)) {
            return one.id;
        }
        known += "\n  " + std::to_string(one.id) + "  " + ShowControls(ToUtf8(one.name));
    }
    throw Failure(project.path + ": no file \"" + file +
                  "\"; besides all, lexicon and all+lexicon the project has" +
                  (known.empty() ? " no files" : ":" + known));
}

/// Counts as the export selects, after it has marked the duplicates.
ExportCounts CountRows(Database& database, const RowQueries& queries) {
    const auto count = [&](std::u16string_view condition) -> std::uint64_t {
        const auto rows = database.OpenRecordset(
            u"SELECT ID FROM Pairs " + queries.whereClause + std::u16string(condition),
            RecordsetType::Dynaset);
        if (!rows) {
            throw Failure("counting the rows: " + ToUtf8(database.LastFailure().description),
                          ToUtf8(database.LastFailure().source));
        }
        return static_cast<std::uint64_t>(rows->RecordCount());
    };
    ExportCounts counts;
    counts.inSelection = count(u"");
    const std::uint64_t selected = count(u" AND Selected = -1 ");
    counts.written = count(u" AND Selected = -1  AND Done = 0 ");
    counts.notSelected = counts.inSelection - selected;
    counts.duplicates = selected - counts.written;
    return counts;
}

void RunComponent(CommandContext& context, const OpenProject& project,
                  const ExportCommandOptions& options, std::int32_t fileId, std::int32_t langId,
                  const std::string& path) {
    const auto helper =
        CreateComponent<IExtViewHelper>(CLSID_ExtViewHelper, IID_IExtViewHelper, "ExtViewHelper");
    const ExportLook& look = options.look;
    Check(helper->put_SourceFont(Bstr(ToUtf16(look.sourceFont)).Get()), "setting the source font");
    Check(helper->put_TargetFont(Bstr(ToUtf16(look.targetFont)).Get()), "setting the target font");

    ProgressDisplay display(context.console, options.progress, "exporting");
    const ProgressConnection events(helper, [&](int percent) { display.Update(percent); });
    const Bstr destination(ArgumentToUtf16("--output", path));
    const Bstr orderBy(ArgumentToUtf16("--order-by", options.orderBy));
    SetErrorInfo(0, nullptr);
    Check(helper->ExportExternalView(project.object.Get(), destination.Get(), fileId, langId,
                                     look.OptionBits(), orderBy.Get(), look.ColorValue(0),
                                     look.ColorValue(1), look.ColorValue(2), look.ColorValue(3),
                                     look.ColorValue(4), look.ColorValue(5), look.ColorValue(6),
                                     look.ColorValue(7), look.ColorValue(8)),
          "exporting " + options.project + " to " + options.output);
}

/// Reads the written file again, as `genutil import` would.
void Verify(CommandContext& context, const OpenProject& project,
            const ExportCommandOptions& options, std::int32_t langId, const std::string& path,
            const ExportCounts& counts) {
    ProgressDisplay display(context.console, options.progress, "verifying");
    std::string firstChanged;
    const std::u16string written = ArgumentToUtf16("--output", path);
    // A bilingual document needs its preparation where a segment has no source.
    const ReviewSummary summary = ReviewFile(
        *project.database,
        options.look.format == "twb" ? PreparedFile::Prepare(written) : PreparedFile::AsIs(written),
        langId,
        [&](const ReviewedRow& row) {
            if (row.outcome == RowOutcome::Changed && firstChanged.empty()) {
                firstChanged = ToUtf8(row.id);
            }
        },
        [&](int percent) { display.Update(percent); });
    if (summary.rows != counts.written || summary.RowsToStore() != counts.written) {
        throw Failure(options.output + ": verifying found " +
                      std::to_string(summary.RowsToStore()) + " readable rows where " +
                      std::to_string(counts.written) + " were to be written; nothing was kept");
    }
    const bool changedOnPurpose =
        (options.look.options & (RemoveCodes | CopySourceToEmptyTarget)) != 0;
    if (summary.changed > 0 && !changedOnPurpose) {
        context.console.Warn(std::to_string(summary.changed) +
                             " rows hold characters that the file cannot carry and will come "
                             "back as changed; the first is " +
                             ShowControls(firstChanged));
    }
    if (summary.repeatedIds > 0) {
        context.console.Warn(std::to_string(summary.repeatedIds) +
                             " rows share an identifier with another row of the file");
    }
}

void WarnOfLook(Console& console, const ExportLook& look) {
    constexpr std::int32_t TableOptions =
        ShowStatusColumn | ShowFileColumn | ColorAllRows | HideReadOnlyColumns;
    if (look.format == "twb" && (look.omitIdColumn || (look.options & TableOptions) != 0)) {
        console.Warn("options about columns and colours have no effect on a bilingual document");
    }
    if (look.format != "twb" && (look.options & (LockedIsPerfect | GuaranteedIsPerfect)) != 0) {
        console.Warn("--locked-is-perfect and --guaranteed-is-perfect are for --format twb alone");
    }
    if (look.format == "html" && (look.options & (ColorAllRows | ColorStatusCell)) != 0) {
        console.Warn(
            "what has a status without a colour gets an empty colour on a page, which browsers "
            "show as dark red; without --color-all-rows and --color-status-cell it stays white");
    }
    if (look.format != "rtf") {
        return;
    }
    if (look.omitIdColumn) {
        console.Warn("without identifiers the file cannot be imported again");
    }
    if ((look.options & ShowFileColumn) != 0 && (look.options & ShowStatusColumn) == 0) {
        console.Warn(
            "without --status-column the file column stands where an import reads the status: a "
            "file name that begins with a digit would come back as a status");
    }
}

/// Rows can be left out silently only when the marks of an earlier export cannot be cleared.
void CheckMarks(const OpenProject& project, const ExportCommandOptions& options,
                const RowQueries& queries) {
    if (IsWritable(project)) {
        return;
    }
    const bool unique = (options.look.options & UniquePairsOnly) != 0;
    if (unique || CountRows(*project.database, queries).duplicates > 0) {
        throw Failure(project.path + ": the project cannot be written, so " +
                          (unique ? "duplicates cannot be marked"
                                  : "the marks of an earlier export cannot be cleared and rows "
                                    "would be left out") +
                          "; export from a copy that can be written",
                      "genutil", ErrorWriteProtected);
    }
}

ExportResult Export(CommandContext& context, const OpenProject& project,
                    const ExportCommandOptions& options, std::int32_t langId) {
    const std::int32_t fileId = FileSelectionOf(project, options.file);
    const RowQueries queries = BuildQueries(DecodeOptions(options.look.OptionBits()), fileId,
                                            langId, ToUtf16(options.orderBy));
    CheckMarks(project, options, queries);

    OutputFile file(options.output, options.force);
    const WriteWatch watch;
    RunComponent(context, project, options, fileId, langId, file.Path());
    watch.ThrowIfFailed(options.output);

    ExportResult result;
    result.counts = CountRows(*project.database, queries);
    result.direct = file.IsDirect();
    const bool comesBack = options.look.format == "twb" ||
                           (options.look.format == "rtf" && !options.look.omitIdColumn);
    result.verified = comesBack && !file.IsDirect();
    if (result.verified) {
        Verify(context, project, options, langId, file.Path(), result.counts);
    }
    file.Commit();
    return result;
}

std::string Describe(const ExportResult& result, const ExportCommandOptions& options,
                     std::int32_t langId) {
    const ExportCounts& counts = result.counts;
    std::string text = "Wrote " + std::to_string(counts.written) + " rows for " +
                       LanguageName(langId) + " to " + options.output;
    if (counts.duplicates > 0) {
        text += "\n" + std::to_string(counts.duplicates) +
                " rows are left out: an equal row stands for them";
    }
    if (counts.notSelected > 0) {
        text += "\n" + std::to_string(counts.notSelected) +
                " rows are left out: they are not selected in the project";
    }
    return text;
}

nlohmann::json ToJson(const ExportResult& result, const ExportCommandOptions& options,
                      std::int32_t langId) {
    return {{"format", "genutil.export/1"},
            {"project", options.project},
            {"file", options.output},
            {"language", langId},
            {"exportOptions", options.look.OptionBits()},
            {"rowsWritten", result.counts.written},
            {"duplicatesLeftOut", result.counts.duplicates},
            {"notSelected", result.counts.notSelected},
            {"verified", result.verified}};
}

ExitCode RunExport(CommandContext& context, const ExportCommandOptions& options) {
    const std::int32_t langId = ParseLanguage("--language", options.language);
    ArgumentToUtf16("--output", options.output);
    if (!options.orderBy.empty() && options.file != "lexicon") {
        throw UsageError("--order-by is for --file lexicon; the rows of files have their order");
    }
    std::error_code ignored;
    if (std::filesystem::equivalent(options.project, options.output, ignored)) {
        throw UsageError("--output: " + options.output + " is the project itself");
    }
    const OpenProject project = OpenProjectFile(options.project);
    RequireLanguage(project, langId);
    WarnOfLook(context.console, options.look);

    const ExportResult result = Export(context, project, options, langId);
    const std::string words = options.asJson ? ToJson(result, options, langId).dump(2)
                                             : Describe(result, options, langId);
    if (result.direct) {
        context.console.Note(words);
    } else {
        context.console.WriteLine(words);
    }
    if (result.counts.written == 0) {
        context.console.Warn("no row matches the selection; the file holds the heading alone");
        return ExitCode::NegativeAnswer;
    }
    return ExitCode::Done;
}

}  // namespace

void AddExportCommand(CLI::App& parent, CommandContext& context) {
    auto options = std::make_shared<ExportCommandOptions>();
    CLI::App* command = parent.add_subcommand(
        "export", "Write a project's rows to a table, a page or a bilingual document");
    command->add_option("PROJECT", options->project, "The project file")->required()->type_name("");
    command->add_option("--output,-o", options->output, "The file to write")
        ->required()
        ->type_name("FILE");
    command
        ->add_option("--language,-l", options->language,
                     "The target language: a tag such as fr-FR or an identifier such as 1036")
        ->required()
        ->type_name("LANGUAGE");
    command
        ->add_option("--file", options->file,
                     "all, lexicon, all+lexicon, or one file by its identifier or name")
        ->capture_default_str()
        ->type_name("FILE");
    command
        ->add_option("--order-by", options->orderBy,
                     "Order of the lexicon, as SQL: \"Freq DESC, Source\"")
        ->type_name("COLUMNS");
    command->add_flag("--force", options->force, "Replace a file of that name");
    command->add_flag("--json", options->asJson, "The summary as JSON, \"genutil.export/1\"");
    AddProgressOption(command, options->progress);
    AddLookOptions(command, options->look);
    command->footer(
        "The file gets its name when it is complete and, unless it is a page, has been read "
        "again;\n"
        "a failure leaves nothing. Exit code 1: no row matches.\n\n"
        "Examples:\n"
        "  genutil export app.project -o review-fr.rtf --language fr-FR\n"
        "  genutil export app.project -o open.rtf -l de --only-untranslated --unique-pairs \\\n"
        "      --status-column --status-value --color-all-rows --color-fuzzy '#FFF2CC'\n"
        "  genutil export app.project -o terms.html -l ja --file lexicon --order-by 'Freq DESC'\n"
        "  genutil export app.project -o bilingual.rtf -l ar --format twb --locked-is-perfect");
    context.Runs(command, [&context, options] {
        SettleFormat(options->look, options->output);
        return RunExport(context, *options);
    });
}

}  // namespace generalutilities::cli
