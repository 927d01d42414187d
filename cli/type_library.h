#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The library's own description of itself, read from its type information into plain values.
/// Nothing about the classes is known here beforehand.
namespace generalutilities::cli {

struct ArgumentDescription {
    std::string name;
    std::string type;  ///< such as "BSTR", "long*" or the name of an enumeration
    bool in = false;
    bool out = false;
    bool result = false;  ///< the value that a late-bound call gives back
    bool optional = false;
    std::string defaultValue;  ///< empty without a declared default; texts stand in quotes
};

struct MethodDescription {
    std::int32_t id = 0;  ///< the dispatch identifier
    std::string name;
    std::string kind;  ///< "method", "get", "put" or "putref"
    std::string help;
    std::vector<ArgumentDescription> arguments;
};

struct InterfaceDescription {
    std::string name;
    std::string iid;
    std::string help;
    bool dual = false;
    std::vector<MethodDescription> methods;
};

struct ImplementedInterface {
    std::string name;
    bool isDefault = false;
    bool isSource = false;  ///< the class calls it: its events
};

struct ClassDescription {
    std::string name;
    std::string clsid;
    std::string progId;
    std::string help;
    std::vector<ImplementedInterface> interfaces;
};

struct ConstantDescription {
    std::string name;
    std::string value;
};

/// An enumeration with its constants, a record with its fields (a field's "value" is its type), or
/// an alias with the one type that it stands for.
struct TypeDescription {
    std::string kind;  ///< "enum", "record" or "alias"
    std::string name;
    std::string help;
    std::vector<ConstantDescription> members;
};

struct LibraryDescription {
    std::string name;
    std::string libid;
    std::string version;
    std::string help;
    std::string path;  ///< the module it was read from
    std::vector<ClassDescription> classes;
    std::vector<InterfaceDescription> interfaces;
    std::vector<TypeDescription> types;
};

/// Reads the type library of the library that this program runs with.
LibraryDescription ReadTypeLibrary();

}  // namespace generalutilities::cli
