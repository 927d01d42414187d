#include "platform/string_tables/string_tables.h"

#include <array>
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

/// An address in each of some loaded objects.
struct ObjectAddresses {
    std::size_t skipped;  ///< objects that the walk leaves out still
    std::size_t count = 0;
    std::array<const void*, 64> addresses = {};
};

int AddObject(dl_phdr_info* info, std::size_t, void* data) {
    auto& objects = *static_cast<ObjectAddresses*>(data);
    if (objects.skipped > 0) {
        --objects.skipped;
        return 0;
    }
    const void*& address = objects.addresses[objects.count++];
    for (ElfW(Half) i = 0; i < info->dlpi_phnum && address == nullptr; ++i) {
        if (info->dlpi_phdr[i].p_type == PT_LOAD) {
            address = reinterpret_cast<const void*>(info->dlpi_addr + info->dlpi_phdr[i].p_vaddr);
        }
    }
    return objects.count == objects.addresses.size() ? 1 : 0;
}

/// What dlopen gives for a module is the address of its entry in the list of the dynamic linker.
/// Each loaded object's entry is asked for when the walk over the objects is over: the walk holds
/// a lock that a thread in dlopen waits for while it holds the one of asking.
bool IsModule(const void* module) {
    for (std::size_t seen = 0;;) {
        ObjectAddresses objects{seen};
        dl_iterate_phdr(AddObject, &objects);
        for (std::size_t i = 0; i < objects.count; ++i) {
            Dl_info symbol;
            void* entry = nullptr;
            if (dladdr1(objects.addresses[i], &symbol, &entry, RTLD_DL_LINKMAP) != 0 &&
                entry == module) {
                return true;
            }
        }
        if (objects.count < objects.addresses.size()) {
            return false;
        }
        seen += objects.count;
    }
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
    if (!IsModule(module)) {
        return std::nullopt;
    }
    const auto* table = static_cast<const StringTable*>(
        dlsym(const_cast<void*>(module), "GeneralUtilitiesStringTable"));
    return table == nullptr ? std::nullopt : FindString(*table, id);
}

}  // namespace generalutilities
