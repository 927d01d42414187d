#include "commands/review_command.h"

#include <generalutilities/extview/segment_text.h>
#include <generalutilities/project/accept.h>
#include <generalutilities/project/line_ends.h>
#include <generalutilities/project/word_diff.h>

#include "failure.h"
#include "language.h"
#include "reimport.h"
#include "unicode.h"

#include <memory>
#include <nlohmann/json.hpp>

/// `genutil review`: each changed row of the latest import, old against new, with the changed words
/// marked.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct ReviewOptions {
    std::string project;
    std::string language;
    bool all = false;
    bool asJson = false;
};

/// A row with what there is to say about it.
struct ReviewRow {
    const ReimportedRow& row;
    std::u16string oldTarget;  ///< as the reviewer saw it
    std::u16string source;
    std::vector<CodeDifference> codes;
    bool targetChanged;
    bool sourceChanged;
};

ReviewRow Look(const ReimportedRow& row) {
    ReviewRow review{
        row,  StripCodeMarkers(row.existingTarget), StripCodeMarkers(row.existingSource), {}, false,
        false};
    review.targetChanged =
        row.targetHasChanged && !EqualButForLineEnds(row.target, review.oldTarget);
    review.sourceChanged = row.sourceHasChanged && !EqualButForLineEnds(row.source, review.source);
    if (!row.target.empty()) {
        review.codes = CompareCodes(review.source, row.target);
    }
    return review;
}

class ReviewPrinter {
  public:
    ReviewPrinter(Console& standardOutput, const ReviewOptions& chosen, std::int32_t langId)
        : console(standardOutput), options(chosen), language(langId) {
        if (options.asJson) {
            console.Write(R"({"format": "genutil.review/1", "project": )" +
                          json(options.project).dump() +
                          ", \"language\": " + std::to_string(language) + ", \"rows\": [");
        }
    }

    void Print(const ReviewRow& review) {
        if (options.asJson) {
            console.Write((isFirst ? "\n  " : ",\n  ") + ToJson(review).dump());
        } else {
            PrintText(review);
        }
        isFirst = false;
    }

    void Finish() {
        if (options.asJson) {
            console.WriteLine(isFirst ? "]}" : "\n]}");
        }
    }

  private:
    void PrintText(const ReviewRow& review) {
        std::string head = console.Paint(Style::Bold, ShowControls(ToUtf8(review.row.id)));
        const auto remark = [&](Style style, const std::string& words) {
            head += "  " + console.Paint(style, words);
        };
        if (!review.row.accept) {
            remark(Style::Yellow, "not marked as accepted (locked)");
        }
        if (review.sourceChanged) {
            remark(Style::Yellow, "source edited");
        }
        if (!review.codes.empty()) {
            remark(Style::Red, DescribeCodes(review.codes));
        }
        console.WriteLine(head);
        console.WriteLine("    " + console.Paint(Style::Dim, ShowControls(ToUtf8(review.source))));
        if (!review.targetChanged) {
            console.WriteLine("    " + ShowControls(ToUtf8(review.oldTarget)));
            return;
        }
        std::string before;
        std::string after;
        for (const DiffStretch& stretch :
             CompareWords(review.oldTarget, review.row.target, language)) {
            const std::string oldPart = ShowControls(ToUtf8(
                std::u16string_view(review.oldTarget).substr(stretch.oldFirst, stretch.oldLength)));
            const std::string newPart =
                ShowControls(ToUtf8(review.row.target.substr(stretch.newFirst, stretch.newLength)));
            before += stretch.same ? oldPart : Mark(Style::Red, oldPart, "[-", "-]");
            after += stretch.same ? newPart : Mark(Style::Green, newPart, "[+", "+]");
        }
        console.WriteLine("  - " + before);
        console.WriteLine("  + " + after);
    }

    /// Colour marks a stretch where there is colour, signs where there is none.
    std::string Mark(Style style, const std::string& text, const char* open,
                     const char* close) const {
        if (text.empty()) {
            return text;
        }
        return console.HasColor() ? console.Paint(style, text) : open + text + close;
    }

    json ToJson(const ReviewRow& review) const {
        json stretches = json::array();
        for (const DiffStretch& stretch :
             CompareWords(review.oldTarget, review.row.target, language)) {
            stretches.push_back(
                {{"same", stretch.same},
                 {"old", ToUtf8(std::u16string_view(review.oldTarget)
                                    .substr(stretch.oldFirst, stretch.oldLength))},
                 {"new", ToUtf8(review.row.target.substr(stretch.newFirst, stretch.newLength))}});
        }
        json codes = json::array();
        for (const CodeDifference& difference : review.codes) {
            codes.push_back({{"kind", CodeKindName(difference.kind)},
                             {"code", ToUtf8(difference.code)},
                             {"count", difference.count}});
        }
        return {{"id", ToUtf8(review.row.id)},
                {"source", ToUtf8(review.source)},
                {"oldTarget", ToUtf8(review.oldTarget)},
                {"newTarget", ToUtf8(review.row.target)},
                {"comments", ToUtf8(review.row.comments)},
                {"status", review.row.status},
                {"accept", review.row.accept},
                {"targetChanged", review.targetChanged},
                {"sourceChanged", review.sourceChanged},
                {"codes", std::move(codes)},
                {"stretches", std::move(stretches)}};
    }

    Console& console;
    const ReviewOptions& options;
    std::int32_t language;
    bool isFirst = true;
};

ExitCode RunReview(CommandContext& context, const ReviewOptions& options) {
    const OpenProject project = OpenProjectFile(options.project);
    const std::int32_t langId = ReimportLanguage(project, options.language);
    ReviewPrinter printer(context.console, options, langId);
    std::uint64_t rows = 0;
    std::uint64_t changed = 0;
    std::uint64_t notAccepted = 0;
    ReadReimportedRows(*project.database, [&](const ReimportedRow& row) {
        const ReviewRow review = Look(row);
        ++rows;
        changed += review.targetChanged ? 1 : 0;
        notAccepted += review.targetChanged && !row.accept ? 1 : 0;
        if (options.all || review.targetChanged || review.sourceChanged) {
            printer.Print(review);
        }
    });
    printer.Finish();
    std::string words = std::to_string(changed) + " of " + std::to_string(rows) +
                        " rows of the import have another target";
    if (notAccepted > 0) {
        words += "; " + std::to_string(notAccepted) + " of them are locked in the project";
    }
    context.console.Note(words);
    return changed > 0 ? ExitCode::Done : ExitCode::NegativeAnswer;
}

}  // namespace

void AddReviewCommand(CLI::App& parent, CommandContext& context) {
    auto options = std::make_shared<ReviewOptions>();
    CLI::App* command =
        parent.add_subcommand("review", "Show what a reviewer changed, old against new");
    command->add_option("PROJECT", options->project, "The project file")->required();
    command
        ->add_option("--language,-l", options->language,
                     "The language of the import; may be left out where the rows tell it")
        ->type_name("LANGUAGE");
    command->add_flag("--all", options->all, "Show unchanged rows, too");
    command->add_flag("--json", options->asJson, "One JSON document, \"genutil.review/1\"");
    command->footer(
        "Shows the rows of the latest `genutil import`: identifier, source, the old target and "
        "the\n"
        "new one, the changed words in colour or between [- -] and [+ +]. A target that differs\n"
        "only in its line ends counts as unchanged. Exit code 1: no target has changed.\n\n"
        "Examples:\n"
        "  genutil review app.project\n"
        "  genutil review app.project -l fr-FR --json | jq '.rows[] | select(.codes != [])'");
    context.Runs(command, [&context, options] { return RunReview(context, *options); });
}

}  // namespace generalutilities::cli
