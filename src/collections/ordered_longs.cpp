#include "collections/ordered_longs.h"

#include <algorithm>

namespace generalutilities {

OrderedLongs::Iterator OrderedLongs::LowerBound(std::int32_t value) const {
    const auto block =
        std::lower_bound(blocks.begin(), blocks.end(), value,
                         [](const Block& each, std::int32_t v) { return each.last < v; });
    if (block == blocks.end()) {
        return end();
    }
    const auto place = std::lower_bound(block->values.begin(), block->values.end(), value);
    return {&*block, static_cast<std::size_t>(place - block->values.begin())};
}

OrderedLongs::Iterator OrderedLongs::At(std::size_t position) {
    if (position >= count) {
        return end();
    }
    if (!counted) {
        std::size_t start = 0;
        for (Block& block : blocks) {
            block.start = start;
            start += block.values.size();
        }
        counted = true;
    }
    const auto behind =
        std::upper_bound(blocks.begin(), blocks.end(), position,
                         [](std::size_t p, const Block& each) { return p < each.start; });
    const Block& block = *(behind - 1);
    return {&block, position - block.start};
}

void OrderedLongs::Insert(std::int32_t value) {
    Iterator found = LowerBound(value);
    if (found == end()) {
        if (blocks.empty() || blocks.back().values.size() == LargestBlock) {
            blocks.push_back({{value}, value, count});
        } else {
            blocks.back().values.push_back(value);
            blocks.back().last = value;
        }
        ++count;
        return;
    }
    if (*found == value) {
        return;
    }
    auto block = blocks.begin() + (found.block - blocks.data());
    if (block->values.size() == LargestBlock) {
        constexpr std::ptrdiff_t Half = LargestBlock / 2;
        const auto middle = block->values.begin() + Half;
        block = blocks.insert(block, {{block->values.begin(), middle}, middle[-1], 0});
        block[1].values.erase(block[1].values.begin(), block[1].values.begin() + Half);
        if (found.place >= Half) {
            ++block;
            found.place -= Half;
        }
    }
    counted = false;
    block->values.insert(block->values.begin() + static_cast<std::ptrdiff_t>(found.place), value);
    ++count;
}

void OrderedLongs::Erase(std::int32_t value) noexcept {
    const Iterator found = LowerBound(value);
    if (found == end() || *found != value) {
        return;
    }
    const auto block = blocks.begin() + (found.block - blocks.data());
    block->values.erase(block->values.begin() + static_cast<std::ptrdiff_t>(found.place));
    if (block->values.empty()) {
        blocks.erase(block);
    } else {
        block->last = block->values.back();
    }
    counted = false;
    --count;
}

}  // namespace generalutilities
