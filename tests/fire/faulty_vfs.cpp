#include "faulty_vfs.h"

#include <cstdlib>
#include <new>
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

struct File {
    sqlite3_file base;
    sqlite3_file* inner;  ///< lies behind this
};

sqlite3_file* Inner(sqlite3_file* file) {
    return reinterpret_cast<File*>(file)->inner;
}

int Close(sqlite3_file* file) {
    return Inner(file)->pMethods->xClose(Inner(file));
}
int Read(sqlite3_file* file, void* buffer, int count, sqlite3_int64 offset) {
    return Meets(ReadCall) ? SQLITE_IOERR_READ
                           : Inner(file)->pMethods->xRead(Inner(file), buffer, count, offset);
}
int Write(sqlite3_file* file, const void* buffer, int count, sqlite3_int64 offset) {
    if (Meets(WriteCall)) {
        if (current.fault == Fault::DieHalfDone) {
            Inner(file)->pMethods->xWrite(Inner(file), buffer, count / 2, offset);
            _exit(DiedByPlan);
        }
        return Status(SQLITE_IOERR_WRITE);
    }
    return Inner(file)->pMethods->xWrite(Inner(file), buffer, count, offset);
}
int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    return Meets(TruncateCall) ? SQLITE_IOERR_TRUNCATE
                               : Inner(file)->pMethods->xTruncate(Inner(file), size);
}
/// Nothing here can cut the power, so that waiting for the disk would prove nothing: the call is
/// counted and left out.
int Sync(sqlite3_file*, int) {
    return Meets(SyncCall) ? Status(SQLITE_IOERR_FSYNC) : SQLITE_OK;
}
int FileSize(sqlite3_file* file, sqlite3_int64* size) {
    return Inner(file)->pMethods->xFileSize(Inner(file), size);
}
int Lock(sqlite3_file* file, int level) {
    return Inner(file)->pMethods->xLock(Inner(file), level);
}
int Unlock(sqlite3_file* file, int level) {
    return Inner(file)->pMethods->xUnlock(Inner(file), level);
}
int CheckReservedLock(sqlite3_file* file, int* result) {
    return Inner(file)->pMethods->xCheckReservedLock(Inner(file), result);
}
int FileControl(sqlite3_file* file, int operation, void* argument) {
    return Inner(file)->pMethods->xFileControl(Inner(file), operation, argument);
}
int SectorSize(sqlite3_file* file) {
    return Inner(file)->pMethods->xSectorSize(Inner(file));
}
int DeviceCharacteristics(sqlite3_file* file) {
    return Inner(file)->pMethods->xDeviceCharacteristics(Inner(file));
}

const sqlite3_io_methods Methods = {1,
                                    Close,
                                    Read,
                                    Write,
                                    Truncate,
                                    Sync,
                                    FileSize,
                                    Lock,
                                    Unlock,
                                    CheckReservedLock,
                                    FileControl,
                                    SectorSize,
                                    DeviceCharacteristics,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr};

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* opened) {
    file->pMethods = nullptr;
    if (Meets(OpenCall)) {
        return SQLITE_CANTOPEN;
    }
    auto* const wrapped = reinterpret_cast<File*>(file);
    wrapped->inner = reinterpret_cast<sqlite3_file*>(wrapped + 1);
    const int status = real->xOpen(real, name, wrapped->inner, flags, opened);
    if (wrapped->inner->pMethods != nullptr) {
        file->pMethods = &Methods;
    }
    return status;
}
int Delete(sqlite3_vfs*, const char* name, int /*sync*/) {
    return Meets(DeleteCall) ? SQLITE_IOERR_DELETE : real->xDelete(real, name, 0);
}
int Access(sqlite3_vfs*, const char* name, int flags, int* result) {
    return real->xAccess(real, name, flags, result);
}
int FullPathname(sqlite3_vfs*, const char* name, int size, char* out) {
    return real->xFullPathname(real, name, size, out);
}
int Randomness(sqlite3_vfs*, int count, char* out) {
    return real->xRandomness(real, count, out);
}
int Sleep(sqlite3_vfs*, int microseconds) {
    return real->xSleep(real, microseconds);
}
int CurrentTime(sqlite3_vfs*, double* time) {
    return real->xCurrentTime(real, time);
}
int GetLastError(sqlite3_vfs*, int size, char* text) {
    return real->xGetLastError(real, size, text);
}

}  // namespace

void InstallFaultyVfs() {
    static sqlite3_vfs faulty;
    if (real != nullptr) {
        return;
    }
    real = sqlite3_vfs_find(nullptr);
    faulty.iVersion = 1;
    faulty.szOsFile = static_cast<int>(sizeof(File)) + real->szOsFile;
    faulty.mxPathname = real->mxPathname;
    faulty.zName = "faulty";
    faulty.xOpen = Open;
    faulty.xDelete = Delete;
    faulty.xAccess = Access;
    faulty.xFullPathname = FullPathname;
    faulty.xRandomness = Randomness;
    faulty.xSleep = Sleep;
    faulty.xCurrentTime = CurrentTime;
    faulty.xGetLastError = GetLastError;
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
