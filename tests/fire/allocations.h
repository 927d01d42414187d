#pragma once

/// Every allocation of this program, counted, and failing where a test says so: the operators
/// `new`, `malloc` and its kin as our own objects call them (`--wrap` at the link), and SQLite's
/// allocator.
namespace generalutilities::fire {

/// To be called before SQLite is used.
void InstallFailingAllocator();

/// Lets the allocation number `at`, counted from 1, of this thread fail, or all from that one on.
void FailAllocation(long at, bool fromThenOn);
/// Ends that; true if an allocation failed.
bool AllowAllocations();

/// How many blocks that were allocated here are not free yet.
long LiveBlocks();

}  // namespace generalutilities::fire
