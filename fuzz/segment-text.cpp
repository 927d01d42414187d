// The texts of a project's rows on their way into the file: clean-ups, keys, escaping.

#include <generalutilities/extview/segment_text.h>
#include <generalutilities/extview/source_key.h>

#include "extview/rtf_escape.h"
#include "text_input.h"

using namespace generalutilities;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string text = TextFrom(data, size);

    const std::u16string shown = StripCodeMarkers(text);
    Require(shown.find_first_of(u"\6\7\b") == shown.npos);
    Require(StripCodeMarkers(shown) == shown);

    const std::u16string bare = StripBraces(shown);
    Require(bare.size() <= shown.size());
    Require(CompareForm(bare, 1033).size() <= bare.size());

    const std::u16string key = MakeSourceKey(text, 1036);
    Require(key.size() <= 50);
    Require(key.empty() || (key.front() != u' ' && key.back() != u' '));

    // What is escaped is plain text of one line, and no brace stands without its backslash.
    std::u16string escaped;
    rtf::AppendEscaped(escaped, text);
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        Require(escaped[i] >= 0x20 && escaped[i] < 0x80);
        Require(escaped[i] != u'{' && escaped[i] != u'}');
        i += escaped[i] == u'\\' ? 1 : 0;
    }
    return 0;
}
