#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Preparing a reviewed file before it is read.
///
/// The reader of reviewed tables takes every character that stands in a cell. A word processor also
/// writes there what the reviewer does not see as text of the cell: tracked deletions, the labels
/// of lists, pictures as digits, footnotes; and it writes two hyphens in a way that loses them. In
/// a bilingual document it gives the style of a mark or a code, which makes them what they are, to
/// text that is typed behind them. The preparation makes a copy of the file in which a cell holds
/// exactly what the reviewer left. docs/external-view.md has the table of all cases.
namespace generalutilities {

/// What the preparation meets in a file.
enum class ReviewFinding : std::uint8_t {
    DeletedText,        ///< a tracked deletion, also of paragraph breaks: left out
    DeletedRow,         ///< a row whose whole text is a tracked deletion: left out
    InsertedText,       ///< a tracked insertion: kept
    KeptBreak,          ///< a paragraph break behind a deletion, of which the file does not tell
                        ///< whether it was deleted too: kept
    ListLabel,          ///< the number or bullet of a list item: left out
    FallbackPicture,    ///< a picture in the form for older programs: left out
    Footnote,           ///< the text of a footnote or endnote: left out
    SoftHyphen,         ///< U+00AD: written so that it is read
    NonBreakingHyphen,  ///< U+2011: written so that it is read
    StrayDate,          ///< the date of a tracked change of format, written as text: left out
    MarginComment,      ///< a comment in the margin, which no cell holds: not read
    Drawing,            ///< a text box or another drawing: not read
    StyledText,   ///< text in the style of a mark or a code that is neither: kept as the segment's
    OutsideText,  ///< text beside the texts of a segment, such as behind its identifier: left out
    EmptySource,  ///< a segment without a source: its match value written so that it is read
    MissingMark,  ///< a segment without an end mark: it ends where the next one begins
    DamagedRow,   ///< a segment whose marks are damaged: left out
};
inline constexpr std::size_t ReviewFindingCount = 17;

/// The finding as a word for programs: "deleted-text", "list-label", ...
std::string_view ReviewFindingName(ReviewFinding finding);

/// The finding in words, for people: what was met and what became of it.
std::string_view DescribeFinding(ReviewFinding finding);

/// Where something was met.
struct ReviewFindingPlace {
    ReviewFinding finding = ReviewFinding::DeletedText;
    std::uint64_t row = 0;     ///< 0 is the heading row of a table; as counted in the copy
    std::uint32_t cell = 0;    ///< 0 is the identifier
    std::uint32_t offset = 0;  ///< the byte in the reviewed file
};

/// The place in words, for people: "target of row 3, byte 4711".
std::string DescribePlace(const ReviewFindingPlace& place);

/// What a preparation did.
struct PreparedReview {
    /// How often each finding was met; a deletion in several pieces counts once.
    std::array<std::uint64_t, ReviewFindingCount> counts{};
    bool isChanged = false;  ///< the copy differs from the reviewed file

    /// From this row on, offsets in the reviewed file are higher by `bytes` than in the copy.
    struct Shift {
        std::uint64_t row = 0;
        std::int64_t bytes = 0;
    };
    std::vector<Shift> shifts;  ///< by row; an entry for each row that was changed

    std::uint64_t Count(ReviewFinding finding) const {
        return counts[static_cast<std::size_t>(finding)];
    }
    /// The offset in the reviewed file of the end of a row that ends in the copy at `offset`.
    std::uint64_t OriginalOffset(std::uint64_t row, std::uint64_t offset) const;
};

/// Whether a reviewed file is a bilingual document and no table; false if it cannot be read. It has
/// the styles of one, which templates of word processors bring to other documents, too, and a
/// segment or at least no table.
bool IsBilingualDocument(std::u16string_view path);

/// Reads a reviewed RTF table or bilingual document and hands its prepared copy to `write`, piece
/// by piece and in order. A file that needs no change is not copied: `write` is then never called,
/// and the file is to be read itself. `found` (may be empty) hears of everything that was met, row
/// by row.
///
/// One pass, linear in the file. Memory: two pages, one small entry per open group and one per
/// changed row, and of a bilingual document the changes of one segment. Throws `Error` when the
/// file cannot be opened or read; what `write` throws passes through. A file that is neither needs
/// no change: reading it tells what is wrong with it.
PreparedReview PrepareReviewedFile(
    std::u16string_view path, const std::function<void(std::string_view)>& write,
    const std::function<void(const ReviewFindingPlace&)>& found = {});

}  // namespace generalutilities
