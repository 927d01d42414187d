#include "commands/codepage_command.h"

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>

#include "code_page.h"
#include "commands/codepage_convert.h"
#include "commands/detect_commands.h"
#include "component_client.h"
#include "text_sources.h"
#include "unicode.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

/// `genutil codepage`: which pages there are, which can carry a text, detection and conversion.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

const char* ServiceName(CodePageService service) {
    switch (service) {
        case CodePageService::None:
            return "none";
        case CodePageService::Icu:
            return "icu";
        case CodePageService::Iconv:
            return "iconv";
        case CodePageService::BuiltIn:
            return "built-in";
    }
    return "none";
}

ExitCode RunList(CommandContext& context, bool asJson) {
    json pages = json::array();
    for (const CodePageDescription& page : KnownCodePages()) {
        const std::string converter = page.converter;
        if (asJson) {
            pages.push_back({{"codePage", page.number},
                             {"service", ServiceName(page.service)},
                             {"converter", converter.empty() ? json(nullptr) : json(converter)},
                             {"name", page.name}});
        } else {
            context.console.WriteLine(std::to_string(page.number) + "\t" +
                                      ServiceName(page.service) + "\t" + converter + "\t" +
                                      page.name);
        }
    }
    if (asJson) {
        const json document{{"format", "genutil.code-pages/1"}, {"codePages", std::move(pages)}};
        context.console.WriteLine(document.dump(2));
    }
    return ExitCode::Done;
}

struct FitsOptions {
    TextSources sources;
    std::optional<std::uint32_t> codePage;
    bool asJson = false;
};

/// Asks a `StringUtils` object text by text, and prints the answers as they come.
class FitsRun {
  public:
    FitsRun(Console& console, const FitsOptions& options)
        : output(console),
          settings(options),
          converter(options.codePage ? OpenNamedCodePage("--code-page", *options.codePage)
                                     : nullptr),
          utils(CreateComponent<IStringUtils>(CLSID_StringUtils, IID_IStringUtils, "StringUtils")) {
    }

    void Add(std::string_view text) {
        ++count;
        if (settings.codePage) {
            WarnOfZero(output, count, text);
        }
        const Bstr input(ToUtf16(text));
        json result{{"text", text}};
        const std::string line =
            settings.codePage ? AskOnePage(input, result) : AskAllPages(input, result);
        if (settings.asJson) {
            results.push_back(std::move(result));
        } else {
            output.WriteLine(line);
        }
    }

    ExitCode Finish() {
        if (settings.asJson) {
            json document{{"format", "genutil.code-page-fits/1"}};
            if (settings.codePage) {
                document["codePage"] = *settings.codePage;
            }
            document["results"] = std::move(results);
            output.WriteLine(document.dump(2));
        }
        return allFit ? ExitCode::Done : ExitCode::NegativeAnswer;
    }

  private:
    std::string AskOnePage(const Bstr& input, json& result) {
        VARIANT_BOOL fits = VARIANT_FALSE;
        Check(utils->IsStringInCodePage(input.Get(), static_cast<std::int32_t>(*settings.codePage),
                                        &fits),
              "genutil codepage fits");
        result["fits"] = fits != VARIANT_FALSE;
        if (fits != VARIANT_FALSE) {
            return "yes";
        }
        allFit = false;
        const std::size_t index = converter->FindForeignUnit(input.View());
        if (index == CodePageConverter::NotFound) {
            return "no";
        }
        const std::string character = CodePointAt(input.View(), index);
        result["position"] = index + 1;
        result["character"] = character;
        return "no\t" + std::to_string(index + 1) + "\t" + character;
    }

    std::string AskAllPages(const Bstr& input, json& result) {
        SAFEARRAY* array = nullptr;
        Check(utils->GetStringCodePages(input.Get(), &array), "genutil codepage fits");
        std::int32_t last = -1;
        SafeArrayGetUBound(array, 1, &last);
        result["codePages"] = json::array();
        std::string line;
        for (std::int32_t i = 0; i <= last; ++i) {
            std::uint32_t codePage = 0;
            SafeArrayGetElement(array, &i, &codePage);
            result["codePages"].push_back(codePage);
            line += (i == 0 ? "" : " ") + std::to_string(codePage);
        }
        SafeArrayDestroy(array);
        allFit = allFit && last >= 0;
        return line;
    }

    Console& output;
    const FitsOptions& settings;
    std::unique_ptr<CodePageConverter> converter;  ///< null when all pages are asked for
    ComPtr<IStringUtils> utils;
    json results = json::array();
    std::size_t count = 0;
    bool allFit = true;
};

void AddListCommand(CLI::App& codePage, CommandContext& context) {
    auto asJson = std::make_shared<bool>(false);
    CLI::App* list = codePage.add_subcommand(
        "list", "All known code pages: number, what serves it, under which name, what it is");
    list->add_flag("--json", *asJson, "One JSON document, \"genutil.code-pages/1\"");
    context.Runs(list, [&context, asJson] { return RunList(context, *asJson); });
}

void AddFitsCommand(CLI::App& codePage, CommandContext& context) {
    auto options = std::make_shared<FitsOptions>();
    CLI::App* fits = codePage.add_subcommand(
        "fits", "Which code pages carry a text, or whether one does, a line for each text");
    AddTextSources(fits, options->sources);
    fits->add_option("--code-page,-c", options->codePage,
                     "Ask for this page; where it does not carry the text, the line tells the "
                     "position and the character")
        ->type_name("N");
    fits->add_flag("--json", options->asJson, "One JSON document, \"genutil.code-page-fits/1\"");
    fits->footer(
        "Exit code 1: a text fits no page, or not the page asked for.\nExamples:\n"
        "  genutil codepage fits 'שלום'                     1255\n"
        "  genutil codepage fits --code-page 1252 'naïve Ω'  no, 7, U+03A9");
    context.Runs(fits, [&context, options] {
        FitsRun run(context.console, *options);
        ForEachText(options->sources, [&run](std::string_view text) { run.Add(text); });
        return run.Finish();
    });
}

}  // namespace

void AddCodePageCommand(CLI::App& parent, CommandContext& context) {
    CLI::App* codePage =
        parent.add_subcommand("codepage", "Code pages: list, detect, convert, what fits into them");
    codePage->require_subcommand(1);
    AddListCommand(*codePage, context);
    AddCodePageDetectCommand(*codePage, context);
    AddCodePageConvertCommand(*codePage, context);
    AddFitsCommand(*codePage, context);
}

}  // namespace generalutilities::cli
