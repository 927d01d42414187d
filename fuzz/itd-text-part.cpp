// A text part from outside. What can be read can be written, and takes no more room than it did but
// for the marks of comments. And it can be walked, whichever column is longer.

#include <generalutilities/itd/document_walk.h>

#include "text_input.h"

using namespace generalutilities;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    ItdTextHeader header;
    ParseTextHeader(bytes, header);
    ItdDocument document;
    const ItdParse result = ParseTextPart(bytes, header.statusEntryCount, document);
    if (result != ItdParse::Complete) {
        Require(result == ItdParse::NoTextPart || result == ItdParse::FaultyStream);
        return 0;
    }
    for (const auto* column : {&document.sourceSegments, &document.targetSegments}) {
        std::uint32_t last = 0;
        for (const ItdSegment& segment : *column) {
            const std::uint32_t sid = segment.begin()->block.sid;
            Require(column->data() == &segment || sid != last);
            last = sid;
            for (const ItdRecord& record : segment) {
                Require(record.block.sid == sid);
            }
        }
    }
    LanguageCodeOfFileLine(document.sourceSegments);
    const std::string written = SerializeTextPart(document);
    Require(written.size() <= size + 2 * document.commentStrings.size());
    Require(written.starts_with(document.headerBytes) && written.ends_with(document.footerBytes));
    ItdWalk walk;
    walk.Open(std::move(document));
    for (const std::size_t count : {walk.SegmentCount(), walk.Document().targetSegments.size()}) {
        std::size_t steps = 1;
        for (walk.Restart(); walk.Next(); ++steps) {
            Require(!walk.Current().source.codes.empty());
        }
        Require(steps == count);
        walk.ReverseLanguages();
    }
    return 0;
}
