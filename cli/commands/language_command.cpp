#include "commands/language_command.h"

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>

#include "commands/detect_commands.h"
#include "component_client.h"
#include "language.h"
#include "unicode.h"

#include <memory>
#include <nlohmann/json.hpp>

/// `genutil language`: what the library knows of languages.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct NameOptions {
    std::vector<std::string> languages;
    bool asJson = false;
};

ExitCode RunName(CommandContext& context, const NameOptions& options) {
    std::vector<std::int32_t> langIds;
    for (const std::string& language : options.languages) {
        langIds.push_back(ParseLanguage("LANGUAGE", language));
    }
    const auto utils =
        CreateComponent<IStringUtils>(CLSID_StringUtils, IID_IStringUtils, "StringUtils");
    bool allHaveNames = true;
    json results = json::array();
    for (const std::int32_t langId : langIds) {
        Bstr name;
        Check(utils->GetLangNativeName(langId, name.Out()), "genutil language name");
        const bool hasName = !name.View().empty();
        allHaveNames = allHaveNames && hasName;
        if (options.asJson) {
            results.push_back({{"language", langId},
                               {"name", hasName ? json(ToUtf8(name.View())) : json(nullptr)}});
        } else if (hasName) {
            context.console.WriteLine(ToUtf8(name.View()));
        } else {
            context.console.Warn(LanguageName(langId) + ": no name is known");
        }
    }
    if (options.asJson) {
        const json document{{"format", "genutil.language-names/1"},
                            {"results", std::move(results)}};
        context.console.WriteLine(document.dump(2));
    }
    return allHaveNames ? ExitCode::Done : ExitCode::NegativeAnswer;
}

}  // namespace

void AddLanguageCommand(CLI::App& parent, CommandContext& context) {
    CLI::App* language =
        parent.add_subcommand("language", "Names of languages, and the language of texts");
    language->require_subcommand(1);
    auto options = std::make_shared<NameOptions>();
    CLI::App* name = language->add_subcommand("name", "The names of languages in these languages");
    name->add_option("LANGUAGE", options->languages,
                     "Tags such as ja-JP or Windows language identifiers such as 1041")
        ->type_name("")
        ->required();
    name->add_flag("--json", options->asJson, "One JSON document, \"genutil.language-names/1\"");
    name->footer(
        "Exit code 1: a language has no name here.\nExample:\n"
        "  genutil language name ja-JP 1049           日本語, Русский");
    context.Runs(name, [&context, options] { return RunName(context, *options); });
    AddLanguageDetectCommand(*language, context);
}

}  // namespace generalutilities::cli
