#pragma once

#include <cstdint>

/// SQLite's system calls on their way to the disk: counted, and failing where a test says so.
///
/// `Install` puts a file system of its own in front of SQLite's default one, once for the process.
/// It passes everything on until a plan is armed. `sqlite3_open_v2(..., "unix")` goes around it.
namespace generalutilities::fire {

/// Kinds of calls, to be added up.
enum Call : unsigned {
    OpenCall = 1,
    ReadCall = 2,
    WriteCall = 4,
    SyncCall = 8,
    TruncateCall = 16,
    DeleteCall = 32,
    ChangingCalls = WriteCall | SyncCall | TruncateCall | DeleteCall,
    EveryCall = OpenCall | ReadCall | ChangingCalls,
};

enum class Fault {
    None,
    Error,        ///< an error of the device
    DiskFull,     ///< no room
    Die,          ///< the process ends at once, before the call is made, as by kill -9
    DieHalfDone,  ///< ... and a write is made to its half
};

struct FaultPlan {
    unsigned calls = EveryCall;
    Fault fault = Fault::None;
    long at = 0;  ///< which of these calls it meets, counted from 1
    bool fromThenOn = false;
};

/// The exit code of a process that a plan ended.
inline constexpr int DiedByPlan = 77;

void InstallFaultyVfs();
void Arm(const FaultPlan& plan);
/// Ends the plan; true if a call met it.
bool Disarm();

}  // namespace generalutilities::fire
