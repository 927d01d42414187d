#include "commands/text_distance.h"

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>

#include "component_client.h"
#include "text_sources.h"
#include "unicode.h"

#include <charconv>
#include <memory>
#include <nlohmann/json.hpp>

/// `genutil text distance`: how far texts are from one text.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct DistanceOptions {
    std::string from;
    TextSources sources;
    double casePenalty = 1.0;
    bool asJson = false;
};

/// The shortest form that reads back as the same number.
std::string ToText(double number) {
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, number).ptr);
}

ExitCode RunDistance(CommandContext& context, const DistanceOptions& options) {
    const Bstr from(ArgumentToUtf16("FROM", options.from));
    const auto utils =
        CreateComponent<IStringUtils>(CLSID_StringUtils, IID_IStringUtils, "StringUtils");
    json results = json::array();
    ForEachText(options.sources, [&](std::string_view text) {
        double distance = 0;
        Check(utils->EditDistance(from.Get(), Bstr(ToUtf16(text)).Get(), options.casePenalty,
                                  &distance),
              "genutil text distance");
        if (options.asJson) {
            results.push_back({{"text", text}, {"distance", distance}});
        } else {
            context.console.WriteLine(ToText(distance));
        }
    });
    if (options.asJson) {
        const json document{{"format", "genutil.text/1"},
                            {"operation", "distance"},
                            {"from", options.from},
                            {"casePenalty", options.casePenalty},
                            {"results", std::move(results)}};
        context.console.WriteLine(document.dump(2));
    }
    return ExitCode::Done;
}

}  // namespace

void AddTextDistanceCommand(CLI::App& text, CommandContext& context) {
    auto options = std::make_shared<DistanceOptions>();
    CLI::App* distance =
        text.add_subcommand("distance", "The edit distance of each text from one text, one a line");
    distance->add_option("FROM", options->from, "The text to measure from")
        ->type_name("")
        ->required();
    AddTextSources(distance, options->sources);
    distance
        ->add_option("--case-penalty", options->casePenalty,
                     "What a change of case costs; any other edit of a code unit costs 1")
        ->type_name("")
        ->capture_default_str();
    distance->add_flag("--json", options->asJson, "One JSON document, \"genutil.text/1\"");
    distance->footer(
        "Example:\n"
        "  genutil text distance --case-penalty 0.25 Flaw flaw lawn   0.25, 2");
    context.Runs(distance, [&context, options] { return RunDistance(context, *options); });
}

}  // namespace generalutilities::cli
