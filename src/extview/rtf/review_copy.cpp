#include "extview/rtf/review_copy.h"

#include <algorithm>
#include <utility>

namespace generalutilities::rtf {

void ReviewCopy::Take(Edit edit) {
    isChanged = true;
    if (isHolding) {
        held.push_back(std::move(edit));
    } else {
        Make(edit);
    }
}

void ReviewCopy::Make(const Edit& edit) {
    CopyTo(edit.from);
    if (!edit.text.empty()) {
        write(edit.text);
    }
    copied = std::max(copied, edit.to);
    shift += edit.to - edit.from;
    shift -= static_cast<std::int64_t>(edit.text.size());
}

void ReviewCopy::Release(std::uint32_t end) {
    const auto later = std::stable_partition(held.begin(), held.end(),
                                             [end](const Edit& edit) { return edit.from <= end; });
    std::stable_sort(held.begin(), later,
                     [](const Edit& one, const Edit& other) { return one.from < other.from; });
    std::for_each(held.begin(), later, [this](const Edit& edit) { Make(edit); });
    held.erase(held.begin(), later);
}

void ReviewCopy::Finish() {
    if (isChanged) {
        Release(source.FileSize());
        CopyTo(source.FileSize());
    }
}

void ReviewCopy::CopyTo(std::uint32_t end) {
    while (copied < end) {
        const std::string_view bytes = source.BytesFrom(copied).substr(0, end - copied);
        if (bytes.empty()) {
            return;  // a read error, which the pager remembers
        }
        write(bytes);
        copied += static_cast<std::uint32_t>(bytes.size());
    }
}

}  // namespace generalutilities::rtf
