#pragma once

#include <generalutilities/automation/values.h>

#include <cstdint>

/// What makes two values the same key of a dictionary. No value here is by reference.
namespace generalutilities {

/// Whether two keys are the same, and a hash for looking for them. Integers of 32 bits are the same
/// whatever their type, other keys by equal type and value. Yes/no keys have a rule of their own
/// besides; see DictionaryTable.
bool SameKey(const VARIANT& left, const VARIANT& right);
std::uint32_t IdentityHash(const VARIANT& key);

/// Whether keys of this type lie in buckets: 32-bit integers, strings, yes/no values.
bool IsBucketKey(VARTYPE type);

/// The hash that chooses the bucket. That of a string regards case and stops at U+0000.
std::uint32_t BucketHash(const VARIANT& key);

/// The order of the keys in one bucket.
bool KeyLess(const VARIANT& left, const VARIANT& right);

}  // namespace generalutilities
