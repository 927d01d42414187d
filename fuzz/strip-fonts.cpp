// Font attributes taken out of any text, beside the textbook; taking them out of the result again
// changes nothing.

#include "../tests/tagged/textbook.h"
#include "text_input.h"

using namespace generalutilities;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string text = TextFrom(data, size);
    const std::u16string stripped = StripFontAttributes(text);
    Require(stripped == textbook::StripFontAttributes(text));
    Require(StripFontAttributes(stripped) == stripped);
    return 0;
}
