#include "commands/classes_command.h"

#include "component_client.h"
#include "failure.h"
#include "type_library.h"

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

/// `genutil classes`: what can be created and called, as the type information tells it.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct ClassesOptions {
    std::string name;
    bool asJson = false;
};

bool SameName(const std::string& left, const std::string& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
        const auto lower = [](char c) {
            return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        };
        return lower(a) == lower(b);
    });
}

/// Keeps the class, interface or type of this name, and with a class its interfaces. False when the
/// library has nothing of the name.
bool KeepOnly(LibraryDescription& library, const std::string& name) {
    std::erase_if(library.classes, [&](const ClassDescription& one) {
        const bool versionless = one.progId.size() == name.size() + 2 &&
                                 SameName(one.progId.substr(0, name.size()), name);
        return !SameName(one.name, name) && !SameName(one.progId, name) && !versionless;
    });
    const auto implemented = [&](const std::string& interfaceName) {
        return std::any_of(library.classes.begin(), library.classes.end(),
                           [&](const ClassDescription& one) {
                               return std::any_of(one.interfaces.begin(), one.interfaces.end(),
                                                  [&](const ImplementedInterface& implementedOne) {
                                                      return implementedOne.name == interfaceName;
                                                  });
                           });
    };
    std::erase_if(library.interfaces, [&](const InterfaceDescription& one) {
        return !SameName(one.name, name) && !implemented(one.name);
    });
    std::erase_if(library.types,
                  [&](const TypeDescription& one) { return !SameName(one.name, name); });
    return !library.classes.empty() || !library.interfaces.empty() || !library.types.empty();
}

std::string Directions(const ArgumentDescription& argument) {
    std::string text;
    const auto add = [&](bool set, const char* word) {
        if (set) {
            text += text.empty() ? word : std::string(", ") + word;
        }
    };
    add(argument.in, "in");
    add(argument.out, "out");
    add(argument.result, "retval");
    add(argument.optional, "optional");
    add(!argument.defaultValue.empty(), ("default " + argument.defaultValue).c_str());
    return text.empty() ? "" : "[" + text + "] ";
}

void PrintClass(Console& console, const ClassDescription& one) {
    console.WriteLine(console.Paint(Style::Bold, "class " + one.name) + "  " + one.progId + "  " +
                      console.Paint(Style::Dim, one.clsid));
    for (const ImplementedInterface& implemented : one.interfaces) {
        console.WriteLine("  " + implemented.name + (implemented.isSource ? " (events)" : "") +
                          (implemented.isDefault && !implemented.isSource ? " (default)" : ""));
    }
}

void PrintInterface(Console& console, const InterfaceDescription& one) {
    console.WriteLine("");
    console.WriteLine(console.Paint(Style::Bold, "interface " + one.name) + "  " +
                      (one.dual ? "dual" : "dispatch") + "  " + console.Paint(Style::Dim, one.iid));
    for (const MethodDescription& method : one.methods) {
        std::string line = "  [" + std::to_string(method.id) + "] ";
        line += method.kind == "method" ? "" : method.kind + " ";
        line += console.Paint(Style::Cyan, method.name) + "(";
        for (const ArgumentDescription& argument : method.arguments) {
            line += &argument == &method.arguments.front() ? "" : ", ";
            line += Directions(argument) + argument.type + " " + argument.name;
        }
        console.WriteLine(line + ")");
    }
}

void PrintType(Console& console, const TypeDescription& one) {
    console.WriteLine("");
    console.WriteLine(console.Paint(Style::Bold, one.kind + " " + one.name));
    for (const ConstantDescription& member : one.members) {
        console.WriteLine("  " + member.name +
                          (one.kind == "enum"     ? " = " + member.value
                           : one.kind == "record" ? ": " + member.value
                                                  : ""));
    }
}

json ToJson(const MethodDescription& method) {
    json arguments = json::array();
    for (const ArgumentDescription& argument : method.arguments) {
        json one{{"name", argument.name},     {"type", argument.type},
                 {"in", argument.in},         {"out", argument.out},
                 {"retval", argument.result}, {"optional", argument.optional}};
        if (!argument.defaultValue.empty()) {
            one["default"] = argument.defaultValue;
        }
        arguments.push_back(std::move(one));
    }
    return {{"id", method.id},
            {"name", method.name},
            {"kind", method.kind},
            {"help", method.help},
            {"arguments", std::move(arguments)}};
}

json ToJson(const LibraryDescription& library) {
    json document{{"format", "genutil.classes/1"},
                  {"library",
                   {{"name", library.name},
                    {"id", library.libid},
                    {"version", library.version},
                    {"help", library.help},
                    {"file", library.path}}},
                  {"classes", json::array()},
                  {"interfaces", json::array()},
                  {"types", json::array()}};
    for (const ClassDescription& one : library.classes) {
        json interfaces = json::array();
        for (const ImplementedInterface& implemented : one.interfaces) {
            interfaces.push_back({{"name", implemented.name},
                                  {"default", implemented.isDefault},
                                  {"source", implemented.isSource}});
        }
        document["classes"].push_back({{"name", one.name},
                                       {"progId", one.progId},
                                       {"id", one.clsid},
                                       {"help", one.help},
                                       {"interfaces", std::move(interfaces)}});
    }
    for (const InterfaceDescription& one : library.interfaces) {
        json methods = json::array();
        for (const MethodDescription& method : one.methods) {
            methods.push_back(ToJson(method));
        }
        document["interfaces"].push_back({{"name", one.name},
                                          {"id", one.iid},
                                          {"dual", one.dual},
                                          {"help", one.help},
                                          {"methods", std::move(methods)}});
    }
    for (const TypeDescription& one : library.types) {
        json members = json::array();
        for (const ConstantDescription& member : one.members) {
            members.push_back({{"name", member.name}, {"value", member.value}});
        }
        document["types"].push_back(
            {{"kind", one.kind}, {"name", one.name}, {"members", std::move(members)}});
    }
    return document;
}

ExitCode ShowClasses(CommandContext& context, const ClassesOptions& options) {
    LibraryDescription library = ReadTypeLibrary();
    if (!options.name.empty() && !KeepOnly(library, options.name)) {
        context.console.Error("the library has no class, interface or type \"" + options.name +
                              "\"; `genutil classes` lists them all");
        return ExitCode::NegativeAnswer;
    }
    if (options.asJson) {
        context.console.WriteLine(ToJson(library).dump(2));
        return ExitCode::Done;
    }
    if (options.name.empty()) {
        context.console.WriteLine(library.name + " " + library.version + "  " + library.help +
                                  "  " + context.console.Paint(Style::Dim, library.libid));
        context.console.WriteLine(library.path + "\n");
    }
    for (const ClassDescription& one : library.classes) {
        PrintClass(context.console, one);
    }
    for (const InterfaceDescription& one : library.interfaces) {
        PrintInterface(context.console, one);
    }
    for (const TypeDescription& one : library.types) {
        PrintType(context.console, one);
    }
    return ExitCode::Done;
}

}  // namespace

void AddClassesCommand(CLI::App& parent, CommandContext& context) {
    auto options = std::make_shared<ClassesOptions>();
    CLI::App* command = parent.add_subcommand(
        "classes", "List classes, interfaces, methods with dispatch identifiers, and types");
    command
        ->add_option("NAME", options->name,
                     "One class, by name or ProgID, with its interfaces; or one interface or type")
        ->type_name("");
    command->add_flag("--json", options->asJson, "One JSON document, \"genutil.classes/1\"");
    command->footer(
        "Examples:\n"
        "  genutil classes\n"
        "  genutil classes ExtViewHelper\n"
        "  genutil classes GeneralUtilities.StringUtils --json");
    context.Runs(command, [&context, options] { return ShowClasses(context, *options); });
}

}  // namespace generalutilities::cli
