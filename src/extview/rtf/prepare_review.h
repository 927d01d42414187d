#pragma once

#include <generalutilities/extview/prepare_review.h>

#include "platform/files/files.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace generalutilities::rtf {

/// `PrepareReviewedFile` for a file that is open already, twice: once for looking at its head.
/// `name` is for messages.
PreparedReview PrepareReview(std::unique_ptr<files::FileReader> head,
                             std::unique_ptr<files::FileReader> file,
                             const std::function<void(std::string_view)>& write,
                             const std::function<void(const ReviewFindingPlace&)>& found,
                             const std::string& name);

}  // namespace generalutilities::rtf
