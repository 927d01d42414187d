#pragma once

#include <generalutilities/itd/text_part.h>

#include "itd/text_part_access.h"

/// What opening a document is for both classes: the envelope, the text part, and its two parsers.
/// A failure that has words is reported.
namespace generalutilities {

/// As far as the header of the text part.
HRESULT OpenTextHeader(std::u16string_view path, const ItdReporter& reporter, LoadedTextPart& part,
                       ItdTextHeader& header);

/// The segments of a text part whose header is read; the unpacked bytes are given back.
HRESULT OpenSegments(LoadedTextPart& part, const ItdReporter& reporter, const ItdTextHeader& header,
                     ItdDocument& document);

}  // namespace generalutilities
