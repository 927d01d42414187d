#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace generalutilities {

/// A set of integers in ascending order: blocks of some hundred values one behind the other, so
/// that a walk goes straight through memory. Finding a value costs two binary searches, changing
/// the set moves half a block besides, and finding the n-th value first counts the blocks anew if
/// the set has changed.
class OrderedLongs {
    struct Block {
        std::vector<std::int32_t> values;  ///< never empty
        std::int32_t last = 0;             ///< the greatest of them
        std::size_t start = 0;             ///< how many values stand in the blocks before
    };

  public:
    /// A place among the values, good until the set changes.
    class Iterator {
      public:
        std::int32_t operator*() const { return block->values[place]; }
        Iterator& operator++() {
            if (++place == block->values.size()) {
                ++block;
                place = 0;
            }
            return *this;
        }
        bool operator==(const Iterator&) const = default;

      private:
        friend class OrderedLongs;
        Iterator(const Block* inBlock, std::size_t atPlace) : block(inBlock), place(atPlace) {}

        const Block* block;
        std::size_t place;
    };

    std::size_t Count() const { return count; }
    Iterator begin() const { return {blocks.data(), 0}; }
    Iterator end() const { return {blocks.data() + blocks.size(), 0}; }

    /// The first value that is not less.
    Iterator LowerBound(std::int32_t value) const;
    /// The value before which `position` others stand, or the end.
    Iterator At(std::size_t position);

    /// A value that is there already changes nothing, nor does a lack of memory (std::bad_alloc).
    void Insert(std::int32_t value);
    /// A value that is not there changes nothing.
    void Erase(std::int32_t value) noexcept;

  private:
    static constexpr std::size_t LargestBlock = 512;

    std::vector<Block> blocks;
    std::size_t count = 0;
    bool counted = true;  ///< the starts of the blocks are right
};

}  // namespace generalutilities
