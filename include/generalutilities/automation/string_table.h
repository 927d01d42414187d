#pragma once

#include <cstdint>

/// Texts by number, as a module offers them to LoadUnicodeResString. A module is a shared library
/// or the program itself; it offers its texts by exporting one constant:
///
///     extern "C" __attribute__((visibility("default")))
///     const generalutilities::StringTable GeneralUtilitiesStringTable = {entries, count};
///
/// and a caller names the module by HandleFromPointer(dlopen(...)). The table is read during the
/// call only; it has to live as long as the module is loaded.
namespace generalutilities {

/// One text.
struct StringTableEntry {
    std::int32_t id;       ///< 0 to 65535; the order of entries is free
    const char16_t* text;  ///< ends with a zero unit; null counts as empty
};

/// All texts of a module.
struct StringTable {
    const StringTableEntry* entries;
    std::uint32_t count;
};

}  // namespace generalutilities
