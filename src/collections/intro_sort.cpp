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
    static void Copy(std::byte* destination, const std::byte* source) {
        std::memcpy(destination, source, Bytes);
    }
};

struct AnySize {
    explicit AnySize(std::size_t elementSize) : bytes(elementSize) {}
    std::size_t Get() const { return bytes; }
    /// Sizes are small mostly, for which a loop here is faster than a call.
    void Copy(std::byte* destination, const std::byte* source) const {
        std::size_t done = 0;
        for (; done + 8 <= bytes; done += 8) {
            FixedSize<8>::Copy(destination + done, source + done);
        }
        for (; done < bytes; ++done) {
            destination[done] = source[done];
        }
    }
    std::size_t bytes;
};

template <class Size>
class IntroSortEngine {
  public:
    IntroSortEngine(void* elements, std::size_t elementSize, CompareElements function)
        : size(elementSize),
          base(static_cast<std::byte*>(elements)),
          compare(function),
          buffers(new Chunk[2 * ChunksOfElement()]),
          pivot(buffers[0].bytes),
          held(buffers[ChunksOfElement()].bytes) {
        waiting.reserve(64);
    }

    void Sort(std::size_t count) {
        SortPartitions({0, count, 2 * count});
        if (count > SmallPartition) {
            InsertionSort(0, SmallPartition);
            for (std::size_t position = SmallPartition; position < count; ++position) {
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
        size.Copy(pivot, Median(At(first), At(first + (last - first) / 2), At(last - 1)));
        const std::byte* const median = pivot;
        const CompareElements function = compare;
        const std::size_t step = size.Get();
        std::byte* i = At(first);
        std::byte* j = At(last);
        const std::byte* const end = j;
        for (;;) {
            while (i < end && function(i, median) < 0) {
                i += step;
            }
            j -= step;
            while (i < j && function(median, j) < 0) {
                j -= step;
            }
            if (i >= j) {
                // No element is of no size. NOLINTNEXTLINE(clang-analyzer-core.DivideZero)
                return static_cast<std::size_t>(i - base) / step;
            }
            size.Copy(held, i);
            size.Copy(i, j);
            size.Copy(j, held);
            i += step;
        }
    }

    /// Moves an element down in front of those in [first, position) that are greater, as far as
    /// they stand together directly before it.
    void InsertBackwards(std::size_t first, std::size_t position) {
        const CompareElements function = compare;
        const std::size_t step = size.Get();
        const std::byte* const begin = At(first);
        std::byte* const element = held;
        std::byte* place = At(position);
        size.Copy(element, place);
        while (place > begin && function(element, place - step) < 0) {
            size.Copy(place, place - step);
            place -= step;
        }
        size.Copy(place, element);
    }

    void InsertionSort(std::size_t first, std::size_t last) {
        for (std::size_t position = first + 1; position < last; ++position) {
            if (Less(At(position), At(first))) {
                size.Copy(held, At(position));
                std::memmove(At(first + 1), At(first), (position - first) * size.Get());
                size.Copy(At(first), held);
            } else {
                InsertBackwards(first, position);
            }
        }
    }

    void HeapSort(std::size_t first, std::size_t last) {
        const std::size_t count = last - first;
        for (std::size_t top = count / 2; top-- > 0;) {
            size.Copy(held, At(first + top));
            SiftDown(first, top, count);
        }
        for (std::size_t end = count - 1; end > 0; --end) {
            size.Copy(held, At(first + end));
            size.Copy(At(first + end), At(first));
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
            size.Copy(At(first + hole), At(first + child));
            hole = child;
        }
        if (child == count) {
            size.Copy(At(first + hole), At(first + child - 1));
            hole = child - 1;
        }
        while (hole > top) {
            const std::size_t parent = (hole - 1) / 2;
            if (!Less(At(first + parent), held)) {
                break;
            }
            size.Copy(At(first + hole), At(first + parent));
            hole = parent;
        }
        size.Copy(At(first + hole), held);
    }

    Size size;
    std::byte* base;
    CompareElements compare;
    std::unique_ptr<Chunk[]> buffers;
    std::byte* pivot;
    std::byte* held;  ///< the element that is being inserted or sifted
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
