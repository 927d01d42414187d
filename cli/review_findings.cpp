#include "review_findings.h"

namespace generalutilities::cli {
namespace {

constexpr std::size_t PlacesShown = 3;

/// Whether something that the reviewer wrote does not come back, or not for sure.
bool IsLoss(ReviewFinding finding) {
    return finding == ReviewFinding::Footnote || finding == ReviewFinding::MarginComment ||
           finding == ReviewFinding::FallbackPicture || finding == ReviewFinding::Drawing ||
           finding == ReviewFinding::KeptBreak || finding == ReviewFinding::OutsideText ||
           finding == ReviewFinding::MissingMark || finding == ReviewFinding::DamagedRow;
}

}  // namespace

void ReviewFindings::Add(const ReviewFindingPlace& place) {
    Kind& kind = kinds[static_cast<std::size_t>(place.finding)];
    if (kind.count++ < PlacesShown) {
        kind.places += (kind.places.empty() ? "" : "; ") + DescribePlace(place);
    }
}

void ReviewFindings::Tell(Console& console, const std::string& file) const {
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const auto finding = static_cast<ReviewFinding>(i);
        const Kind& kind = kinds[i];
        if (kind.count == 0) {
            continue;
        }
        std::string line = file + ": met ";
        line += DescribeFinding(finding);
        line += " (" + kind.places;
        if (kind.count > PlacesShown) {
            line += "; and " + std::to_string(kind.count - PlacesShown) + " more";
        }
        line += ")";
        if (IsLoss(finding)) {
            console.Warn(line);
        } else {
            console.Note(line);
        }
    }
}

}  // namespace generalutilities::cli
