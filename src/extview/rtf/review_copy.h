#pragma once

#include "extview/rtf/rtf_file_pager.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace generalutilities::rtf {

/// A copy of a file with some stretches left out and others put in.
///
/// Edits come in the order of the file. Nothing is written before the first one, so that a file
/// without edits is never copied. Between `Hold` and `Release` they may come in any order.
class ReviewCopy {
  public:
    ReviewCopy(RtfFilePager& file, const std::function<void(std::string_view)>& sink)
        : source(file), write(sink) {}

    /// Leaves out the bytes from `from` to `to`.
    void Drop(std::uint32_t from, std::uint32_t to) { Take({from, to, {}}); }
    /// Puts `text` before the byte at `at`.
    void Insert(std::uint32_t at, std::string_view text) { Take({at, at, std::string(text)}); }

    /// From now on edits wait for `Release`.
    void Hold() { isHolding = true; }
    /// Makes the edits that have come for places up to `end`, in the order of these places; at one
    /// place, in the order in which they came. Later places must not have been edited before.
    void Release(std::uint32_t end);

    /// Makes what edits are left, and copies the rest of the file if there was any.
    void Finish();

    bool IsChanged() const { return isChanged; }
    /// How much an offset behind the last edit is higher in the file than in the copy.
    std::int64_t Shift() const { return shift; }

  private:
    /// The text stands in the copy for the bytes from `from` to `to`.
    struct Edit {
        std::uint32_t from;
        std::uint32_t to;
        std::string text;
    };

    void Take(Edit edit);
    void Make(const Edit& edit);
    void CopyTo(std::uint32_t end);

    RtfFilePager& source;
    const std::function<void(std::string_view)>& write;
    std::vector<Edit> held;
    bool isHolding = false;
    std::uint32_t copied = 0;  ///< what stands before is written or left out
    std::int64_t shift = 0;
    bool isChanged = false;
};

}  // namespace generalutilities::rtf
