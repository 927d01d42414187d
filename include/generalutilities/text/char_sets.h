#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

/// The characters of a script or of a code page as sets from which a member can be drawn by its
/// number. docs/code-pages.md lists the keys.
namespace generalutilities {

/// A set of code units, kept as ranges that do not overlap.
class CharSet {
  public:
    /// What `At` gives behind the last member; no code unit.
    static constexpr std::int32_t End = -1;

    /// Adds `first` to `end - 1`. A range whose first member is that of another one is not added.
    /// Ranges that touch stay apart. To be called before the first `Count` or `At`.
    void AddRange(std::int32_t first, std::int32_t end);
    void AddChar(std::int32_t character) { AddRange(character, character + 1); }

    std::size_t RangeCount() const { return ranges.size(); }
    /// The number of members.
    std::uint32_t Count();
    /// The member with this zero-based number in ascending order, or `End`; in logarithmic time.
    std::int32_t At(std::uint32_t number);

  private:
    struct Range {
        std::int32_t first;
        std::int32_t end;
    };
    std::vector<Range> ranges;              ///< in ascending order
    std::vector<std::uint32_t> cumulative;  ///< by range: the members up to its end
};

/// The sets by script key: 4 to 39 are the platform's numbers of scripts, 128 to 135 stand for one
/// code page each. A set is built when it is first asked for and then kept. For one thread at a
/// time.
class CharSets {
  public:
    /// The set of a key, owned by this object; null for an unknown key. Throws `std::bad_alloc`.
    CharSet* Get(std::int32_t key);

  private:
    std::map<std::int32_t, std::unique_ptr<CharSet>> sets;  ///< with null for keys found unknown
};

}  // namespace generalutilities
