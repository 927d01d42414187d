// Numbers for addresses, for interfaces that pass an address as a 32-bit `long`.
//
// A slot's number is its index plus one. Freed numbers are used again, oldest first, so that a
// number that outlives its address is not soon taken for another's.

#include <generalutilities/automation/functions.h>

#include <deque>
#include <limits>
#include <mutex>
#include <vector>

namespace generalutilities {

namespace {

constexpr std::size_t MaxHandles = std::numeric_limits<std::int32_t>::max();

struct HandleTable {
    std::mutex mutex;
    std::vector<void*> slots;
    std::deque<std::int32_t> freed;
};

HandleTable& Table() {
    static HandleTable table;
    return table;
}

}  // namespace

extern "C" {

std::int32_t HandleFromPointer(void* pointer) noexcept {
    if (pointer == nullptr) {
        return 0;
    }
    try {
        HandleTable& table = Table();
        const std::lock_guard lock(table.mutex);
        if (!table.freed.empty()) {
            const std::int32_t handle = table.freed.front();
            table.freed.pop_front();
            table.slots[static_cast<std::size_t>(handle) - 1] = pointer;
            return handle;
        }
        if (table.slots.size() == MaxHandles) {
            return 0;
        }
        table.slots.push_back(pointer);
        return static_cast<std::int32_t>(table.slots.size());
    } catch (...) {
        return 0;
    }
}

void* PointerFromHandle(std::int32_t handle) noexcept {
    HandleTable& table = Table();
    const std::lock_guard lock(table.mutex);
    const auto index = static_cast<std::size_t>(handle) - 1;
    return handle > 0 && index < table.slots.size() ? table.slots[index] : nullptr;
}

void ReleaseHandle(std::int32_t handle) noexcept {
    HandleTable& table = Table();
    const std::lock_guard lock(table.mutex);
    const auto index = static_cast<std::size_t>(handle) - 1;
    if (handle > 0 && index < table.slots.size() && table.slots[index] != nullptr) {
        table.slots[index] = nullptr;
        try {
            table.freed.push_back(handle);
        } catch (...) {  // the number is then not used again, which harms nobody
        }
    }
}

}  // extern "C"
}  // namespace generalutilities
