#include "commands/register_command.h"

#include <generalutilities/automation/functions.h>

#include "component_client.h"

#include <cstdlib>
#include <filesystem>

namespace generalutilities::cli {
namespace {

/// Where the library keeps its registry: under the user's data folder. A relative XDG_DATA_HOME
/// does not count, as the rules for that variable say.
std::filesystem::path RegistryFile() {
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    std::filesystem::path folder = dataHome == nullptr ? "" : dataHome;
    if (!folder.is_absolute()) {
        const char* home = std::getenv("HOME");
        folder = std::filesystem::path(home == nullptr ? "" : home) / ".local" / "share";
    }
    return folder / "generalutilities" / "registry.reg";
}

ExitCode Register(CommandContext& context) {
    const std::string file = RegistryFile().string();
    SetErrorInfo(0, nullptr);
    Check(DllRegisterServer(), "registering the classes in " + file);
    context.console.WriteLine("Registered the classes and the type library in " + file);
    return ExitCode::Done;
}

ExitCode Unregister(CommandContext& context) {
    const std::string file = RegistryFile().string();
    SetErrorInfo(0, nullptr);
    Check(DllUnregisterServer(), "removing the classes from " + file);
    context.console.WriteLine("Removed the classes and the type library from " + file);
    return ExitCode::Done;
}

}  // namespace

void AddRegisterCommands(CLI::App& parent, CommandContext& context) {
    CLI::App* add = parent.add_subcommand(
        "register", "Enter the classes in the registry, so that other programs find them by name");
    add->footer(
        "The registry is the text file generalutilities/registry.reg under $XDG_DATA_HOME (by\n"
        "default ~/.local/share). It names this library file by its path: register again after\n"
        "moving it.");
    context.Runs(add, [&context] { return Register(context); });

    CLI::App* remove = parent.add_subcommand("unregister", "Remove the classes from the registry");
    context.Runs(remove, [&context] { return Unregister(context); });
}

}  // namespace generalutilities::cli
