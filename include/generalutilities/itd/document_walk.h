#pragma once

#include <generalutilities/itd/text_part.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A document segment by segment: what `ITDReader` gives out.
namespace generalutilities {

/// One column of one segment. The codes are moved out of the text, in which "{n}" stands between
/// two translatable records and a backslash before each character "\", "{" or "}".
struct ItdColumn {
    std::u16string text;
    /// Entry k is what stands before translatable record k, with that record's own block at its
    /// end; the last entry is what stands behind the last one. Blocks and codes are in the forms of
    /// text_forms.h. A segment without a translatable record has one entry.
    std::vector<std::u16string> codes;
};

/// Reads the column of a segment; the first placeholder has the number `codeNumber`. Gives the next
/// free number.
///
/// A record whose column's text is still empty gets no placeholder, only its entry.
std::uint32_t LoadColumn(const ItdSegment& segment, std::uint32_t codeNumber, ItdColumn& column);

/// The comments that a comment string holds, a line each, ended by CR LF, with "user: " before the
/// text where a user is named. Escapes of the string stay.
std::u16string CommentOf(std::u16string_view commentString);

/// The two binary forms of what surrounds the records.
std::u16string BinaryHeaderOf(const ItdDocument& document);
/// What stands behind the records.
std::u16string BinaryFooterOf(const ItdDocument& document);

/// Swaps the columns of a document whose file line names the header's target language: the file
/// then holds them the other way round. Gives whether it did.
bool PutSourceFirst(ItdDocument& document, std::u16string_view targetLanguage);

/// Walks a document forward. Walking all of it costs time linear in its size, whatever is reversed
/// on the way.
class ItdWalk {
  public:
    /// A segment as `ITDReader` tells it.
    struct Segment {
        ItdColumn source;
        ItdColumn target;
        std::u16string comment;
        std::uint32_t status = 0;  ///< this and the score are the file's own values
        double score = 0;
    };

    /// Starts anew with a document, the current segment staying what it was until `Restart`.
    void Open(ItdDocument opened);
    void Close() { Open({}); }
    /// Hands the document out; the walk has none afterwards.
    ItdDocument Take();

    const ItdDocument& Document() const { return document; }
    std::size_t SegmentCount() const { return document.sourceSegments.size(); }
    const Segment& Current() const { return current; }

    bool HasMore() const { return index + 1 < SegmentCount(); }
    /// Loads the next segment; false, and no change, behind the last one. When memory runs out here
    /// or in `Restart`, nothing has changed.
    bool Next();
    /// Goes to the first segment and loads it, if there is one.
    void Restart();
    /// Swaps the columns; what is loaded stays.
    void ReverseLanguages();

    /// The number of the next placeholder. Both columns of a segment count from the same number.
    std::uint32_t codeNumber = 1;

  private:
    /// How many of a column's first segments hold translatable text.
    struct Count {
        std::size_t segments = 0;
        std::size_t withText = 0;
    };

    void Load(std::size_t i);
    void FindStatus(std::size_t i);

    ItdDocument document;
    std::size_t index = 0;  ///< of the current segment
    Segment current;
    Segment loading;  ///< keeps its room from segment to segment
    Count sourceCount;
    Count targetCount;
};

}  // namespace generalutilities
