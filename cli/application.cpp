#include "application.h"

#include "command.h"
#include "commands/accept_command.h"
#include "commands/classes_command.h"
#include "commands/codepage_command.h"
#include "commands/draw_command.h"
#include "commands/export_command.h"
#include "commands/import_command.h"
#include "commands/itd_command.h"
#include "commands/language_command.h"
#include "commands/project_command.h"
#include "commands/register_command.h"
#include "commands/review_command.h"
#include "commands/tags_command.h"
#include "commands/text_command.h"
#include "failure.h"
#include "unicode.h"

#include <cstdio>
#include <new>
#include <sstream>

namespace generalutilities::cli {
namespace {

constexpr const char* Overview =
    R"(Exit codes: 0 done, 1 a negative answer, 2 wrong use, 3 a failure, with its description and
source on standard error.

The usual road, from a gettext catalogue to a reviewer and back:
  genutil project create app.project --source en-US po/fr.po po/de.po
  genutil export app.project -o review-fr.rtf --language fr-FR
  genutil import app.project review-fr.rtf --language fr-FR --dry-run
  genutil import app.project review-fr.rtf --language fr-FR
  genutil review app.project --language fr-FR
  genutil accept app.project --language fr-FR

`genutil COMMAND --help` tells all about a command.)";

void AddCommands(CLI::App& app, CommandContext& context) {
    AddProjectCommand(app, context);
    AddExportCommand(app, context);
    AddImportCommand(app, context);
    AddReviewCommand(app, context);
    AddAcceptCommand(app, context);
    AddTextCommand(app, context);
    AddLanguageCommand(app, context);
    AddCodePageCommand(app, context);
    AddTagsCommand(app, context);
    AddItdCommand(app, context);
    AddDrawCommand(app, context);
    AddClassesCommand(app, context);
    AddRegisterCommands(app, context);
}

/// The command as it was typed, such as "genutil text upper": the words that led to a subcommand.
std::string CalledName(const CLI::App& app) {
    std::string name = app.get_name();
    const CLI::App* current = &app;
    while (!current->get_subcommands().empty()) {
        current = current->get_subcommands().front();
        name += " " + current->get_name();
    }
    return name;
}

/// The words of a failure, who reported it, and its status.
std::string Describe(const Error& failure, const std::string& source) {
    char status[16];
    std::snprintf(status, sizeof status, "0x%08X", static_cast<unsigned int>(failure.Status()));
    return std::string(failure.what()) + "\n  reported by " + source + ", status " + status;
}

/// What was typed and has no meaning, as a message; empty when all of it has one. Such a word is
/// the likely cause of whatever else is missing, and it is an error beside --help too.
std::string DescribeUnknown(const CLI::App& app) {
    const std::vector<std::string> unknown = app.remaining(true);
    if (unknown.empty()) {
        return {};
    }
    const std::string& word = unknown.front();
    return "\"" + ShowControls(word) + "\" is no " +
           (word.starts_with("-") ? "option here" : "command or argument here");
}

ExitCode ParseAndRun(int argc, const char* const* argv, Console& console) {
    CLI::App app;
    CommandContext context{console, {}};
    AddEverything(app, context);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& outcome) {
        const std::string unknown = DescribeUnknown(app);
        const bool isRequest = outcome.get_exit_code() == 0;  // help or version
        if (isRequest && unknown.empty()) {
            std::ostringstream text;
            app.exit(outcome, text, text);
            console.Write(text.str());
            if (!text.str().ends_with('\n')) {
                console.Write("\n");
            }
            return ExitCode::Done;
        }
        console.Error((unknown.empty() ? ShowControls(outcome.what()) : unknown) +
                      "\nTry: " + CalledName(app) + " --help");
        return ExitCode::WrongUse;
    }
    try {
        return context.action();
    } catch (const UsageError& error) {
        console.Error(std::string(error.what()) + "\nTry: " + CalledName(app) + " --help");
        return ExitCode::WrongUse;
    }
}

}  // namespace

void AddEverything(CLI::App& app, CommandContext& context) {
    app.name("genutil");
    app.description("The general utilities library from the command line");
    app.footer(Overview);
    app.set_version_flag("--version", "genutil " GENUTIL_VERSION);
    app.require_subcommand(1);
    AddCommands(app, context);
}

ExitCode RunApplication(int argc, const char* const* argv, Console& console) {
    ExitCode code = ExitCode::Failed;
    try {
        code = ParseAndRun(argc, argv, console);
    } catch (const Failure& failure) {
        console.Error(Describe(failure, failure.Source()));
    } catch (const Error& error) {
        console.Error(Describe(error, "GeneralUtilities"));
    } catch (const std::bad_alloc&) {
        console.Error("out of memory");
    } catch (const std::exception& error) {
        console.Error(std::string("unexpected failure: ") + error.what());
    } catch (...) {
        console.Error("unexpected failure");
    }
    if (!console.Finish()) {
        console.Error("cannot write to standard output: " + console.FailureText());
        return ExitCode::Failed;
    }
    return code;
}

}  // namespace generalutilities::cli
