#include "itd/open_document.h"

namespace generalutilities {

HRESULT OpenTextHeader(std::u16string_view path, const ItdReporter& reporter, LoadedTextPart& part,
                       ItdTextHeader& header) {
    if (const HRESULT status = LoadTextPart(path, reporter, part); Failed(status)) {
        return status;
    }
    return ParseTextHeader(part.Bytes(), header) == ItdParse::Complete
               ? S_OK
               : reporter.Report(itderrWrongTextHeader);
}

HRESULT OpenSegments(LoadedTextPart& part, const ItdReporter& reporter, const ItdTextHeader& header,
                     ItdDocument& document) {
    const ItdParse parse = ParseTextPart(part.Bytes(), header.statusEntryCount, document);
    part.buffer = Bstr();
    part.length = 0;
    return parse == ItdParse::Complete ? S_OK : reporter.Report(itderrTextParsing);
}

}  // namespace generalutilities
