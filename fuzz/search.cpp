// Search in all four modes against the textbook. The first byte splits the input: so many of the
// following code units are sought in the others. The second byte is where the search starts.

#include <generalutilities/text/search.h>

#include "../tests/text/textbook.h"
#include "text_input.h"

#include <algorithm>

using namespace generalutilities;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    const std::u16string all = TextFrom(data + 2, std::min<std::size_t>(size - 2, 2000));
    const std::size_t split = std::min<std::size_t>(data[0], all.size());
    const auto sought = std::u16string_view(all).substr(0, split);
    const std::u16string text = all.substr(split);  // of its own, so that reading outside is seen
    for (const bool matchCase : {false, true}) {
        for (const bool wholeWord : {false, true}) {
            const SearchOptions options{matchCase, wholeWord};
            const std::size_t start = data[1] & 0x0F;
            Require(FindText(text, sought, start, options) ==
                    textbook::Find(text, sought, start, options));
        }
    }
    return 0;
}
