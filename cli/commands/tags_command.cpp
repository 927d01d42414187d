#include "commands/tags_command.h"

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/code_page_helper.h>
#include <generalutilities/tagged/font_tags.h>
#include <generalutilities/tagged/tag_scan.h>

#include "commands/tags_serialize.h"
#include "component_client.h"
#include "failure.h"
#include "text_sources.h"
#include "unicode.h"

#include <charconv>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

/// `genutil tags`: inline tags of segment text, on arguments, files or standard input line by line.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct TagsOptions {
    TextSources sources;
    std::vector<std::string> pages;  ///< "NUMBER=FONTDEF"
    bool asJson = false;
};

/// Prints results as they come; a document of `--json` at the end.
class Results {
  public:
    Results(Console& console, std::string operationName, bool asJson)
        : output(console), operation(std::move(operationName)), gather(asJson) {}

    /// `lines` is what is printed without `--json`, with the line end.
    void Add(std::string_view text, json result, const std::string& lines) {
        if (!gather) {
            output.Write(lines);
            return;
        }
        result["text"] = text;
        results.push_back(std::move(result));
    }
    /// Tells why the tags of a text cannot be scanned.
    void AddFault(std::size_t number, const TagFault& fault) {
        output.Warn("text " + std::to_string(number) + ", position " +
                    std::to_string(fault.position + 1) + ": " + fault.Words());
        anyFault = true;
    }
    ExitCode Finish() {
        if (gather) {
            const json document{{"format", "genutil.tags/1"},
                                {"operation", operation},
                                {"results", std::move(results)}};
            output.WriteLine(document.dump(2));
        }
        return anyFault ? ExitCode::NegativeAnswer : ExitCode::Done;
    }

  private:
    Console& output;
    std::string operation;
    bool gather;
    json results = json::array();
    bool anyFault = false;
};

const char* KindName(TagKind kind) {
    switch (kind) {
        case TagKind::CodeElement:
            return "code";
        case TagKind::OpeningFontTag:
            return "font";
        case TagKind::ClosingFontTag:
            return "/font";
        case TagKind::Other:
            return "tag";
    }
    return "tag";
}

ExitCode RunScan(CommandContext& context, const TagsOptions& options) {
    Results results(context.console, "scan", options.asJson);
    std::size_t number = 0;
    ForEachText(options.sources, [&](std::string_view text) {
        const std::u16string wide = ToUtf16(text);
        json parts = json::array();
        std::string lines = number++ == 0 ? "" : "\n";  // an empty line parts the texts
        const auto add = [&](const char* type, std::u16string_view part) {
            const std::string bytes = ToUtf8(part);
            lines += std::string(type) + "\t" + ShowControls(bytes) + "\n";
            parts.push_back({{"type", type}, {"text", bytes}});
        };
        TagScan scan;
        const auto fault = ScanTags(wide, scan);
        for (std::size_t i = 0; i < scan.texts.size(); ++i) {
            if (!scan.texts[i].empty()) {
                add("text", scan.texts[i]);
            }
            if (i < scan.tags.size()) {
                add(KindName(KindOfTag(scan.tags[i])), scan.tags[i]);
            }
        }
        json result;
        if (fault) {
            results.AddFault(number, *fault);
            result["fault"] = {{"position", fault->position + 1}, {"words", fault->Words()}};
            lines.clear();
        } else {
            result["parts"] = std::move(parts);
        }
        results.Add(text, std::move(result), lines);
    });
    return results.Finish();
}

ExitCode RunStripFonts(CommandContext& context, const TagsOptions& options) {
    Results results(context.console, "strip-fonts", options.asJson);
    ForEachText(options.sources, [&](std::string_view text) {
        const std::string stripped = ToUtf8(StripFontAttributes(ToUtf16(text)));
        results.Add(text, {{"result", stripped}}, stripped + "\n");
    });
    return results.Finish();
}

/// "1251=font="Arial CYR"" as a page and its font definition.
void AddPage(ICodePageHelper& helper, const std::string& argument) {
    const std::size_t equals = argument.find('=');
    std::uint32_t number = 0;
    const char* const end = argument.data() + std::min(equals, argument.size());
    const auto parsed = std::from_chars(argument.data(), end, number);
    if (equals == argument.npos || parsed.ec != std::errc() || parsed.ptr != end ||
        number > 65535) {
        throw UsageError("--page " + ShowControls(argument) +
                         ": a code page number, =, and the attributes of the font tag are wanted, "
                         "such as 1251=font=\"Arial\"");
    }
    const Bstr font(ArgumentToUtf16("--page", argument.substr(equals + 1)));
    Check(helper.AddCodePage(static_cast<std::int32_t>(number), font.Get()),
          "genutil tags add-fonts");
}

ExitCode RunAddFonts(CommandContext& context, const TagsOptions& options) {
    const auto helper = CreateComponent<ICodePageHelper>(CLSID_CodePageHelper, IID_ICodePageHelper,
                                                         "CodePageHelper");
    for (const std::string& page : options.pages) {
        AddPage(*helper.Get(), page);
    }
    Results results(context.console, "add-fonts", options.asJson);
    std::size_t number = 0;
    ForEachText(options.sources, [&](std::string_view text) {
        WarnOfZero(context.console, ++number, text);
        const Bstr input(ToUtf16(text));
        // The component gives a text back that it cannot scan, and says nothing.
        TagScan scan;
        if (const auto fault = ScanTags(input.View(), scan)) {
            results.AddFault(number, *fault);
        }
        Bstr wrapped;
        Check(helper->AddFonts(input.Get(), wrapped.Out()), "genutil tags add-fonts");
        const std::string result = ToUtf8(wrapped.View());
        results.Add(text, {{"result", result}}, result + "\n");
    });
    return results.Finish();
}

}  // namespace

void AddTagsCommand(CLI::App& parent, CommandContext& context) {
    CLI::App* tags = parent.add_subcommand(
        "tags", "Inline tags of segment text: cut, number, strip and add fonts");
    tags->require_subcommand(1);
    const auto add = [&](const char* name, const char* help, const char* footer, auto run) {
        auto options = std::make_shared<TagsOptions>();
        CLI::App* command = tags->add_subcommand(name, help);
        AddTextSources(command, options->sources);
        command->add_flag("--json", options->asJson, "One JSON document, \"genutil.tags/1\"");
        command->footer(footer);
        context.Runs(command, [&context, options, run] { return run(context, *options); });
        return std::pair(command, options);
    };
    add("scan", "The plain runs and tags of a text, one a line with its type",
        "Types: text, tag, code (a <ut> element), font and /font (<df> tags).\n"
        "Exit code 1: a text cannot be scanned; it is named on standard error.\nExample:\n"
        "  genutil tags scan 'one <ut>&lt;x&gt;</ut>two'",
        RunScan);
    add("strip-fonts", "Without the font information of <df> tags",
        "Example:\n  genutil tags strip-fonts '<df a=\"1\" font=\"A\">x</df>'   <df a=\"1\">x</df>",
        RunStripFonts);
    AddTagsSerializeCommand(*tags, context);
    const auto [addFonts, options] = add(
        "add-fonts", "Runs that leave the first code page in font tags of one that carries them",
        "Exit code 1: a text cannot be scanned and stays as it is.\nExample:\n"
        "  genutil tags add-fonts --page 1252='font=\"W\"' --page 1251='font=\"C\"' 'ab\u0434'",
        RunAddFonts);
    addFonts
        ->add_option("--page,-p", options->pages,
                     "A code page and the attributes of its font tag; the first is the default, "
                     "the others are tried in order")
        ->type_name("NUMBER=FONT")
        ->allow_extra_args(false)
        ->required();
}

}  // namespace generalutilities::cli
