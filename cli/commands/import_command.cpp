#include "commands/import_command.h"

#include <generalutilities/automation/progress_events.h>
#include <generalutilities/extview/export_options.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/project/review_report.h>

#include "component_client.h"
#include "failure.h"
#include "language.h"
#include "output_file.h"
#include "progress.h"
#include "project_checks.h"
#include "review_findings.h"
#include "rtf_check.h"
#include "unicode.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>

/// `genutil import`: a reviewed file comes back.
///
/// `ExtViewHelper` does the import; it takes what stands in a cell for the reviewer's text and is
/// quiet about rows that it leaves out. The tool prepares the file for it, walks the file itself
/// first, says what becomes of every row, and afterwards compares what was stored with what it
/// read.
namespace generalutilities::cli {
namespace {

struct ImportOptions {
    std::string project;
    std::string file;
    std::string language;
    bool asIs = false;
    bool dryRun = false;
    std::string report;
    std::string reportFile;
    bool force = false;
    bool asJson = false;
    ProgressMode progress = ProgressMode::Automatic;
};

/// The whole list of rows, in the form and to the place that was asked for.
class ReportOutput {
  public:
    ReportOutput(Console& console, const ImportOptions& options, std::int32_t langId) {
        const std::string form = FormOf(options);
        if (form.empty()) {
            return;
        }
        std::ostream* output = &console.Output();
        if (options.reportFile.empty()) {
            usesStandardOutput = true;
        } else {
            file.emplace(options.reportFile, options.force);
            stream.open(file->Path(), std::ios::binary | std::ios::trunc);
            output = &stream;
        }
        const ReportHeading heading{ToUtf16(options.project), ToUtf16(options.file), langId,
                                    options.dryRun};
        writer = form == "json"   ? CreateJsonReport(*output, heading)
                 : form == "html" ? CreateHtmlReport(*output, heading)
                                  : CreateTextReport(*output, heading);
    }

    void Met(const ReviewFindingPlace& place) {
        if (writer) {
            writer->Met(place);
        }
    }

    void Row(const ReviewedRow& row) {
        if (writer) {
            writer->Row(row);
        }
    }

    void Finish(const ReviewSummary& summary, const ImportOptions& options) {
        if (writer) {
            writer->Finish(summary);
        }
        if (file) {
            stream.close();
            if (!stream) {
                throw Failure(
                    options.reportFile + ": the report cannot be written: " + std::strerror(errno),
                    "genutil", ErrorWriteFault);
            }
            file->Commit();
        }
    }

    bool UsesStandardOutput() const { return usesStandardOutput; }

  private:
    static std::string FormOf(const ImportOptions& options) {
        if (options.asJson) {
            return "json";
        }
        if (!options.report.empty() || options.reportFile.empty()) {
            return options.report;
        }
        const auto endsWith = [&](std::string_view ending) {
            return options.reportFile.size() > ending.size() &&
                   options.reportFile.compare(options.reportFile.size() - ending.size(),
                                              ending.size(), ending) == 0;
        };
        return endsWith(".json") ? "json" : endsWith(".html") || endsWith(".htm") ? "html" : "text";
    }

    std::optional<OutputFile> file;
    std::ofstream stream;
    std::unique_ptr<ReportWriter> writer;
    bool usesStandardOutput = false;
};

/// Names the rows that do not come home, the first of them at least, and doubts the language of a
/// file in which no translation is the stored one.
class RowWarnings {
  public:
    RowWarnings(Console& errorConsole, const std::string& reviewedFile)
        : console(errorConsole), file(reviewedFile) {}

    void Look(const ReviewedRow& row) {
        readingStopped = readingStopped || row.outcome == RowOutcome::TooFewCells;
        if (!row.storedTarget.empty()) {
            ++(row.outcome == RowOutcome::Changed ? otherTargets : sameTargets);
        }
        const std::string reason = ReasonOf(row);
        if (reason.empty()) {
            return;
        }
        if (++count <= Shown) {
            console.Warn(file + ": row " + std::to_string(row.number) + ", before byte " +
                         std::to_string(row.offset) + ": " + reason);
        }
    }

    void Finish(const ReviewSummary& summary, std::int32_t langId) {
        if (count > Shown) {
            console.Warn(std::to_string(count - Shown) +
                         " more rows are left out; --report text lists every row");
        }
        if (summary.endsInsideRow) {
            console.Warn(file + ": its end is missing behind byte " +
                         std::to_string(std::filesystem::file_size(file)) +
                         ": it was cut off on its way; ask for the whole file");
        }
        if (sameTargets == 0 && otherTargets >= DoubtfulTargets) {
            console.Warn(file + ": not one of " + std::to_string(otherTargets) +
                         " translations is the one of the project; is " + LanguageName(langId) +
                         " the language of this file?");
        }
    }

    std::uint64_t LeftOut() const { return count; }

  private:
    std::string ReasonOf(const ReviewedRow& row) const {
        switch (row.outcome) {
            case RowOutcome::UnknownId:
                return "left out: the project has no row \"" + ShowControls(ToUtf8(row.id)) + "\"";
            case RowOutcome::TooFewCells:
                return "left out: it has fewer than two cells, and reading stops here";
            case RowOutcome::NotRead:
                return readingStopped
                           ? "left out: it stands behind the place where reading stops"
                           : "left out: the file ends inside this row; was it cut off on its way?";
            case RowOutcome::Unchanged:
            case RowOutcome::LineEndsOnly:
            case RowOutcome::Changed:
                break;
        }
        return {};
    }

    static constexpr std::uint64_t Shown = 10;
    static constexpr std::uint64_t DoubtfulTargets = 5;
    Console& console;
    const std::string& file;
    std::uint64_t count = 0;
    std::uint64_t sameTargets = 0;
    std::uint64_t otherTargets = 0;
    bool readingStopped = false;
};

void Store(CommandContext& context, const OpenProject& project, const ImportOptions& options,
           const ComPtr<IExtViewHelper>& helper, const PreparedFile& reviewed, std::int32_t langId,
           const ReviewSummary& summary) {
    {
        ProgressDisplay display(context.console, options.progress, "importing");
        const ProgressConnection events(helper, [&](int percent) { display.Update(percent); });
        const Bstr file(reviewed.Path());
        SetErrorInfo(0, nullptr);
        Check(helper->ImportExternalView(project.object.Get(), file.Get(), langId,
                                         reviewed.IsBilingual() ? FormatTwb : 0, VARIANT_FALSE),
              "importing " + options.file + " into " + options.project);
    }
    const std::string missing = CheckReimportedRows(*project.database, summary);
    if (!missing.empty()) {
        throw Failure(options.project + ": not all rows were stored: " + missing);
    }
}

ExitCode RunImport(CommandContext& context, const ImportOptions& options) {
    if (options.asJson && !options.report.empty() && options.report != "json") {
        throw UsageError("--json: asks for another form than --report " + options.report);
    }
    const std::int32_t langId = ParseLanguage("--language", options.language);
    const std::u16string path = ArgumentToUtf16("FILE", options.file);
    const OpenProject project = OpenProjectFile(options.project);
    RequireLanguage(project, langId);
    if (!options.dryRun) {
        RequireWritable(project);
    }
    // A fresh object for this one job.
    const auto helper =
        CreateComponent<IExtViewHelper>(CLSID_ExtViewHelper, IID_IExtViewHelper, "ExtViewHelper");
    RequireRtf(helper, options.file);

    ReportOutput report(context.console, options, langId);
    ReviewFindings findings;
    const PreparedFile reviewed = options.asIs
                                      ? PreparedFile::AsIs(path)
                                      : PreparedFile::Prepare(path, [&](const auto& place) {
                                            report.Met(place);
                                            findings.Add(place);
                                        });
    findings.Tell(context.console, options.file);
    RowWarnings warnings(context.console, options.file);
    ReviewSummary summary;
    {
        ProgressDisplay display(context.console, options.progress, "reading");
        summary = ReviewFile(
            *project.database, reviewed, langId,
            [&](const ReviewedRow& row) {
                report.Row(row);
                warnings.Look(row);
            },
            [&](int percent) { display.Update(percent); });
    }
    warnings.Finish(summary, langId);
    if (!options.dryRun) {
        Store(context, project, options, helper, reviewed, langId, summary);
    }
    report.Finish(summary, options);

    const std::string words =
        DescribeSummary(summary) +
        (options.dryRun ? "Dry run: nothing was stored."
                        : "Stored " + std::to_string(summary.RowsToStore()) + " rows for " +
                              LanguageName(langId) +
                              "; `genutil review` shows them, `genutil accept` takes them over.");
    if (report.UsesStandardOutput()) {
        context.console.Note(words);
    } else {
        context.console.WriteLine(words);
    }
    if (!options.reportFile.empty()) {
        context.console.Note("The report on every row is in " + options.reportFile);
    }
    return warnings.LeftOut() > 0 || summary.endsInsideRow ? ExitCode::NegativeAnswer
                                                           : ExitCode::Done;
}

}  // namespace

void AddImportCommand(CLI::App& parent, CommandContext& context) {
    auto options = std::make_shared<ImportOptions>();
    CLI::App* command = parent.add_subcommand(
        "import", "Read a reviewed file back, and say what became of every row");
    command->add_option("PROJECT", options->project, "The project file")->required()->type_name("");
    command->add_option("FILE", options->file, "The reviewed table or bilingual document, RTF")
        ->required()
        ->type_name("");
    command
        ->add_option("--language,-l", options->language,
                     "The target language: a tag such as fr-FR or an identifier such as 1036")
        ->required()
        ->type_name("LANGUAGE");
    command->add_flag("--as-is", options->asIs,
                      "Read the file untouched: with tracked deletions, labels of lists, footnotes "
                      "and digits of pictures as text, without two kinds of hyphens and without "
                      "text that has the style of a mark or a code");
    command->add_flag("--dry-run,-n", options->dryRun, "Report, and change nothing");
    command
        ->add_option("--report", options->report,
                     "List every row as text, json or html; on standard output unless "
                     "--report-file is given")
        ->check(CLI::IsMember({"text", "json", "html"}))
        ->type_name("FORM");
    command
        ->add_option("--report-file", options->reportFile,
                     "Where the report goes; without --report its ending decides the form")
        ->type_name("FILE");
    command->add_flag("--force", options->force, "Replace a report of that name");
    command->add_flag("--json", options->asJson, "The report as JSON, \"genutil.import/1\"");
    AddProgressOption(command, options->progress);
    command->footer(
        "What a word processor writes into cells that is no text of the reviewer's (tracked\n"
        "deletions, labels of lists, ...) is left out first; what was met is told.\n"
        "The rows go into the working table of the project; its translations stay as they are\n"
        "until `genutil accept`. Exit code 1: rows of the file were left out; each is named.\n\n"
        "Examples:\n"
        "  genutil import app.project review-fr.rtf --language fr-FR --dry-run\n"
        "  genutil import app.project review-fr.rtf --language fr-FR --report-file fr.html\n"
        "  genutil import app.project review-fr.rtf -l 1036 --json | jq .summary");
    context.Runs(command, [&context, options] { return RunImport(context, *options); });
}

}  // namespace generalutilities::cli
