#include "commands/text_command.h"

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>

#include "commands/text_distance.h"
#include "commands/text_find.h"
#include "commands/text_generate.h"
#include "component_client.h"
#include "language.h"
#include "text_sources.h"
#include "unicode.h"

#include <memory>
#include <nlohmann/json.hpp>

/// `genutil text`: the text services, one subcommand each, on arguments, files or standard input
/// line by line. Every answer comes from a `StringUtils` object.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct TextOptions {
    TextSources sources;
    std::string language = "en-US";
    std::int32_t langId = 0;
    std::int32_t size = 50;
    bool digitsOnly = false;
    bool asJson = false;
};

struct Token {
    WordTypeEnum type;
    std::int32_t position;  ///< 1-based, in code units
    std::string text;
};

const char* TypeName(WordTypeEnum type) {
    switch (type) {
        case qlnwtWord:
            return "word";
        case qlnwtDigit:
            return "digit";
        case qlnwtSeparator:
            return "separator";
        case qlnwtDBCS:
            return "dbcs";
        case qlnwtCode:
            return "code";
    }
    return "unknown";
}

std::vector<Token> Words(IStringUtils& utils, const Bstr& text, const TextOptions& options) {
    std::vector<Token> tokens;
    for (std::int32_t next = 1;;) {
        const std::int32_t position = next;
        WordTypeEnum type = qlnwtSeparator;
        Bstr token;
        Check(utils.ParseString(&next, text.Get(), options.langId, &type, token.Out()),
              "parsing the text");
        if (token.Get() == nullptr) {
            return tokens;
        }
        tokens.push_back({type, position, ToUtf8(token.View())});
        if (next == 0) {
            return tokens;
        }
    }
}

/// An operation that makes one text of another.
using Conversion = HRESULT (*)(IStringUtils&, BSTR, const TextOptions&, BSTR*);

struct Operation {
    const char* name;
    const char* help;
    const char* example;
    Conversion convert;  ///< null for `words`
    bool takesLanguage;
    bool takesSize;
    bool takesDigitsOnly;
    bool stopsAtZero;  ///< the library reads the text up to its first U+0000
};

const Operation Operations[] = {
    {"upper", "Upper case, in every script, whatever the locale",
     "  genutil text upper 'Straße'                      STRASSE",
     [](IStringUtils& utils, BSTR text, const TextOptions&, BSTR* result) {
         return utils.ToUpper(text, result);
     },
     false, false, false, false},
    {"lower", "Lower case, in every script, whatever the locale",
     "  genutil text lower 'ΑΘΉΝΑ'                       αθήνα",
     [](IStringUtils& utils, BSTR text, const TextOptions&, BSTR* result) {
         return utils.ToLower(text, result);
     },
     false, false, false, false},
    {"deaccent", "Without accents and compatibility forms; case stays",
     "  genutil text deaccent 'Crème brûlée'             Creme brulee",
     [](IStringUtils& utils, BSTR text, const TextOptions&, BSTR* result) {
         return utils.DeAccentString(text, result);
     },
     false, false, false, false},
    {"words", "The words, numbers, separators and codes of a text, one a line with its type",
     "  genutil text words --language fr-FR \"l'homme a 1 000,50 francs {1}\"", nullptr, true,
     false, false, false},
    {"key", "The index key: from the first word to the last, without numbers and codes",
     "  genutil text key '  {1}Hello   42 worlds'          Hello worlds",
     [](IStringUtils& utils, BSTR text, const TextOptions& options, BSTR* result) {
         return utils.ToIndex(text, options.langId, options.size, result);
     },
     true, true, false, true},
    {"simplify", "Punctuation of all scripts as plain ASCII",
     "  genutil text simplify '「こんにちは」'              (こんにちは)",
     [](IStringUtils& utils, BSTR text, const TextOptions& options, BSTR* result) {
         return utils.SimplifyString(text, options.langId, result);
     },
     true, false, false, true},
    {"fold-digits", "The digits of all scripts as ASCII digits, and other numerals as 0",
     "  genutil text fold-digits '٣٤ ⅳ 二百'               34 4 20",
     [](IStringUtils& utils, BSTR text, const TextOptions& options, BSTR* result) {
         return utils.FoldDigits(text, options.digitsOnly ? VARIANT_FALSE : VARIANT_TRUE, result);
     },
     false, false, true, true},
};

/// Turns each text into output as it comes, so that standard input of any length passes through;
/// only `--json`, which is one document, is gathered.
class TextRun {
  public:
    TextRun(Console& console, const Operation& operation, const TextOptions& options)
        : output(console),
          work(operation),
          settings(options),
          utils(CreateComponent<IStringUtils>(CLSID_StringUtils, IID_IStringUtils, "StringUtils")) {
    }

    void Add(std::string_view text) {
        if (work.stopsAtZero) {
            WarnOfZero(output, count + 1, text);
        }
        const Bstr input(ToUtf16(text));
        if (work.convert == nullptr) {
            AddWords(text, input);
        } else {
            Bstr result;
            Check(work.convert(*utils.Get(), input.Get(), settings, result.Out()),
                  std::string("genutil text ") + work.name);
            AddResult(text, ToUtf8(result.View()));
        }
        ++count;
    }

    void Finish() {
        if (!settings.asJson) {
            return;
        }
        json document{{"format", "genutil.text/1"}, {"operation", work.name}};
        if (work.takesLanguage) {
            document["language"] = settings.langId;
        }
        document["results"] = std::move(results);
        output.WriteLine(document.dump(2));
    }

  private:
    void AddResult(std::string_view text, const std::string& result) {
        if (settings.asJson) {
            results.push_back({{"text", text}, {"result", result}});
        } else {
            output.WriteLine(result);
        }
    }

    void AddWords(std::string_view text, const Bstr& input) {
        const std::vector<Token> tokens = Words(*utils.Get(), input, settings);
        if (settings.asJson) {
            json list = json::array();
            for (const Token& token : tokens) {
                list.push_back({{"type", TypeName(token.type)},
                                {"position", token.position},
                                {"text", token.text}});
            }
            results.push_back({{"text", text}, {"tokens", std::move(list)}});
            return;
        }
        if (count > 0) {
            output.WriteLine("");  // an empty line parts the texts
        }
        for (const Token& token : tokens) {
            output.WriteLine(std::string(TypeName(token.type)) + "\t" + ShowControls(token.text));
        }
    }

    Console& output;
    const Operation& work;
    const TextOptions& settings;
    ComPtr<IStringUtils> utils;
    json results = json::array();
    std::size_t count = 0;
};

ExitCode RunText(CommandContext& context, const Operation& operation, TextOptions& options) {
    if (operation.takesLanguage) {
        options.langId = ParseLanguage("--language", options.language);
    }
    TextRun run(context.console, operation, options);
    ForEachText(options.sources, [&](std::string_view text) { run.Add(text); });
    run.Finish();
    return ExitCode::Done;
}

}  // namespace

void AddTextCommand(CLI::App& parent, CommandContext& context) {
    CLI::App* text = parent.add_subcommand(
        "text", "Fold, parse, search and compare text; arguments, files or standard input");
    text->require_subcommand(1);
    std::string examples = "Examples:\n";
    for (const Operation& operation : Operations) {
        examples += std::string(operation.example) + "\n";
        auto options = std::make_shared<TextOptions>();
        CLI::App* command = text->add_subcommand(operation.name, operation.help);
        command->footer("Example:\n" + std::string(operation.example));
        AddTextSources(command, options->sources);
        if (operation.takesLanguage) {
            command
                ->add_option("--language,-l", options->language,
                             "The language of the text: a tag such as fr-FR or an identifier "
                             "such as 1036; it decides the separators of numbers, apostrophes "
                             "and, for Greek, the question mark")
                ->capture_default_str();
        }
        if (operation.takesSize) {
            command->add_option("--size", options->size, "Length of the key in code units")
                ->check(CLI::Range(1, 65535))
                ->capture_default_str();
        }
        if (operation.takesDigitsOnly) {
            command->add_flag("--digits-only", options->digitsOnly,
                              "Leave numerals that are no single digit as they are");
        }
        command->add_flag("--json", options->asJson, "One JSON document, \"genutil.text/1\"");
        context.Runs(command, [&context, &operation, options] {
            return RunText(context, operation, *options);
        });
    }
    AddTextFindCommand(*text, context);
    AddTextDistanceCommand(*text, context);
    AddTextGenerateCommand(*text, context);
    text->footer(examples);
}

}  // namespace generalutilities::cli
