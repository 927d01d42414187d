#pragma once

#include <cstddef>
#include <cstdint>

namespace generalutilities {

/// Negative when the element at `left` sorts before that at `right`; zero and positive results are
/// not told apart. The elements lie in the array or in a buffer of the sort, aligned as in an array
/// that starts at a multiple of 16.
using CompareElements = std::int32_t (*)(const void* left, const void* right);

/// Sorts `count` elements of `elementSize` bytes each, in place, with the caller's function. An
/// introspective quicksort whose sequence of comparisons is part of its contract; not stable.
/// Elements are moved as bytes. A function that is no strict weak ordering costs a wrong order and
/// nothing else. Throws std::bad_alloc, which leaves all elements in the array in some order, and
/// std::length_error for sizes whose product no address space holds.
void SortElements(void* elements, std::size_t elementSize, std::size_t count,
                  CompareElements compare);

}  // namespace generalutilities
