#pragma once

#include <generalutilities/automation/values.h>

#include <cstdint>

/// What makes two values the same key of a dictionary. No value here is by reference.
namespace generalutilities {

/// Whether keys of this type lie in the hash table: 32-bit integers, strings, yes/no values.
bool IsTableKey(VARTYPE type);

/// The hash of a key of the table. That of a string regards case and stops at U+0000.
std::uint32_t KeyHash(const VARIANT& key);

/// The order of the keys in one bucket of the table.
bool KeyLess(const VARIANT& left, const VARIANT& right);

/// Whether two keys of the table, neither of them a yes/no value, are the same.
bool SameTableKey(const VARIANT& left, const VARIANT& right);

/// The same for keys of all other types: equal type and value.
std::uint32_t OtherKeyHash(const VARIANT& key);
bool SameOtherKey(const VARIANT& left, const VARIANT& right);

}  // namespace generalutilities
