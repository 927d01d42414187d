#pragma once

#include "extview/rtf/rtf_file_pager.h"

#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

/// Control words: reading one from the file, and what a word means to the parser.
namespace generalutilities::rtf {

struct WordShape;

/// A control word as it stands in the file.
struct ControlWord {
    std::string_view name;      ///< lives until the pager turns a page, or the next word is read
    std::int32_t argument = 0;  ///< 0 without one; kept to 32 bits by saturation
    bool hasArgument = false;   ///< digits or a "-" follow the name
    std::uint32_t nameEnd = 0;  ///< file offset behind the name
    std::uint32_t end = 0;      ///< behind the argument and a space that ends the word
};

/// Reads the control word whose first byte behind the backslash stands at `offset`. The name ends
/// before a space, backslash, CR, LF, brace, digit or "-", and may be empty. `spill` holds a name
/// that crosses the border of a page.
ControlWord ReadControlWord(RtfFilePager& pager, std::uint32_t offset, std::string& spill);

/// The argument of a word that `MeasureWord` has measured.
std::int32_t ArgumentOf(std::string_view word, const WordShape& shape);

enum class WordKind : std::uint8_t {
    Other,
    Characters,     ///< stands for the characters of its meaning: `par`, `tab`, `lquote`, ...
    Unicode,        ///< `u`
    FallbackCount,  ///< `uc`
    Font,           ///< `f`, `af`
    Style,          ///< `s`, `cs`, `ds`, `ts`
    Destination,    ///< `*`: the group is to be skipped
    Inert,          ///< `v`, `plain`: known, and without an effect
};

/// Whether a word of this kind changes the state of its group and does nothing else.
constexpr bool IsState(WordKind kind) {
    return kind == WordKind::FallbackCount || kind == WordKind::Font || kind == WordKind::Style ||
           kind == WordKind::Inert;
}

struct WordMeaning {
    WordKind kind = WordKind::Other;
    std::u16string_view characters{};
};

WordMeaning MeaningOf(std::string_view name);

/// The words that a reader wants to hear of.
///
/// A file consists mostly of control words that mean nothing to anybody here, so the set answers
/// for those with one look: per length of a word it keeps a bit for each pair of first and last
/// byte that occurs (modulo 64), in the words of the set and in those with a meaning of their own.
class ControlWordSet {
  public:
    ControlWordSet() { Clear(); }

    void Clear();
    void Add(std::string_view name);

    /// False only for a word that is neither in the set nor has a meaning.
    bool MayMatter(std::string_view name) const {
        return name.empty() || (seen[LengthClass(name)] & EndsBit(name)) != 0;
    }

    /// The set's own copy of the word; null for a word that is not in the set.
    const std::string* Find(std::string_view name) const;

  private:
    static constexpr std::size_t LengthClasses = 16;

    static std::size_t LengthClass(std::string_view name) {
        return name.size() < LengthClasses ? name.size() : LengthClasses - 1;
    }
    static std::uint64_t EndsBit(std::string_view name) {
        const unsigned first = static_cast<unsigned char>(name.front());
        const unsigned last = static_cast<unsigned char>(name.back());
        return std::uint64_t{1} << ((first ^ last * 5) % 64);
    }
    void Note(std::string_view name) { seen[LengthClass(name)] |= EndsBit(name); }

    std::set<std::string, std::less<>> names;
    std::array<std::uint64_t, LengthClasses> seen{};
};

}  // namespace generalutilities::rtf
