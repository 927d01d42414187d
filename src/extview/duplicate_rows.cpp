#include "extview/duplicate_rows.h"

#include <generalutilities/extview/segment_text.h>
#include <generalutilities/extview/source_key.h>

namespace generalutilities {

bool DuplicateRows::Open(Database& database, std::u16string_view query) {
    if (!rows.Open(database, query, true)) {
        return false;
    }
    rows.BindField(SourcePosition, u"Source");
    rows.BindField(TargetPosition, u"Target");
    rows.BindField(DonePosition, u"Done");
    rows.BindField(IdPosition, u"ID");
    rows.BindField(KeyPosition, u"Source2Index");
    return true;
}

// The source is compared with its U+0006 marks, the target without them.
std::u16string DuplicateRows::SourceForm() {
    return CompareForm(StripBraces(Source()), sourceLangId);
}

std::u16string DuplicateRows::TargetForm() {
    return CompareForm(StripBraces(StripCodeMarkers(Text(TargetPosition))), targetLangId);
}

void DuplicateRows::MarkDone() {
    if (rows.Edit()) {
        rows.SetBool(DonePosition, true);
        rows.Update();
    }
}

}  // namespace generalutilities
