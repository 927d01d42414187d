#include "extview/rtf/prepare_review.h"

#include <generalutilities/error.h>

#include "extview/rtf/review_walk.h"
#include "extview/rtf/twb_import.h"
#include "platform/files/utf8.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace generalutilities {

std::string_view ReviewFindingName(ReviewFinding finding) {
    constexpr std::string_view Names[ReviewFindingCount] = {
        "deleted-text",     "deleted-row", "inserted-text", "kept-break",          "list-label",
        "fallback-picture", "footnote",    "soft-hyphen",   "non-breaking-hyphen", "stray-date",
        "margin-comment",   "drawing",     "styled-text",   "outside-text",        "empty-source",
        "missing-mark",     "damaged-row"};
    return Names[static_cast<std::size_t>(finding)];
}

std::string DescribePlace(const ReviewFindingPlace& place) {
    constexpr std::string_view Cells[] = {"identifier", "source", "target",
                                          "comment",    "status", "file name"};
    const std::string row = place.row == 0 ? "the heading row" : "row " + std::to_string(place.row);
    const std::string offset = ", byte " + std::to_string(place.offset);
    if (place.finding == ReviewFinding::DeletedRow || place.finding == ReviewFinding::DamagedRow) {
        return "before " + row + offset;
    }
    return (place.cell < std::size(Cells) ? std::string(Cells[place.cell])
                                          : "cell " + std::to_string(place.cell + 1)) +
           " of " + row + offset;
}

std::string_view DescribeFinding(ReviewFinding finding) {
    switch (finding) {
        case ReviewFinding::DeletedText:
            return "text that a tracked change deletes: left out";
        case ReviewFinding::DeletedRow:
            return "a row that tracked changes delete: left out";
        case ReviewFinding::InsertedText:
            return "text that a tracked change inserts: kept";
        case ReviewFinding::KeptBreak:
            return "a line end behind deleted text: kept, for the file does not tell whether it "
                   "was deleted too";
        case ReviewFinding::ListLabel:
            return "the label of a list item: left out";
        case ReviewFinding::FallbackPicture:
            return "a picture: its digits left out";
        case ReviewFinding::Footnote:
            return "a footnote: its text left out";
        case ReviewFinding::SoftHyphen:
            return "a soft hyphen (U+00AD): kept";
        case ReviewFinding::NonBreakingHyphen:
            return "a non-breaking hyphen (U+2011): kept";
        case ReviewFinding::StrayDate:
            return "the number that LibreOffice writes before text with a tracked change of "
                   "format: left out";
        case ReviewFinding::MarginComment:
            return "a comment in the margin: not read; only the column of comments comes back";
        case ReviewFinding::Drawing:
            return "a text box or another drawing: not read";
        case ReviewFinding::StyledText:
            return "text that has taken the style of the mark or code before it: kept";
        case ReviewFinding::OutsideText:
            return "text that is no part of a segment's source or target: left out";
        case ReviewFinding::EmptySource:
            return "a segment without a source: kept";
        case ReviewFinding::MissingMark:
            return "a segment whose end mark is missing: read up to the next segment";
        case ReviewFinding::DamagedRow:
            return "a segment whose marks are damaged: left out";
    }
    return {};
}

std::uint64_t PreparedReview::OriginalOffset(std::uint64_t row, std::uint64_t offset) const {
    const auto behind = std::upper_bound(
        shifts.begin(), shifts.end(), row,
        [](std::uint64_t wanted, const Shift& entry) { return wanted < entry.row; });
    const std::int64_t bytes = behind == shifts.begin() ? 0 : std::prev(behind)->bytes;
    return offset + static_cast<std::uint64_t>(bytes);
}

PreparedReview rtf::PrepareReview(std::unique_ptr<files::FileReader> head,
                                  std::unique_ptr<files::FileReader> file,
                                  const std::function<void(std::string_view)>& write,
                                  const std::function<void(const ReviewFindingPlace&)>& found,
                                  const std::string& name) {
    CTWBImport reader;
    RtfFilePager pager;
    if (!reader.Open(std::move(head)) || !pager.Open(std::move(file))) {
        throw Error(everrUnableToOpenFile,
                    name + ": cannot be opened; is it a file of less than 4 GiB?");
    }
    PreparedReview result;
    if (reader.Prepare() && reader.Position() < reader.FileSize()) {
        const std::uint32_t body = reader.Position();
        const std::optional<rtf::TwbStyles> styles =
            reader.IsBilingual() ? std::optional(reader.Styles()) : std::nullopt;
        reader.Close();
        result = rtf::ReviewWalk(pager, styles, write, found).Run(body);
    }
    if (pager.ReadFailed() || reader.ReadFailed()) {
        throw Error(ErrorReadFault, name + ": cannot be read behind byte offset " +
                                        std::to_string(pager.FileSize()));
    }
    return result;
}

bool IsBilingualDocument(std::u16string_view path) {
    CTWBImport file;
    return file.Open(path) && file.Prepare() && file.IsBilingual();
}

PreparedReview PrepareReviewedFile(std::u16string_view path,
                                   const std::function<void(std::string_view)>& write,
                                   const std::function<void(const ReviewFindingPlace&)>& found) {
    return rtf::PrepareReview(files::OpenForReading(path), files::OpenForReading(path), write,
                              found, files::ToUtf8Lossy(path));
}

}  // namespace generalutilities
