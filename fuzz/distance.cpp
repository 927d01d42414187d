// The distance at some penalty against the textbook, to the last bit. The first eight bytes are the
// penalty, or the number of a usual one; the ninth splits the others into two texts.

#include <generalutilities/text/distance.h>

#include "../tests/text/textbook.h"
#include "text_input.h"

#include <algorithm>
#include <bit>
#include <cstring>

using namespace generalutilities;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr double Usual[] = {1.0, 0.0, 0.1, 0.5, 1.5, 2.0, -0.5, 1e300};
    if (size < 9) {
        return 0;
    }
    double penalty = 0;
    std::memcpy(&penalty, data, sizeof penalty);
    if (data[1] == '-') {
        penalty = Usual[data[0] % std::size(Usual)];
    }
    const std::u16string text = TextFrom(data + 9, std::min<std::size_t>(size - 9, 1000));
    const std::size_t split = text.size() * data[8] / 256;
    const std::u16string first = text.substr(0, split);
    const std::u16string second = text.substr(split);
    const auto expected = std::bit_cast<std::uint64_t>(textbook::Distance(first, second, penalty));
    Require(std::bit_cast<std::uint64_t>(EditDistance(first, second, penalty)) == expected);
    Require(std::bit_cast<std::uint64_t>(EditDistance(second, first, penalty)) == expected);
    return 0;
}
