#include "commands/text_find.h"

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>

#include "component_client.h"
#include "text_sources.h"
#include "unicode.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>

/// `genutil text find`: where a text stands in others.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct FindOptions {
    std::string sought;
    TextSources sources;
    std::int32_t start = 1;
    bool matchCase = false;
    bool wholeWord = false;
    bool all = false;
    bool asJson = false;
};

struct Match {
    std::int32_t position;
    std::int32_t length;
    std::string text;
};

class Finder {
  public:
    explicit Finder(const FindOptions& options)
        : settings(options),
          sought(ArgumentToUtf16("SOUGHT", options.sought)),
          utils(CreateComponent<IStringUtils>(CLSID_StringUtils, IID_IStringUtils, "StringUtils")) {
    }

    std::vector<Match> Matches(const Bstr& text) const {
        std::vector<Match> matches;
        for (std::int32_t start = settings.start;;) {
            Match match{};
            Check(utils->Instr(start, text.Get(), sought.Get(), &match.length,
                               settings.matchCase ? VARIANT_TRUE : VARIANT_FALSE,
                               settings.wholeWord ? VARIANT_TRUE : VARIANT_FALSE, &match.position),
                  "genutil text find");
            if (match.position == 0) {
                return matches;
            }
            match.text = ToUtf8(text.View().substr(static_cast<std::size_t>(match.position - 1),
                                                   static_cast<std::size_t>(match.length)));
            matches.push_back(match);
            if (!settings.all) {
                return matches;
            }
            start = match.position + std::max(match.length, 1);
        }
    }

  private:
    const FindOptions& settings;
    Bstr sought;
    ComPtr<IStringUtils> utils;
};

json AsJson(const std::vector<Match>& matches) {
    json list = json::array();
    for (const Match& match : matches) {
        list.push_back(
            {{"position", match.position}, {"length", match.length}, {"text", match.text}});
    }
    return list;
}

ExitCode RunFind(CommandContext& context, const FindOptions& options) {
    const Finder finder(options);
    json results = json::array();
    std::size_t number = 0;
    bool found = false;
    ForEachText(options.sources, [&](std::string_view text) {
        ++number;
        if (const std::size_t zero = text.find('\0'); options.matchCase && zero != text.npos) {
            context.console.Warn("text " + std::to_string(number) + ", byte offset " +
                                 std::to_string(zero) + ": an exact search ends at this U+0000");
        }
        const std::vector<Match> matches = finder.Matches(Bstr(ToUtf16(text)));
        found = found || !matches.empty();
        if (options.asJson) {
            results.push_back({{"text", text}, {"matches", AsJson(matches)}});
            return;
        }
        for (const Match& match : matches) {
            context.console.WriteLine(
                std::to_string(number) + "\t" + std::to_string(match.position) + "\t" +
                std::to_string(match.length) + "\t" + ShowControls(match.text));
        }
    });
    if (options.asJson) {
        const json document{{"format", "genutil.text/1"},
                            {"operation", "find"},
                            {"sought", options.sought},
                            {"results", std::move(results)}};
        context.console.WriteLine(document.dump(2));
    }
    return found ? ExitCode::Done : ExitCode::NegativeAnswer;
}

}  // namespace

void AddTextFindCommand(CLI::App& text, CommandContext& context) {
    auto options = std::make_shared<FindOptions>();
    CLI::App* find = text.add_subcommand(
        "find", "Where a text stands in others: number of the text, position, length, match");
    find->add_option("SOUGHT", options->sought, "What to look for")->type_name("")->required();
    AddTextSources(find, options->sources);
    find->add_flag("--match-case", options->matchCase,
                   "Compare exactly; else case does not count, and ß is \"SS\"");
    find->add_flag("--whole-word", options->wholeWord, "Only where no letter or number is beside");
    find->add_flag("--all", options->all, "Every match that starts behind the one before it");
    find->add_option("--start", options->start, "Position in code units, from 1, to start at")
        ->check(CLI::Range(1, std::numeric_limits<std::int32_t>::max()))
        ->type_name("")
        ->capture_default_str();
    find->add_flag("--json", options->asJson, "One JSON document, \"genutil.text/1\"");
    find->footer(
        "Positions and lengths count UTF-16 code units, positions from 1.\n"
        "Exit code 1: nothing was found.\nExample:\n"
        "  genutil text find --whole-word CAT 'catalog cat'  1, 9, 3, cat");
    context.Runs(find, [&context, options] { return RunFind(context, *options); });
}

}  // namespace generalutilities::cli
