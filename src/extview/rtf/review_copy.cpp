#include "extview/rtf/review_copy.h"

namespace generalutilities::rtf {

void ReviewCopy::Drop(std::uint32_t from, std::uint32_t to) {
    CopyTo(from);
    copied = to;
    shift += to - from;
    isChanged = true;
}

void ReviewCopy::Insert(std::uint32_t at, std::string_view text) {
    CopyTo(at);
    write(text);
    shift -= static_cast<std::int64_t>(text.size());
    isChanged = true;
}

void ReviewCopy::Finish() {
    if (isChanged) {
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
