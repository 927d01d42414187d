#pragma once

#include <generalutilities/extview/prepare_review.h>

#include "console.h"

#include <array>
#include <cstddef>
#include <string>

namespace generalutilities::cli {

/// What the preparation of a reviewed file met, for standard error: one line for each kind, with
/// the first places of it.
class ReviewFindings {
  public:
    void Add(const ReviewFindingPlace& place);
    /// Warns of what the reviewer may miss, and notes the rest.
    void Tell(Console& console, const std::string& file) const;

  private:
    struct Kind {
        std::size_t count = 0;
        std::string places;  ///< the first of them
    };
    std::array<Kind, ReviewFindingCount> kinds;
};

}  // namespace generalutilities::cli
