#include "faulty_vfs.h"

#include <cstdlib>
#include <sqlite3.h>
#include <unistd.h>

namespace generalutilities::fire {

namespace {

FaultPlan current = {.calls = 0};
long seen = 0;
bool met = false;

/// Counts a call; true if it is to fail.
bool Meets(Call call) {
    if ((current.calls & call) == 0) {
        return false;
    }
    ++seen;
    const bool hit = current.fault != Fault::None &&
                     (seen == current.at || (current.fromThenOn && seen > current.at));
    met = met || hit;
    if (hit && (current.fault == Fault::Die ||
                (current.fault == Fault::DieHalfDone && call != WriteCall))) {
        _exit(DiedByPlan);
    }
    return hit;
}

int Status(int error) {
    return current.fault == Fault::DiskFull ? SQLITE_FULL : error;
}

sqlite3_vfs* real = nullptr;

/// Lies behind SQLite's own part of an open file: its methods, and those of them that count.
struct Wrapped {
    const sqlite3_io_methods* inner;
    sqlite3_io_methods methods;
};

Wrapped& WrappedOf(sqlite3_file* file) {
    return *reinterpret_cast<Wrapped*>(reinterpret_cast<char*>(file) + real->szOsFile);
}

int Read(sqlite3_file* file, void* buffer, int count, sqlite3_int64 offset) {
    return Meets(ReadCall) ? SQLITE_IOERR_READ
                           : WrappedOf(file).inner->xRead(file, buffer, count, offset);
}
int Write(sqlite3_file* file, const void* buffer, int count, sqlite3_int64 offset) {
    const auto write = WrappedOf(file).inner->xWrite;
    if (!Meets(WriteCall)) {
        return write(file, buffer, count, offset);
    }
    if (current.fault == Fault::DieHalfDone) {
        write(file, buffer, count / 2, offset);
        _exit(DiedByPlan);
    }
    return Status(SQLITE_IOERR_WRITE);
}
int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    return Meets(TruncateCall) ? SQLITE_IOERR_TRUNCATE
                               : WrappedOf(file).inner->xTruncate(file, size);
}
/// Nothing here can cut the power, so that waiting for the disk would prove nothing: the call is
/// counted and left out.
int Sync(sqlite3_file*, int) {
    return Meets(SyncCall) ? Status(SQLITE_IOERR_FSYNC) : SQLITE_OK;
}

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* opened) {
    file->pMethods = nullptr;
    if (Meets(OpenCall)) {
        return SQLITE_CANTOPEN;
    }
    const int status = real->xOpen(real, name, file, flags, opened);
    if (file->pMethods != nullptr) {
        Wrapped& wrapped = WrappedOf(file);
        wrapped = {file->pMethods, *file->pMethods};
        wrapped.methods.xRead = Read;
        wrapped.methods.xWrite = Write;
        wrapped.methods.xTruncate = Truncate;
        wrapped.methods.xSync = Sync;
        file->pMethods = &wrapped.methods;
    }
    return status;
}
int Delete(sqlite3_vfs*, const char* name, int /*sync*/) {
    return Meets(DeleteCall) ? SQLITE_IOERR_DELETE : real->xDelete(real, name, 0);
}

}  // namespace

void InstallFaultyVfs() {
    static sqlite3_vfs faulty;
    if (real != nullptr) {
        return;
    }
    real = sqlite3_vfs_find(nullptr);
    faulty = *real;
    faulty.szOsFile += static_cast<int>(sizeof(Wrapped));
    faulty.zName = "faulty";
    faulty.xOpen = Open;
    faulty.xDelete = Delete;
    if (sqlite3_vfs_register(&faulty, 1) != SQLITE_OK) {
        std::abort();
    }
}

void Arm(const FaultPlan& plan) {
    current = plan;
    seen = 0;
    met = false;
}

bool Disarm() {
    current.calls = 0;
    return met;
}

}  // namespace generalutilities::fire
