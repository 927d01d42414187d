#pragma once

#include <generalutilities/extview/prepare_review.h>

#include "extview/rtf/control_word.h"
#include "extview/rtf/hyphens.h"
#include "extview/rtf/review_copy.h"
#include "extview/rtf/rtf_file_pager.h"
#include "extview/rtf/twb_review.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace generalutilities::rtf {

/// The walk of the preparation over a file.
///
/// It cuts the file into the same tokens as the reader and counts the fallbacks of `\u` in the same
/// way, so that it knows of every character whether the reader would take it for text. What the
/// reader swallows as a fallback stays where it is; of the rest, what is no text of a cell goes.
class ReviewWalk {
  public:
    /// `styles` are those of a bilingual document; without them the file is a table.
    ReviewWalk(RtfFilePager& file, const std::optional<TwbStyles>& styles,
               const std::function<void(std::string_view)>& write,
               const std::function<void(const ReviewFindingPlace&)>& sink);

    /// Walks the file, whose body begins at `body`.
    PreparedReview Run(std::uint32_t body);

  private:
    /// What a group inherits from the one around it.
    struct Group {
        std::int32_t fallbackCount = 1;  ///< the argument of `\uc`
        std::int32_t style = 1;
        std::uint32_t marks = 0;  ///< of tracked changes: `Mark`
    };
    enum Mark : std::uint32_t { Deleted = 1, MovedAway = 2, Inserted = 4, MovedHere = 8 };
    enum class Stretch : std::uint8_t { Plain, Deleted, Inserted };

    void Step(std::string_view rest);
    void OpenGroup();
    void CloseGroup();
    std::uint32_t MeaninglessWords(std::string_view bytes) const;
    void TakeEscape(std::string_view rest);
    void TakeHexByte();
    void TakeHyphen(const Hyphen& hyphen);
    void TakePlainText(std::string_view rest);
    void TakeControlWord();
    void TakeOwnWord(std::string_view name, const ControlWord& word);
    void SetMark(std::uint32_t mark, bool isSet);
    void SkipStarred(std::uint32_t end);
    void DropDestination(std::uint32_t from, ReviewFinding finding);
    std::uint32_t GroupEnd(std::uint32_t start, bool& closed);

    void TakePlainCharacters(std::uint32_t count);
    void TakeCharacters(std::uint32_t end, std::u16string_view characters);
    void TakeFallback(std::uint32_t end);
    void TakeBreak(std::uint32_t end);
    void TakeUnicode(std::uint32_t end, std::int32_t argument);
    void Text(std::uint32_t from, std::uint32_t end, std::optional<char16_t> character);
    void DropText(std::uint32_t from, std::uint32_t end);
    bool KeepText(std::uint32_t at, std::uint32_t end, std::optional<char16_t> character);
    void TakeCell(std::uint32_t end);
    void TakeRow(std::uint32_t end);
    void WriteHeld(std::uint32_t at);
    void EndOfCell();

    bool IsGone() const { return (groups.back().marks & (Deleted | MovedAway)) != 0; }
    /// Whether all text of the row so far is deleted. The heading row never goes as a whole: the
    /// reader would take the next row for it.
    bool IsRowGone() const { return row > 0 && deletedInRow && !keptInRow && cellsWritten == 0; }
    bool StandsStrayDate();
    void Report(ReviewFinding finding, std::uint32_t offset);

    RtfFilePager& pager;
    ReviewCopy copy;
    const std::function<void(const ReviewFindingPlace&)>& found;
    PreparedReview result;
    std::optional<TwbReview> bilingual;
    ControlWordSet words;
    std::string nameSpill;

    std::uint32_t position = 0;
    std::uint32_t groupOpenedAt = 0;  ///< the last "{"
    bool isFirstInGroup = false;      ///< nothing but line ends stands between it and `position`
    bool isInBody = false;
    bool isLibreOffice = false;   ///< the writer of the file, as it says
    std::uint32_t skipCount = 0;  ///< characters of a fallback that the reader will still drop
    std::vector<Group> groups{Group{}};

    std::uint64_t row = 0;
    std::uint32_t cell = 0;
    Stretch stretch = Stretch::Plain;
    bool deletedInRow = false;
    bool keptInRow = false;
    std::uint64_t cellsWritten = 0;  ///< ends of cells of this row that the copy has
    std::uint64_t cellsHeld = 0;     ///< and those that it gets when text of the row is kept
    bool breakHeld = false;          ///< a paragraph break that the copy gets in the same way
    std::uint32_t heldBreakAt = 0;
    bool markDeleted = false;      ///< the end of this paragraph is deleted
    bool lastTextDeleted = false;  ///< the last text of this cell
};

}  // namespace generalutilities::rtf
