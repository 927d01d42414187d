// Bilingual documents: whatever the bytes are, reading them ends, and no more text comes out than
// the file has room for. The prepared copy holds whole segments alone, whose places lie in the
// reviewed file.

#include "extview/rtf/prepare_review.h"
#include "extview/rtf/twb_import.h"
#include "rtf/memory_file.h"
#include "text_input.h"

#include <functional>

using namespace generalutilities;
using generalutilities::testing::FileOf;

namespace {

/// Walks the rows of a document, if it is one.
void Walk(const std::string& file, const std::function<void(const CTWBImport&)>& row) {
    CTWBImport import;
    import.OpenFile();
    if (!import.Open(FileOf(file)) || !import.ReadHeader()) {
        return;
    }
    std::u16string id, source, target, comments;
    std::int32_t status = -1;
    std::size_t units = 0;
    while (import.NextRow(id, source, target, comments, status)) {
        units += id.size() + source.size() + target.size();
        Require(units <= file.size());
        row(import);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string file(reinterpret_cast<const char*>(data), size);
    Walk(file, [](const CTWBImport&) {});

    CTWBImport form;
    if (!form.Open(FileOf(file)) || !form.Prepare() || !form.IsBilingual()) {
        return 0;
    }
    std::string copy;
    const PreparedReview prepared = rtf::PrepareReview(
        FileOf(file), FileOf(file), [&](std::string_view bytes) { copy += bytes; },
        [&](const ReviewFindingPlace& place) { Require(place.offset < size && place.row > 0); },
        "file");
    Require(prepared.isChanged == !copy.empty());
    std::uint64_t row = 0;
    std::uint64_t last = 0;
    Walk(prepared.isChanged ? copy : file, [&](const CTWBImport& import) {
        Require(import.CellCount() == rtf::TwbCells::CellsOfRow);
        const std::uint64_t offset = prepared.OriginalOffset(++row, import.Position());
        Require(last <= offset && offset <= size);
        last = offset;
    });
    return 0;
}
