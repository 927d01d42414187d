#include "platform/string_tables/string_tables.h"

#include <dlfcn.h>
#include <link.h>

namespace generalutilities {
namespace {

constexpr std::int32_t BlockSize = 16;

/// The 16-bit number of a block; the block of the numbers 0 to 15 is 1.
constexpr std::uint16_t BlockOf(std::int32_t id) {
    return static_cast<std::uint16_t>(id / BlockSize + 1);
}

constexpr std::int32_t PlaceInBlock(std::int32_t id) {
    return id & (BlockSize - 1);
}

/// What dlopen gives for a module is the address of its entry in the list of the dynamic linker.
/// Walking the loaded objects under the linker's own lock tells whether an address is such an
/// entry.
struct ModuleSearch {
    const void* module;
    bool found = false;
};

int CompareModule(dl_phdr_info* info, std::size_t, void* data) {
    auto& search = *static_cast<ModuleSearch*>(data);
    for (ElfW(Half) i = 0; i < info->dlpi_phnum; ++i) {
        if (info->dlpi_phdr[i].p_type == PT_LOAD) {
            Dl_info symbol;
            void* entry = nullptr;
            const auto* address =
                reinterpret_cast<const void*>(info->dlpi_addr + info->dlpi_phdr[i].p_vaddr);
            search.found =
                dladdr1(address, &symbol, &entry, RTLD_DL_LINKMAP) != 0 && entry == search.module;
            return search.found ? 1 : 0;
        }
    }
    return 0;
}

}  // namespace

std::optional<std::u16string_view> FindString(const StringTable& table, std::int32_t id) noexcept {
    bool hasBlock = false;
    for (std::uint32_t i = 0; i < table.count; ++i) {
        const StringTableEntry& entry = table.entries[i];
        if (BlockOf(entry.id) == BlockOf(id)) {
            if (PlaceInBlock(entry.id) == PlaceInBlock(id)) {
                return entry.text == nullptr ? std::u16string_view() : entry.text;
            }
            hasBlock = true;
        }
    }
    return hasBlock ? std::optional(std::u16string_view()) : std::nullopt;
}

std::optional<std::u16string_view> FindModuleString(const void* module, std::int32_t id) noexcept {
    ModuleSearch search{module};
    dl_iterate_phdr(CompareModule, &search);
    if (!search.found) {
        return std::nullopt;
    }
    const auto* table = static_cast<const StringTable*>(
        dlsym(const_cast<void*>(module), "GeneralUtilitiesStringTable"));
    return table == nullptr ? std::nullopt : FindString(*table, id);
}

}  // namespace generalutilities
