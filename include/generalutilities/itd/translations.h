#pragma once

#include <generalutilities/itd/exchange.h>
#include <generalutilities/itd/text_part.h>
#include <generalutilities/project/segment_codes.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// The segments of a document for translators, and their translations back into it.
///
/// Every code of a segment stands in its text, those at its edges too, so that a translation can
/// have them elsewhere: the record of a code each, and what parts two texts without a code between
/// them. What belongs to the document is no code: all up to the file line, and the last record of
/// the section. Codes have numbers of their own in each segment: those of the source from 1 in
/// their order. A code of the target has the number of the source's equal one, equal ones in their
/// order, and the next free number where the source has none.
///
/// The document has its source column first.
namespace generalutilities {

/// Gives every segment, in order. The document is walked and comes back as it was.
void ExtractSegments(ItdDocument& document, const std::function<void(const ExchangeSegment&)>& use);

/// What became of a row.
enum class TranslationOutcome {
    Applied,
    Unchanged,      ///< the document has this translation already
    NoTranslation,  ///< the row's target is empty; the document keeps what it has
    Refused,
};

/// A row, and what became of it.
struct AppliedRow {
    TranslationOutcome outcome = TranslationOutcome::Refused;
    std::uint32_t segment = 0;  ///< from 1; 0 where the row names none
    /// Why a row was refused, in words; empty when `codes` tells it.
    std::string reason;
    /// How its codes differ from those of the source.
    std::vector<CodeDifference> codes;
};

/// Puts translations into the target column. The source column, and every segment without an
/// applied row, keeps its records.
///
/// A row is refused when it has a fault, when its segment is none of the document's or came before,
/// when its source is not that of the segment, when the codes are not each of the source's exactly
/// once (in any order), and when the segment has no text, or holds what belongs to the document in
/// the middle of its text.
class TranslationApplier {
  public:
    /// The document must outlive the object.
    explicit TranslationApplier(ItdDocument& target);
    AppliedRow Apply(const TranslationRow& row);

  private:
    ItdDocument& document;
    std::vector<bool> seen;
};

}  // namespace generalutilities
