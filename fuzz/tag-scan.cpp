// Cutting any text at its tags, beside the textbook: what was cut, put together again, is the text.

#include "../tests/tagged/textbook.h"
#include "text_input.h"

using namespace generalutilities;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string text = TextFrom(data, size);
    TagScan scan;
    textbook::Scan expected;
    const auto fault = ScanTags(text, scan);
    Require((fault ? std::optional(fault->kind) : std::nullopt) ==
            textbook::ScanTags(text, expected));
    Require(std::ranges::equal(scan.texts, expected.texts));
    Require(std::ranges::equal(scan.tags, expected.tags));
    Require(fault ? text[fault->position] == u'<' : JoinTagScan(scan) == text);
    return 0;
}
