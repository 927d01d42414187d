// Quicksort down to partitions of 16, a heap sort for a partition that has used up its budget, and
// one insertion sort over everything at the end. The budget is twice the number of elements, not
// twice its logarithm, so the heap sort is met on hostile orders alone.
//
// The order in which elements are compared is fixed: clients that record or number the calls of
// their function depend on it. Two loops of the algorithm need no bound as long as the function is
// an ordering; they have one here, since it costs little and keeps a broken function inside the
// array.

#include <generalutilities/collections/sort.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

namespace generalutilities {
namespace {

constexpr std::size_t SmallPartition = 16;

/// How elements are moved: by a size that the compiler knows, or by one that the caller gave.
template <std::size_t Bytes>
struct FixedSize {
    explicit FixedSize(std::size_t) {}
    static constexpr std::size_t Get() { return Bytes; }
};

struct AnySize {
    explicit AnySize(std::size_t elementSize) : bytes(elementSize) {}
    std::size_t Get() const { return bytes; }
    std::size_t bytes;
};

template <class Size>
class IntroSortEngine {
  public:
    IntroSortEngine(void* elements, std::size_t elementSize, CompareElements function)
        : size(elementSize),
          base(static_cast<std::byte*>(elements)),
          compare(function),
          buffers(new Chunk[3 * ChunksOfElement()]),
          pivot(buffers.get()),
          held(pivot + ChunksOfElement()),
          swapped(held + ChunksOfElement()) {
        waiting.reserve(64);
    }

    void Sort(std::size_t count) {
        SortPartitions({0, count, 2 * count});
        if (count > SmallPartition) {
            InsertionSort(0, SmallPartition);
            for (std::size_t position = SmallPartition; position < count; ++position) {
                Move(held, At(position));
                InsertBackwards(0, position);
            }
        } else {
            InsertionSort(0, count);
        }
    }

  private:
    /// A partition that is still to be sorted: positions from `first` up to `last`.
    struct Partition {
        std::size_t first;
        std::size_t last;
        std::size_t budget;
    };

    /// The buffers are made of these, so that what lies in them is aligned for any element.
    struct alignas(16) Chunk {
        std::byte bytes[16];
    };

    std::size_t ChunksOfElement() const { return (size.Get() + sizeof(Chunk) - 1) / sizeof(Chunk); }
    std::byte* At(std::size_t position) const { return base + position * size.Get(); }
    void Move(void* destination, const void* source) const {
        std::memcpy(destination, source, size.Get());
    }
    bool Less(const void* left, const void* right) const { return compare(left, right) < 0; }

    /// The right part of each partition is sorted before its left part. The left parts wait in a
    /// list of our own, since there may be as many as there are elements.
    void SortPartitions(Partition current) {
        for (;;) {
            while (current.last - current.first > SmallPartition) {
                if (current.budget == 0) {
                    HeapSort(current.first, current.last);
                    break;
                }
                --current.budget;
                const std::size_t cut = Split(current.first, current.last);
                waiting.push_back({current.first, cut, current.budget});
                current.first = cut;
            }
            if (waiting.empty()) {
                return;
            }
            current = waiting.back();
            waiting.pop_back();
        }
    }

    const std::byte* Median(const std::byte* a, const std::byte* b, const std::byte* c) const {
        if (Less(a, b)) {
            return Less(b, c) ? b : Less(a, c) ? c : a;
        }
        return Less(a, c) ? a : Less(b, c) ? c : b;
    }

    /// Parts [first, last) around the median of three elements; where the right part begins.
    std::size_t Split(std::size_t first, std::size_t last) {
        Move(pivot, Median(At(first), At(first + (last - first) / 2), At(last - 1)));
        std::size_t i = first;
        std::size_t j = last;
        for (;;) {
            while (i < last && Less(At(i), pivot)) {
                ++i;
            }
            --j;
            while (i < j && Less(pivot, At(j))) {
                --j;
            }
            if (i >= j) {
                return i;
            }
            Move(swapped, At(i));
            Move(At(i), At(j));
            Move(At(j), swapped);
            ++i;
        }
    }

    /// Stores the held element at `position` or, behind the last element that is not greater,
    /// further down.
    void InsertBackwards(std::size_t first, std::size_t position) {
        while (position > first && Less(held, At(position - 1))) {
            Move(At(position), At(position - 1));
            --position;
        }
        Move(At(position), held);
    }

    void InsertionSort(std::size_t first, std::size_t last) {
        for (std::size_t position = first + 1; position < last; ++position) {
            Move(held, At(position));
            if (Less(held, At(first))) {
                std::memmove(At(first + 1), At(first), (position - first) * size.Get());
                Move(At(first), held);
            } else {
                InsertBackwards(first, position);
            }
        }
    }

    void HeapSort(std::size_t first, std::size_t last) {
        const std::size_t count = last - first;
        for (std::size_t top = count / 2; top-- > 0;) {
            Move(held, At(first + top));
            SiftDown(first, top, count);
        }
        for (std::size_t end = count - 1; end > 0; --end) {
            Move(held, At(first + end));
            Move(At(first + end), At(first));
            SiftDown(first, 0, end);
        }
    }

    /// Finds the place of the held element below `top` in a heap of `count` elements: greater
    /// children go up to the bottom, and from there the element climbs. Positions count from
    /// `first`.
    void SiftDown(std::size_t first, std::size_t top, std::size_t count) {
        std::size_t hole = top;
        std::size_t child = 2 * hole + 2;
        for (; child < count; child = 2 * hole + 2) {
            if (Less(At(first + child), At(first + child - 1))) {
                --child;
            }
            Move(At(first + hole), At(first + child));
            hole = child;
        }
        if (child == count) {
            Move(At(first + hole), At(first + child - 1));
            hole = child - 1;
        }
        while (hole > top) {
            const std::size_t parent = (hole - 1) / 2;
            if (!Less(At(first + parent), held)) {
                break;
            }
            Move(At(first + hole), At(first + parent));
            hole = parent;
        }
        Move(At(first + hole), held);
    }

    Size size;
    std::byte* base;
    CompareElements compare;
    std::unique_ptr<Chunk[]> buffers;
    Chunk* pivot;
    Chunk* held;  ///< the element that is being inserted or sifted
    Chunk* swapped;
    std::vector<Partition> waiting;
};

template <class Size>
void SortWith(void* elements, std::size_t elementSize, std::size_t count, CompareElements compare) {
    IntroSortEngine<Size>(elements, elementSize, compare).Sort(count);
}

}  // namespace

void SortElements(void* elements, std::size_t elementSize, std::size_t count,
                  CompareElements compare) {
    if (count == 0 || elementSize == 0) {
        return;
    }
    if (count > std::numeric_limits<std::size_t>::max() / 2 / elementSize) {
        throw std::length_error("an array of this size cannot exist");
    }
    switch (elementSize) {
        case 4:
            return SortWith<FixedSize<4>>(elements, elementSize, count, compare);
        case 8:
            return SortWith<FixedSize<8>>(elements, elementSize, count, compare);
        case 16:
            return SortWith<FixedSize<16>>(elements, elementSize, count, compare);
        default:
            return SortWith<AnySize>(elements, elementSize, count, compare);
    }
}

}  // namespace generalutilities
