#pragma once

#include "extview/rtf/rtf_file_pager.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace generalutilities::rtf {

/// A copy of a file with some stretches left out and others put in.
///
/// Edits come in the order of the file. Nothing is written before the first one, so that a file
/// without edits is never copied.
class ReviewCopy {
  public:
    ReviewCopy(RtfFilePager& file, const std::function<void(std::string_view)>& sink)
        : source(file), write(sink) {}

    /// Leaves out the bytes from `from` to `to`.
    void Drop(std::uint32_t from, std::uint32_t to);
    /// Puts `text` before the byte at `at`.
    void Insert(std::uint32_t at, std::string_view text);
    /// Copies what is left, if there was an edit.
    void Finish();

    bool IsChanged() const { return isChanged; }
    /// How much an offset behind the last edit is higher in the file than in the copy.
    std::int64_t Shift() const { return shift; }

  private:
    void CopyTo(std::uint32_t end);

    RtfFilePager& source;
    const std::function<void(std::string_view)>& write;
    std::uint32_t copied = 0;  ///< what stands before is written or left out
    std::int64_t shift = 0;
    bool isChanged = false;
};

}  // namespace generalutilities::rtf
