// The preparation of a reviewed table: whatever the bytes are, the copy is changed only where
// something was reported and can be read, with rows whose offsets lie in the reviewed file.

#include "extview/rtf/prepare_review.h"
#include "extview/rtf/rtf_import.h"
#include "extview/rtf/twb_import.h"
#include "rtf/memory_file.h"
#include "text_input.h"

#include <numeric>

using namespace generalutilities;
using generalutilities::testing::FileOf;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string file(reinterpret_cast<const char*>(data), size);
    CTWBImport form;
    if (form.Open(FileOf(file)) && form.Prepare() && form.IsBilingual()) {
        return 0;  // the target bilingual-review
    }
    std::string copy;
    std::uint64_t places = 0;
    const PreparedReview prepared = rtf::PrepareReview(
        FileOf(file), FileOf(file), [&](std::string_view bytes) { copy += bytes; },
        [&](const ReviewFindingPlace& place) {
            ++places;
            Require(place.offset < file.size());
        },
        "file");
    const std::uint64_t met =
        std::accumulate(prepared.counts.begin(), prepared.counts.end(), std::uint64_t{0});
    Require(met == places);
    const std::uint64_t notChanging = prepared.Count(ReviewFinding::InsertedText) +
                                      prepared.Count(ReviewFinding::MarginComment) +
                                      prepared.Count(ReviewFinding::Drawing);
    Require(!prepared.isChanged || met > notChanging);
    // A footnote with a star is told, too, and skipped by the reader.
    Require(prepared.isChanged || met == notChanging + prepared.Count(ReviewFinding::Footnote));
    Require(prepared.isChanged || copy.empty());
    if (!prepared.isChanged) {
        return 0;
    }
    CRTFImport import;
    import.OpenFile();
    if (import.Open(FileOf(copy)) && import.Prepare()) {
        std::uint64_t last = 0;
        for (std::uint64_t row = 0; import.ReadCells(); ++row) {
            const std::uint64_t offset = prepared.OriginalOffset(row, import.Position());
            Require(last <= offset && offset <= file.size());
            last = offset;
        }
    }
    return 0;
}
