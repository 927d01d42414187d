#include "allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <sqlite3.h>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
}

namespace generalutilities::fire {

namespace {

thread_local long countdown = 0;  // to the failing allocation; 0: none
thread_local bool onwards = false;
thread_local bool failed = false;
std::atomic<long> liveBlocks = 0;

bool Fails() {
    if (countdown == 0) {
        return false;
    }
    if (countdown > 1) {
        --countdown;
        return false;
    }
    countdown = onwards ? 1 : 0;
    failed = true;
    return true;
}

void* Counted(void* block) {
    liveBlocks += block != nullptr ? 1 : 0;
    return block;
}

sqlite3_mem_methods sqliteAllocator;

void* SqliteMalloc(int size) {
    return Fails() ? nullptr : sqliteAllocator.xMalloc(size);
}
void* SqliteRealloc(void* block, int size) {
    return Fails() ? nullptr : sqliteAllocator.xRealloc(block, size);
}

}  // namespace

void InstallFailingAllocator() {
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &sqliteAllocator);
    sqlite3_mem_methods failing = sqliteAllocator;
    failing.xMalloc = SqliteMalloc;
    failing.xRealloc = SqliteRealloc;
    const int configured = sqlite3_config(SQLITE_CONFIG_MALLOC, &failing);
    // Without its reserve of small blocks every one of SQLite's requests can fail.
    if (configured != SQLITE_OK || sqlite3_config(SQLITE_CONFIG_LOOKASIDE, 0, 0) != SQLITE_OK) {
        std::abort();
    }
}

void FailAllocation(long at, bool fromThenOn) {
    failed = false;
    onwards = fromThenOn;
    countdown = at;
}

bool AllowAllocations() {
    countdown = 0;
    return failed;
}

long LiveBlocks() {
    return liveBlocks;
}

}  // namespace generalutilities::fire

using generalutilities::fire::Counted;
using generalutilities::fire::Fails;
using generalutilities::fire::liveBlocks;

extern "C" {

void* __wrap_malloc(std::size_t size) {
    return Fails() ? nullptr : Counted(__real_malloc(size));
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return Fails() ? nullptr : Counted(__real_calloc(count, size));
}
void* __wrap_realloc(void* block, std::size_t size) {
    if (Fails()) {
        return nullptr;
    }
    void* const moved = __real_realloc(block, size);
    liveBlocks += block == nullptr && moved != nullptr ? 1 : 0;
    return moved;
}
void __wrap_free(void* block) {
    liveBlocks -= block != nullptr ? 1 : 0;
    __real_free(block);
}

}  // extern "C"

// The forms for arrays call these.
void* operator new(std::size_t size) {
    void* const block = __wrap_malloc(size);
    return block != nullptr ? block : throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return __wrap_malloc(size);
}
void operator delete(void* block) noexcept {
    __wrap_free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    __wrap_free(block);
}
