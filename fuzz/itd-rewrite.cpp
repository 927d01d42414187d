// A document goes out and comes home unchanged: what the walk gives of each segment makes the
// records that it was made of.

#include <generalutilities/itd/document_rewrite.h>
#include <generalutilities/itd/document_walk.h>

#include "text_input.h"

using namespace generalutilities;

namespace {

/// Whether the text forms carry the segment: each translatable record has its place in the text,
/// and no text is taken for a placeholder or changed by a backslash.
bool IsCarried(const ItdSegment& segment) {
    std::size_t translatable = 0;
    bool firstIsEmpty = false;
    for (const ItdRecord& record : segment) {
        if (record.block.IsTranslatable()) {
            firstIsEmpty = translatable == 0 ? record.text.empty() : firstIsEmpty;
            ++translatable;
            if (record.text.find_first_of(u"\\{}") != record.text.npos) {
                return false;
            }
        }
    }
    return translatable == 1 || (translatable > 1 && !firstIsEmpty);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    ItdTextHeader header;
    ItdDocument document;
    if (ParseTextHeader(bytes, header) != ItdParse::Complete ||
        ParseTextPart(bytes, header.statusEntryCount, document) != ItdParse::Complete) {
        return 0;
    }
    const std::string before = SerializeTextPart(document);
    for (auto* column : {&document.sourceSegments, &document.targetSegments}) {
        for (ItdSegment& segment : *column) {
            ItdColumn loaded;
            LoadColumn(segment, 7, loaded);
            CodeMap codes;
            for (std::size_t i = 1; i + 1 < loaded.codes.size(); ++i) {
                codes[static_cast<std::int32_t>(6 + i)] = loaded.codes[i];
            }
            const ItdSegment rebuilt =
                RebuildSegment(document, segment, loaded.text, codes, loaded.codes.front(),
                               loaded.codes.size() > 1 ? loaded.codes.back() : u"");
            Require(rebuilt.begin() != rebuilt.end());
            if (IsCarried(segment)) {
                segment = rebuilt;
            }
        }
    }
    Require(SerializeTextPart(document) == before);
    return 0;
}
