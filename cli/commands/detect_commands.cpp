#include "commands/detect_commands.h"

#include <generalutilities/code_pages.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>
#include <generalutilities/text/detection.h>
#include <generalutilities/text/languages.h>

#include "byte_input.h"
#include "component_client.h"
#include "failure.h"
#include "language.h"
#include "unicode.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

/// `genutil codepage detect` and `genutil language detect`: what bytes are written in.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct DetectOptions {
    std::vector<std::string> files;
    std::vector<std::string> texts;
    std::int32_t defaultCodePage = 0;
    bool asJson = false;
};

void AddInputs(CLI::App* command, DetectOptions& options) {
    command
        ->add_option("FILE", options.files,
                     "Files of any bytes; without any, or for -, standard input")
        ->type_name("");
    command->add_option("--text,-t", options.texts, "Take this text's bytes; may be repeated")
        ->type_name("TEXT")
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    command->add_flag("--json", options.asJson,
                      "One JSON document, \"genutil.detection/1\", with all likely readings");
}

/// The bytes as the methods take them: text that gives them in the system's ANSI code page.
Bstr ToAnsiText(const std::string& bytes, const std::string& name) {
    if (bytes.size() > std::numeric_limits<std::uint32_t>::max() / sizeof(char16_t)) {
        throw Failure(name + " is too long for the library: " + std::to_string(bytes.size()) +
                      " bytes");
    }
    Bstr text;
    *text.Out() = SysAllocStringLen(nullptr, static_cast<std::uint32_t>(bytes.size()));
    if (text.Get() == nullptr) {
        throw std::bad_alloc();
    }
    OpenCodePage(SystemAnsiCodePage)->ToUnits(bytes, text.Get());
    return text;
}

json Readings(const std::string& bytes) {
    constexpr std::size_t Room = 10;
    json list = json::array();
    for (const DetectedEncoding& reading :
         DetectEncodings(bytes, DetectionMode::PlainText, 0, Room).encodings) {
        list.push_back({{"codePage", reading.codePage},
                        {"language", reading.langId == 0 ? json(nullptr) : json(reading.langId)},
                        {"percent", reading.docPercent},
                        {"confidence", reading.confidence}});
    }
    return list;
}

/// What one of the two commands asks of `StringUtils`: a number, or nothing.
struct Question {
    std::string key;  ///< in the JSON document
    std::function<std::optional<std::int32_t>(IStringUtils*, const Bstr&)> ask;
    std::function<std::string(std::int32_t)> show;
};

class DetectRun {
  public:
    DetectRun(Console& console, const DetectOptions& options, const Question& asked)
        : output(console),
          settings(options),
          question(asked),
          utils(CreateComponent<IStringUtils>(CLSID_StringUtils, IID_IStringUtils, "StringUtils")) {
    }

    ExitCode Run() {
        std::vector<std::string> files = settings.files;
        if (files.empty() && settings.texts.empty()) {
            files.emplace_back("-");
        }
        withNames = files.size() + settings.texts.size() > 1;
        for (const std::string& text : settings.texts) {
            Add(text, text);
        }
        for (const std::string& file : files) {
            Add(InputName(file), ReadInput(file));
        }
        if (settings.asJson) {
            const json document{{"format", "genutil.detection/1"}, {"results", std::move(results)}};
            output.WriteLine(document.dump(2, ' ', false, json::error_handler_t::replace));
        }
        return allFound ? ExitCode::Done : ExitCode::NegativeAnswer;
    }

  private:
    void Add(const std::string& name, const std::string& bytes) {
        const auto answer = question.ask(utils.Get(), ToAnsiText(bytes, name));
        allFound = allFound && answer;
        if (settings.asJson) {
            results.push_back({{"input", name},
                               {question.key, answer ? json(*answer) : json(nullptr)},
                               {"readings", Readings(bytes)}});
        } else if (answer || withNames) {
            output.WriteLine((answer ? question.show(*answer) : "unknown") +
                             (withNames ? "\t" + ShowControls(name) : ""));
        }
    }

    Console& output;
    const DetectOptions& settings;
    const Question& question;
    ComPtr<IStringUtils> utils;
    json results = json::array();
    bool withNames = false;
    bool allFound = true;
};

ExitCode RunCodePage(CommandContext& context, const DetectOptions& options) {
    const Question question{
        "codePage",
        [&options](IStringUtils* utils, const Bstr& text) {
            std::int32_t codePage = 0;
            Check(utils->DetectCodePage(text.Get(), options.defaultCodePage, &codePage),
                  "genutil codepage detect");
            return codePage == 0 ? std::nullopt : std::optional(codePage);
        },
        [](std::int32_t codePage) { return std::to_string(codePage); }};
    return DetectRun(context.console, options, question).Run();
}

ExitCode RunLanguage(CommandContext& context, const DetectOptions& options) {
    const Question question{
        "language",
        [](IStringUtils* utils, const Bstr& text) {
            std::int32_t langId = 0;
            Check(utils->DetectLanguage(text.Get(), &langId), "genutil language detect");
            return langId == 0 ? std::nullopt : std::optional(langId);
        },
        [](std::int32_t langId) {
            return LanguageName(langId) + "\t" +
                   ToUtf8(LanguageNativeName(langId).value_or(std::u16string_view()));
        }};
    return DetectRun(context.console, options, question).Run();
}

}  // namespace

void AddCodePageDetectCommand(CLI::App& codePage, CommandContext& context) {
    auto options = std::make_shared<DetectOptions>();
    CLI::App* detect = codePage.add_subcommand(
        "detect", "The code page that the bytes of an input are written in");
    AddInputs(detect, *options);
    detect
        ->add_option("--default", options->defaultCodePage,
                     "Name this page where nothing can be said")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
    detect->footer(
        "Of several inputs each line tells the name too.\n"
        "Exit code 1: of an input nothing can be said.\nExample:\n"
        "  genutil codepage detect old.txt                   1251");
    context.Runs(detect, [&context, options] { return RunCodePage(context, *options); });
}

void AddLanguageDetectCommand(CLI::App& language, CommandContext& context) {
    auto options = std::make_shared<DetectOptions>();
    CLI::App* detect = language.add_subcommand(
        "detect", "The language of an input in any code page; tags of markup do not count");
    AddInputs(detect, *options);
    detect->footer(
        "Of several inputs each line tells the name too.\n"
        "Exit code 1: an input has no language that is known.\nExample:\n"
        "  genutil language detect --text 'Où est la gare ?'  fr-FR (1036), Français");
    context.Runs(detect, [&context, options] { return RunLanguage(context, *options); });
}

}  // namespace generalutilities::cli
