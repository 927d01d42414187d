// Numbering the codes of any segment: line feeds part the texts, the first of which is the source.
// Markers expanded with the table of codes are the texts again, and all is as in the textbook.

#include <generalutilities/tagged/serialize_codes.h>

#include "../tests/tagged/textbook.h"
#include "text_input.h"

#include <deque>

using namespace generalutilities;

namespace {

constexpr std::int32_t LastNumber = 7;

/// Markers as the codes that they stand for.
std::u16string Expand(const std::u16string& marked, const SerializedCodes& result) {
    std::u16string text;
    for (std::size_t i = 0; i < marked.size(); ++i) {
        if (marked[i] != CodeMarkerStart) {
            text += marked[i];
            continue;
        }
        std::size_t number = 0;
        for (++i; marked[i] != CodeMarkerEnd; ++i) {
            number = number * 10 + (marked[i] - u'0');
        }
        text += result.codes.at(number - LastNumber - 1);
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::u16string all = TextFrom(data, std::min<std::size_t>(size, 600));
    std::erase_if(all, [](char16_t unit) { return unit == CodeMarkerStart; });
    std::deque<std::u16string> texts;
    std::vector<TagScan> scans;
    for (std::size_t start = 0, end = 0; end != all.npos; start = end + 1) {
        end = all.find(u'\n', start);
        texts.push_back(all.substr(start, end - start));
        if (ScanTags(texts.back(), scans.emplace_back())) {
            return 0;
        }
    }
    const SerializedCodes result = SerializeCodes(scans, LastNumber);
    std::vector<std::u16string> marked;
    const auto codes = textbook::SerializeCodes(scans, LastNumber, marked);
    Require(result.texts == marked);
    Require(result.codes.size() == codes.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        Require(Expand(result.texts[i], result) == texts[i]);
    }
    return 0;
}
