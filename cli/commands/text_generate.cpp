#include "commands/text_generate.h"

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>

#include "component_client.h"
#include "failure.h"
#include "unicode.h"

#include <limits>
#include <memory>
#include <nlohmann/json.hpp>

/// `genutil text generate`: random texts of a script.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct GenerateOptions {
    std::int32_t script = 0;
    std::int32_t length = 20;
    std::int32_t count = 1;
    bool asJson = false;
};

ExitCode RunGenerate(CommandContext& context, const GenerateOptions& options) {
    const auto utils =
        CreateComponent<IStringUtils>(CLSID_StringUtils, IID_IStringUtils, "StringUtils");
    json results = json::array();
    for (std::int32_t i = 0; i < options.count; ++i) {
        Bstr text;
        const HRESULT status = utils->GenerateString(options.script, options.length, text.Out());
        Check(status, "genutil text generate");
        if (status == S_FALSE) {
            throw UsageError("--script " + std::to_string(options.script) +
                             ": no such script key; there are 4 to 39 and 128 to 135");
        }
        if (options.asJson) {
            results.push_back({{"result", ToUtf8(text.View())}});
        } else {
            context.console.WriteLine(ToUtf8(text.View()));
        }
    }
    if (options.asJson) {
        const json document{{"format", "genutil.text/1"},
                            {"operation", "generate"},
                            {"script", options.script},
                            {"results", std::move(results)}};
        context.console.WriteLine(document.dump(2));
    }
    return ExitCode::Done;
}

}  // namespace

void AddTextGenerateCommand(CLI::App& text, CommandContext& context) {
    auto options = std::make_shared<GenerateOptions>();
    CLI::App* generate = text.add_subcommand("generate", "Random texts of a script, one a line");
    generate
        ->add_option("--script,-s", options->script,
                     "Script key: 4 to 39 for a script, 128 to 135 for a code page")
        ->type_name("")
        ->required();
    generate->add_option("--length", options->length, "Length in code units")
        ->check(CLI::Range(0, std::numeric_limits<std::int32_t>::max() / 2))
        ->type_name("")
        ->capture_default_str();
    generate->add_option("--count", options->count, "How many texts")
        ->check(CLI::Range(1, std::numeric_limits<std::int32_t>::max()))
        ->type_name("")
        ->capture_default_str();
    generate->add_flag("--json", options->asJson, "One JSON document, \"genutil.text/1\"");
    generate->footer(
        "The sequence follows from the second of the call: two calls in one second give the same.\n"
        "Example:\n  genutil text generate --script 5 --length 8        eight Greek letters");
    context.Runs(generate, [&context, options] { return RunGenerate(context, *options); });
}

}  // namespace generalutilities::cli
