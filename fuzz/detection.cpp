// Detection of any bytes: the first byte chooses the mode, the next two the preferred code page.
// Whatever is named decodes the whole input, and the shares add up.

#include <generalutilities/code_pages.h>
#include <generalutilities/text/detection.h>

#include "text_input.h"

#include <string_view>

using namespace generalutilities;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) {
        return 0;
    }
    const auto mode = data[0] % 2 == 0 ? DetectionMode::PlainText : DetectionMode::Markup;
    const auto preferred = static_cast<std::uint32_t>(data[1] | data[2] << 8);
    const std::string_view bytes(reinterpret_cast<const char*>(data + 3), size - 3);
    const std::size_t room = data[0] / 2 % 12;
    const Detection found = DetectEncodings(bytes, mode, preferred, room);
    Require(found.encodings.size() <= room);
    Require(found.encodings.empty() == (found.status == DetectionStatus::Failed));
    int sum = 0;
    for (const DetectedEncoding& reading : found.encodings) {
        const auto converter = OpenCodePage(static_cast<std::uint32_t>(reading.codePage));
        Require(converter->FindUndefinedBytes(bytes) == CodePageConverter::NotFound);
        Require(reading.docPercent >= 0 && reading.docPercent <= 100);
        Require(reading.confidence >= 1 && reading.confidence <= 100);
        sum += reading.confidence;
    }
    Require(sum <= 110);
    if (!found.encodings.empty()) {
        const bool named = found.encodings.front().langId != 0;
        Require(named == (found.status == DetectionStatus::Language));
    }
    return 0;
}
