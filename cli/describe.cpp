#include "application.h"
#include "command.h"

#include <iostream>
#include <nlohmann/json.hpp>

/// Prints all commands with their options and arguments as JSON, for what is made from them while
/// building: the manual page and the completions of shells. It is not installed.
namespace generalutilities::cli {
namespace {

using Json = nlohmann::ordered_json;

Json DescribeOption(const CLI::Option& option) {
    Json names = Json::array();
    for (const std::string& name : option.get_snames()) {
        names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    if (names.empty()) {
        names.push_back(option.get_single_name());
    }
    return {{"names", names},
            {"positional", option.get_positional()},
            {"required", option.get_required()},
            {"many", option.get_expected_max() > 1},
            {"value", option.get_type_size() == 0 ? "" : option.get_type_name()},
            {"default", option.get_default_str()},
            {"words", option.get_description()}};
}

Json DescribeCommand(const CLI::App& command) {
    Json options = Json::array(), commands = Json::array();
    for (const CLI::Option* const option : command.get_options()) {
        options.push_back(DescribeOption(*option));
    }
    for (const CLI::App* const below : command.get_subcommands({})) {
        commands.push_back(DescribeCommand(*below));
    }
    return {{"name", command.get_name()},
            {"words", command.get_description()},
            {"footer", command.get_footer()},
            {"options", options},
            {"commands", commands}};
}

}  // namespace
}  // namespace generalutilities::cli

int main() {
    using namespace generalutilities::cli;
    Console console;
    CommandContext context{console, {}};
    CLI::App app;
    AddEverything(app, context);
    std::cout << DescribeCommand(app).dump(1) << '\n';
}
