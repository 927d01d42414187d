#pragma once

#include <generalutilities/project/review_report.h>

#include <string>
#include <string_view>
#include <vector>

/// The words that the written reports share.
namespace generalutilities {

/// A text for one line: line ends, tabs and other control characters become their pictures (U+2400
/// and up). UTF-8.
std::string OneLine(std::u16string_view text);

/// What there is to say about a row besides its outcome, one remark each.
std::vector<std::string> RemarksOn(const ReviewedRow& row);

}  // namespace generalutilities
