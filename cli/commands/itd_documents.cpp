#include "commands/itd_documents.h"

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/itd.h>
#include <generalutilities/itd/exchange.h>
#include <generalutilities/itd/itd_file.h>
#include <generalutilities/itd/translations.h>

#include "component_client.h"
#include "failure.h"
#include "output_file.h"
#include "progress.h"
#include "reimport.h"
#include "unicode.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

/// `genutil itd`: what a bilingual document holds, its segments out to a translator, and the
/// translations into a copy of it.
///
/// `ITDWriter` changes a file in place and rewrites both columns of a segment with the same codes.
/// The tool makes the copy itself, changes the target column alone, and gives the copy its name
/// when it has read it again.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct ItdOptions {
    std::string file;
    std::string rows;  ///< the file of translations
    std::string output;
    std::string form;
    std::string find;
    std::uint64_t skip = 0;
    std::optional<std::uint64_t> limit;
    bool onlyUntranslated = false;
    bool dryRun = false;
    bool force = false;
    bool asJson = false;
    ProgressMode progress = ProgressMode::Automatic;
};

std::string Utf8(const SegmentPieces& pieces) {
    return ToUtf8(SegmentTextOf(pieces));
}

ExitCode RunLanguages(CommandContext& context, const ItdOptions& options) {
    const auto reader = CreateComponent<IITDReader>(CLSID_ITDReader, IID_IITDReader, "ITDReader");
    const Bstr path(ArgumentToUtf16("FILE", options.file));
    Bstr source, target;
    Check(reader->GetLangsOnly(path.Get(), source.Out(), target.Out()), "reading " + options.file);
    if (options.asJson) {
        context.console.WriteLine(json{
            {"format", "genutil.itd-languages/1"},
            {"file", options.file},
            {"sourceLanguage", ToUtf8(source.View())},
            {"targetLanguage",
             ToUtf8(target.View())}}.dump(2));
    } else {
        context.console.WriteLine(ShowControls(ToUtf8(source.View())) + "\t" +
                                  ShowControls(ToUtf8(target.View())));
    }
    return ExitCode::Done;
}

ExitCode RunInfo(CommandContext& context, const ItdOptions& options) {
    ItdFile file = ReadItdFile(ArgumentToUtf16("FILE", options.file));
    std::uint64_t withText = 0, translated = 0, withCodes = 0, withComments = 0;
    std::map<std::uint32_t, std::uint64_t> statuses;
    ExtractSegments(file.document, [&](const ExchangeSegment& segment) {
        withCodes += segment.codes.empty() ? 0 : 1;
        withComments += segment.comment.empty() ? 0 : 1;
        if (!segment.source.empty()) {
            ++withText;
            translated += segment.target.empty() ? 0 : 1;
            ++statuses[segment.status];
        }
    });
    const std::size_t segments = file.document.sourceSegments.size();
    const std::string source = ToUtf8(file.header.sourceLanguage);
    const std::string target = ToUtf8(file.header.targetLanguage);
    if (options.asJson) {
        json counts = json::array();
        for (const auto& [status, count] : statuses) {
            counts.push_back({{"status", status}, {"segments", count}});
        }
        context.console.WriteLine(json{{"format", "genutil.itd-info/1"},
                                       {"file", options.file},
                                       {"sourceLanguage", source},
                                       {"targetLanguage", target},
                                       {"targetColumnFirst", file.isReversed},
                                       {"segments", segments},
                                       {"withText", withText},
                                       {"translated", translated},
                                       {"withCodes", withCodes},
                                       {"withComments", withComments},
                                       {"statuses", std::move(counts)},
                                       {"textPartOffset", file.archive.TextPartOffset()},
                                       {"compressedLength", file.archive.compressedLength}}
                                      .dump(2));
        return ExitCode::Done;
    }
    std::string text = "Languages: " + ShowControls(source) + " to " + ShowControls(target) +
                       (file.isReversed ? "; the target column stands first in the file" : "") +
                       "\nSegments: " + std::to_string(segments) + ", " + std::to_string(withText) +
                       " with text, " + std::to_string(translated) + " of them translated, " +
                       std::to_string(withCodes) + " with codes, " + std::to_string(withComments) +
                       " with comments\nStatuses of segments with "
                       "text:";
    for (const auto& [status, count] : statuses) {
        text += " " + std::to_string(status) + " (" + std::to_string(count) + ")";
    }
    text += "\nText part: " + std::to_string(file.archive.compressedLength) +
            " compressed bytes at offset " + std::to_string(file.archive.TextPartOffset());
    context.console.WriteLine(text);
    return ExitCode::Done;
}

class SegmentPrinter {
  public:
    SegmentPrinter(Console& standardOutput, const ItdOptions& chosen)
        : console(standardOutput), options(chosen) {
        if (options.asJson) {
            console.Write(R"({"format": "genutil.itd-segments/1", "file": )" +
                          json(options.file).dump() + ", \"segments\": [");
        } else {
            console.WriteLine(
                console.Paint(Style::Bold, "segment\tstatus\tscore\tsource\ttarget\tcomment"));
        }
    }

    void Print(const ExchangeSegment& segment) {
        const std::string source = Utf8(segment.source);
        const std::string target = Utf8(segment.target);
        const std::string comment = ToUtf8(segment.comment);
        if (options.asJson) {
            json codes = json::array();
            for (const std::u16string& code : segment.codes) {
                codes.push_back(ToUtf8(code));
            }
            const json line{{"segment", segment.number}, {"status", segment.status},
                            {"score", segment.score},    {"source", source},
                            {"target", target},          {"codes", std::move(codes)},
                            {"comment", comment}};
            console.Write((count == 0 ? "\n  " : ",\n  ") + line.dump());
        } else {
            console.WriteLine(std::to_string(segment.number) + "\t" +
                              std::to_string(segment.status) + "\t" + json(segment.score).dump() +
                              "\t" + ShowControls(source) + "\t" + ShowControls(target) + "\t" +
                              ShowControls(comment));
        }
        ++count;
    }

    ExitCode Finish() {
        if (options.asJson) {
            console.WriteLine(count == 0 ? "]}" : "\n]}");
        }
        if (count == 0) {
            console.Note("no segment matches");
        }
        return count == 0 ? ExitCode::NegativeAnswer : ExitCode::Done;
    }

  private:
    Console& console;
    const ItdOptions& options;
    std::uint64_t count = 0;
};

ExitCode RunSegments(CommandContext& context, const ItdOptions& options) {
    const std::u16string find = ArgumentToUtf16("--find", options.find);
    ItdFile file = ReadItdFile(ArgumentToUtf16("FILE", options.file));
    SegmentPrinter printer(context.console, options);
    std::uint64_t matching = 0;
    ExtractSegments(file.document, [&](const ExchangeSegment& segment) {
        const auto holds = [&find](const SegmentPieces& pieces) {
            return SegmentTextOf(pieces).find(find) != std::u16string::npos;
        };
        const bool isUntranslated = !segment.source.empty() && segment.target.empty();
        if ((options.onlyUntranslated && !isUntranslated) ||
            (!find.empty() && !holds(segment.source) && !holds(segment.target))) {
            return;
        }
        if (matching >= options.skip &&
            (!options.limit || matching - options.skip < *options.limit)) {
            printer.Print(segment);
        }
        ++matching;
    });
    return printer.Finish();
}

/// What `--form` says, else the ending of a file's name.
ExchangeForm FormOf(const ItdOptions& options, const char* argument, const std::string& path) {
    static const std::map<std::string, ExchangeForm> Forms{{"tsv", ExchangeForm::Tsv},
                                                           {"jsonl", ExchangeForm::JsonLines},
                                                           {"xliff", ExchangeForm::Xliff}};
    if (!options.form.empty()) {
        return Forms.at(options.form);
    }
    const auto form = FormOfEnding(ArgumentToUtf16(argument, path));
    if (!form) {
        throw UsageError(std::string(argument) +
                         ": its ending is none of .tsv, .jsonl, .xlf and .xliff; give --form");
    }
    return *form;
}

ExitCode RunExtract(CommandContext& context, const ItdOptions& options) {
    const ExchangeForm form =
        FormOf(options, "--output", options.output.empty() ? "-.tsv" : options.output);
    ItdFile file = ReadItdFile(ArgumentToUtf16("FILE", options.file));
    std::optional<OutputFile> output;
    std::ofstream stream;
    std::ostream* destination = &context.console.Output();
    if (!options.output.empty()) {
        output.emplace(options.output, options.force);
        stream.open(output->Path(), std::ios::binary | std::ios::trunc);
        destination = &stream;
    }
    const std::size_t total = file.document.sourceSegments.size();
    {
        ProgressDisplay display(context.console, options.progress, "extracting");
        const auto writer = CreateExchangeWriter(
            form, *destination,
            {ToUtf16(options.file), file.header.sourceLanguage, file.header.targetLanguage});
        ExtractSegments(file.document, [&](const ExchangeSegment& segment) {
            writer->Write(segment);
            display.Update(static_cast<int>(100 * std::uint64_t{segment.number} / total));
        });
        writer->Finish();
    }
    if (output) {
        stream.close();
        if (!stream) {
            throw Failure(options.output + ": cannot be written: " + std::strerror(errno),
                          "genutil", ErrorWriteFault);
        }
        output->Commit();
        context.console.Note("Wrote " + std::to_string(total) + " segments to " + options.output);
    }
    return ExitCode::Done;
}

const char* OutcomeName(TranslationOutcome outcome) {
    switch (outcome) {
        case TranslationOutcome::Applied:
            return "applied";
        case TranslationOutcome::Unchanged:
            return "unchanged";
        case TranslationOutcome::NoTranslation:
            return "no-translation";
        case TranslationOutcome::Refused:
            break;
    }
    return "refused";
}

/// Counts what became of the rows, and names those that were refused.
class Outcomes {
  public:
    Outcomes(Console& errorConsole, const ItdOptions& chosen)
        : console(errorConsole), options(chosen) {}

    void Add(const TranslationRow& row, const AppliedRow& applied) {
        ++counts[applied.outcome];
        if (applied.outcome != TranslationOutcome::Refused) {
            return;
        }
        const std::string segment = ShowControls(ToUtf8(row.segment));
        const std::string reason =
            applied.codes.empty() ? applied.reason : DescribeCodes(applied.codes);
        console.Warn(options.rows + ": " + row.place + ", segment " + segment +
                     ": refused: " + ShowControls(reason));
        refused.push_back(
            {{"place", row.place}, {"segment", ToUtf8(row.segment)}, {"reason", reason}});
    }

    ExitCode Tell() {
        std::uint64_t rows = 0;
        json document{{"format", "genutil.itd-apply/1"},
                      {"reference", options.file},
                      {"translations", options.rows},
                      {"output", options.dryRun ? json(nullptr) : json(options.output)}};
        std::string words;
        for (const auto outcome :
             {TranslationOutcome::Applied, TranslationOutcome::Unchanged,
              TranslationOutcome::NoTranslation, TranslationOutcome::Refused}) {
            rows += counts[outcome];
            document["summary"][OutcomeName(outcome)] = counts[outcome];
            words += ", " + std::to_string(counts[outcome]) + " " +
                     (outcome == TranslationOutcome::NoTranslation ? "without a translation"
                                                                   : OutcomeName(outcome));
        }
        document["summary"]["rows"] = rows;
        document["refused"] = refused;
        console.WriteLine(options.asJson
                              ? document.dump(2)
                              : "Rows: " + std::to_string(rows) + words +
                                    (options.dryRun ? ". Dry run: nothing was written."
                                                    : "; the document is in " + options.output));
        return counts[TranslationOutcome::Refused] > 0 ? ExitCode::NegativeAnswer : ExitCode::Done;
    }

  private:
    Console& console;
    const ItdOptions& options;
    std::map<TranslationOutcome, std::uint64_t> counts;
    json refused = json::array();
};

ExitCode RunApply(CommandContext& context, const ItdOptions& options) {
    if (options.dryRun != options.output.empty()) {
        throw UsageError(options.dryRun ? "--output: a dry run writes nothing"
                                        : "--output is wanted, or --dry-run");
    }
    const std::u16string reference = ArgumentToUtf16("REFERENCE", options.file);
    const std::u16string path = ArgumentToUtf16("TRANSLATIONS", options.rows);
    const ExchangeForm form = FormOf(options, "TRANSLATIONS", options.rows);
    std::error_code notThere;
    for (const std::string& input : {options.file, options.rows}) {
        if (std::filesystem::equivalent(input, options.output, notThere)) {
            throw Failure(options.output + ": is " + input + " itself; name another file");
        }
    }
    ItdFile file = ReadItdFile(reference);
    Outcomes outcomes(context.console, options);
    {
        ProgressDisplay display(context.console, options.progress, "applying");
        TranslationApplier applier(file.document);
        const auto reader = OpenExchange(form, path);
        for (TranslationRow row; reader->Next(row);) {
            outcomes.Add(row, applier.Apply(row));
            display.Update(reader->Percent());
        }
    }
    if (!options.dryRun) {
        OutputFile output(options.output, options.force);
        if (output.IsDirect()) {
            throw Failure(options.output + ": a document goes into a file, not a device or a pipe");
        }
        WriteItdCopy(reference, file, ToUtf16(output.Path()));
        output.Commit();
    }
    return outcomes.Tell();
}

}  // namespace

void AddItdDocumentCommands(CLI::App& itd, CommandContext& context) {
    const auto add = [&](const char* name, const char* help, const char* footer, auto run) {
        auto options = std::make_shared<ItdOptions>();
        CLI::App* command = itd.add_subcommand(name, help);
        command->footer(footer);
        context.Runs(command, [&context, options, run] { return run(context, *options); });
        return std::pair(command, options);
    };
    const auto addForm = [](CLI::App* command, ItdOptions& options, const char* help) {
        command->add_option("--form", options.form, help)
            ->check(CLI::IsMember({"tsv", "jsonl", "xliff"}))
            ->type_name("FORM");
        AddProgressOption(command, options.progress);
    };
    const auto addOutput = [](CLI::App* command, ItdOptions& options, const char* help) {
        command->add_option("--output,-o", options.output, help)->type_name("FILE");
        command->add_flag("--force", options.force, "Replace a file of that name");
    };
    const auto addJson = [](CLI::App* command, ItdOptions& options, const char* form) {
        command->add_flag("--json", options.asJson, std::string("One JSON document, ") + form);
    };
    const auto addFile = [](CLI::App* command, ItdOptions& options, const char* name = "FILE") {
        command->add_option(name, options.file, "The document")->required()->type_name("");
    };

    const auto [info, infoOptions] =
        add("info", "Languages, and how many segments are translated, commented ...",
            "Example:\n  genutil itd info manual.itd", RunInfo);
    addFile(info, *infoOptions);
    addJson(info, *infoOptions, "\"genutil.itd-info/1\"");

    const auto [languages, languagesOptions] =
        add("languages", "The two languages, without reading the segments",
            "Example:\n  genutil itd languages manual.itd   en-US\tde-DE", RunLanguages);
    addFile(languages, *languagesOptions);
    addJson(languages, *languagesOptions, "\"genutil.itd-languages/1\"");

    const auto [segments, segmentsOptions] =
        add("segments", "List segments with status, score, both texts and comments",
            "In the texts \"{1}\" is a code, and a backslash stands before \"\\\", \"{\" and "
            "\"}\".\nExit code 1: no segment matches.\n\n"
            "Example:\n  genutil itd segments manual.itd --only-untranslated --limit 20",
            RunSegments);
    addFile(segments, *segmentsOptions);
    segments->add_option("--find", segmentsOptions->find, "Only segments with this in a text")
        ->type_name("TEXT");
    segments->add_flag("--only-untranslated", segmentsOptions->onlyUntranslated,
                       "Only segments with text whose target is empty");
    segments->add_option("--skip", segmentsOptions->skip, "Leave out the first ones")
        ->type_name("COUNT");
    segments->add_option("--limit", segmentsOptions->limit, "List so many at most")
        ->type_name("COUNT");
    addJson(segments, *segmentsOptions, "\"genutil.itd-segments/1\"");

    const auto [extract, extractOptions] =
        add("extract", "Write the segments for a translator: a table, JSON lines or XLIFF",
            "Forms: tsv, a table for a spreadsheet; jsonl, a JSON object a line; xliff, XLIFF 1.2 "
            "with\n"
            "codes as <ph> elements. Without --output to standard output.\n\n"
            "Examples:\n"
            "  genutil itd extract manual.itd -o manual.xlf\n"
            "  genutil itd extract manual.itd --form jsonl | jq .source",
            RunExtract);
    addFile(extract, *extractOptions);
    addOutput(extract, *extractOptions, "Where they go; its ending decides the form");
    addForm(extract, *extractOptions, "The form, whatever the ending; tsv on standard output");

    const auto [apply, applyOptions] = add(
        "apply", "Put translations into a copy of the document",
        "The copy appears under its name when it was read again and holds exactly what it should;\n"
        "the document itself is never written to. A row is refused, and named with the reason, "
        "when\n"
        "its codes are not those of the source, each once, in any order, when its source is not "
        "that\n"
        "of the segment, or when its text cannot be read; the others are applied. Rows without a\n"
        "translation leave the segment as it is, and statuses stay. Exit code 1: rows were "
        "refused.\n\n"
        "Examples:\n"
        "  genutil itd apply manual.itd manual.xlf -o manual-translated.itd\n"
        "  genutil itd apply manual.itd manual.tsv --dry-run",
        RunApply);
    addFile(apply, *applyOptions, "REFERENCE");
    apply->add_option("TRANSLATIONS", applyOptions->rows, "The file of translations")
        ->required()
        ->type_name("");
    addOutput(apply, *applyOptions, "The translated document");
    addForm(apply, *applyOptions, "The form of the translations, whatever their ending");
    apply->add_flag("--dry-run,-n", applyOptions->dryRun, "Say what would happen, write nothing");
    addJson(apply, *applyOptions, "\"genutil.itd-apply/1\"");
}

}  // namespace generalutilities::cli
