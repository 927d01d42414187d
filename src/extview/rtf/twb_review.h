#pragma once

#include <generalutilities/extview/prepare_review.h>

#include "extview/rtf/review_copy.h"
#include "extview/rtf/rtf_file_pager.h"
#include "extview/rtf/twb_cells.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace generalutilities::rtf {

/// What the preparation does to a bilingual document beside what it does to every file: it follows
/// the segments by the texts that are kept, and sees to it that the reader gets each of them as six
/// cells, with all text of the source and of the target.
///
/// A word processor gives the style of a mark or a code to text that is typed directly behind it.
/// Such text is put in a style of its own. Edits of a segment wait in the copy until its end is
/// known: one whose marks are damaged is taken out by its identifier, which loses its style.
class TwbReview {
  public:
    using Report = std::function<void(ReviewFinding, std::uint32_t offset)>;

    TwbReview(const TwbStyles& numbers, RtfFilePager& file, ReviewCopy& edits, Report sink);

    /// Takes text of the body that is kept: one character, or plain bytes if `character` is empty.
    /// True for text of a segment that can stay as it is.
    bool Text(std::int32_t style, std::uint32_t from, std::uint32_t end,
              std::optional<char16_t> character);
    /// Takes text of the body that the reader finds empty, such as what stands behind a `\u`.
    void Fallback(std::int32_t style, std::uint32_t from, std::uint32_t end);
    /// Whether text of this style would stay as it is here.
    bool Keeps(std::int32_t style);
    /// Puts a paragraph break before the byte at `at`, if a segment's text stands there; false if
    /// none does.
    bool KeepBreak(std::uint32_t at);
    /// Takes the end of the file.
    void Finish();

    /// The segment that is being read, counted in the copy from 1.
    std::uint64_t Row() const { return rowsDone + (place == Place::Ended ? 2 : 1); }
    /// 0 its identifier, 1 the source, 2 the target.
    std::uint32_t Cell() const;
    const std::vector<PreparedReview::Shift>& Shifts() const { return shifts; }

  private:
    enum class Kind : std::uint8_t { Plain, External, Mark, Internal };
    enum class Place : std::uint8_t { Between, Identifier, Source, Target, Ended, Damaged };

    struct Character {
        char16_t unit;
        std::uint32_t from;
        std::uint32_t end;
    };
    using Characters = std::vector<Character>;

    Kind KindOf(std::int32_t style) const;
    bool IsInText() const { return place == Place::Source || place == Place::Target; }

    void Begin(Kind kind);
    void TakeEmpty(Kind kind, const Character& empty);
    void TakePlain(std::uint32_t from, std::uint32_t end, std::optional<char16_t> character);
    void TakeStyled(const Character& character);
    void EndRun();
    std::size_t MarkLength() const;
    void TakeMark(std::size_t length);
    void TakeEndMark(const Characters& mark);
    void EndSegment();
    void KeepWordAt(std::uint32_t at);
    void TakeCode();
    void TakeExternal();
    void TakeIdentifier();
    void TakeStretch(const Characters& stretch);
    void CloseSegment(std::uint32_t at);
    void MendMatchValue(const Characters& mark);
    void TakeOut();
    void AddText();
    void TellOutside(std::uint32_t offset);

    void PutInPlainStyle(const Characters& stretch);
    void Leave(const Characters& stretch);
    template <class Action>
    static void ForEachPiece(const Characters& stretch, Action action);

    const TwbStyles styles;
    RtfFilePager& pager;
    ReviewCopy& copy;
    const Report report;
    std::string plainStart;  ///< begins a group in a style that is none of the three
    std::string endMark;     ///< the end mark as a group

    Place place = Place::Between;
    Kind runKind = Kind::Plain;
    Characters run;                         ///< styled text of which nothing is decided yet
    std::optional<std::size_t> codeStart;   ///< in `run`
    Characters identifier;                  ///< of the segment that is being read
    Characters end;                         ///< its end mark
    bool hasText = false;                   ///< the source or target that is being read
    bool isBehindEnd = false;               ///< the run began with the end of a segment
    bool toldOutside = false;               ///< of text before the source of this segment
    std::uint32_t textEnd = 0;              ///< of the text that came last
    std::uint32_t emptyEnd = 0;             ///< of the text of no characters that came last
    std::uint32_t leftEnd = 0;              ///< of the text that was left out last
    std::optional<std::uint32_t> lineEnds;  ///< where the line ends begin that it ends in
    std::uint64_t rowsDone = 0;
    std::string bytes;
    std::vector<PreparedReview::Shift> shifts;
};

}  // namespace generalutilities::rtf
