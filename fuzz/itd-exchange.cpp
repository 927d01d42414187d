// Files of translations as they may come back: whatever stands in them, reading ends with rows or
// with an `Error`, and the document that they are applied to can be written and read again.

#include <generalutilities/error.h>
#include <generalutilities/itd/translations.h>

#include "itd/sample_document.h"
#include "itd/segment_notation.h"
#include "platform/files/temporary_file.h"
#include "text_input.h"

using namespace generalutilities;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    constexpr ExchangeForm Forms[] = {ExchangeForm::Tsv, ExchangeForm::JsonLines,
                                      ExchangeForm::Xliff};
    files::TemporaryFile file;
    file.Write({reinterpret_cast<const char*>(data) + 1, size - 1});
    file.Flush();
    ItdDocument document;
    document.headerBytes = SampleHeader(0, true);
    for (auto* column : {&document.sourceSegments, &document.targetSegments}) {
        column->push_back(SegmentOf(document, u"F lc=\"x\"¦T a¦C <b>¦T b¦C <i>", 1));
        column->push_back(SegmentOf(document, u"T c", 2));
        column->push_back(SegmentOf(document, u"L ", 3));
    }
    try {
        TranslationApplier applier(document);
        const auto reader = OpenExchange(Forms[data[0] % 3], file.Path());
        for (TranslationRow row; reader->Next(row);) {
            applier.Apply(row);
        }
    } catch (const Error&) {
        return 0;
    }
    const std::string stream = SerializeTextPart(document);
    ItdDocument again;
    Require(ParseTextPart(stream, 0, again) == ItdParse::Complete);
    Require(again.targetSegments.size() == 3 && SerializeTextPart(again) == stream);
    return 0;
}
