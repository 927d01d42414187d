#pragma once

#include "extview/rtf/control_word.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// Remembering what a succession of control words did, by its bytes.
///
/// The groups of a document begin in a few ways, over and over: `{\plain \cs1\v\f1\fs24\sub `. To
/// read such words one by one takes longer than all the text between them; to know them again is
/// one comparison.
namespace generalutilities::rtf {

/// What a group inherits from the one around it and gives back at its end.
struct GroupState {
    std::int32_t font = 1;
    std::int32_t fallbackCount = 1;  ///< the argument of `\uc`
    std::int32_t style = 1;

    /// Applies a word; one that is about something else does nothing.
    void Set(WordKind kind, std::int32_t argument) {
        if (kind == WordKind::FallbackCount) {
            fallbackCount = argument;
        } else if (kind == WordKind::Font) {
            font = argument;
        } else if (kind == WordKind::Style) {
            style = argument;
        }
    }
};

/// What words do to the state of the group that they stand in.
class GroupChange {
  public:
    void Add(WordKind kind, std::int32_t argument) {
        values.Set(kind, argument);
        kinds |= Bit(kind);
    }
    void ApplyTo(GroupState& group) const {
        group.font = Sets(WordKind::Font) ? values.font : group.font;
        group.fallbackCount =
            Sets(WordKind::FallbackCount) ? values.fallbackCount : group.fallbackCount;
        group.style = Sets(WordKind::Style) ? values.style : group.style;
    }

  private:
    static constexpr unsigned Bit(WordKind kind) { return 1U << static_cast<unsigned>(kind); }
    bool Sets(WordKind kind) const { return (kinds & Bit(kind)) != 0; }

    GroupState values;
    unsigned kinds = 0;
};

/// Control words that stand directly behind one another, and what they do.
struct WordRun {
    std::uint32_t length = 0;
    GroupChange change;
};

class WordMemory {
  public:
    void Clear() { slots.fill({}); }

    /// How many bytes `Find` reads behind those that it is given; they mean nothing.
    static constexpr std::size_t ReadBehind = 8;

    /// The words at the start of the bytes, if they are remembered; else words of no length.
    const WordRun& Find(std::string_view bytes) const {
        static constexpr WordRun None;
        const Slot& slot = slots[SlotOf(PartAt(bytes, 0))];
        std::uint64_t difference = slot.known > bytes.size() ? 1 : 0;
        for (std::size_t i = 0; i * sizeof(Part) < slot.known && difference == 0; ++i) {
            difference = (PartAt(bytes, i) ^ slot.bytes[i]) & slot.mask[i];
        }
        return difference == 0 ? slot.run : None;
    }

    /// Remembers words that `bytes` begin with, unless they are too long.
    void Keep(std::string_view bytes, const WordRun& run) {
        // Where no blank ends the last word, the byte behind it does.
        const std::size_t known = run.length + (bytes[run.length - 1] == ' ' ? 0 : 1);
        if (known <= std::min(bytes.size(), sizeof(Slot::bytes))) {
            Slot& slot = slots[SlotOf(PartAt(bytes, 0))] = {.known = known, .run = run};
            std::memcpy(slot.bytes.data(), bytes.data(), known);
            std::memset(slot.mask.data(), 0xFF, known);
        }
    }

  private:
    using Part = std::uint64_t;
    static constexpr std::size_t MostParts = 8;
    static constexpr unsigned SlotBits = 6;

    struct Slot {
        std::array<Part, MostParts> bytes{};
        std::array<Part, MostParts> mask{};  ///< of those that count
        std::size_t known = 0;               ///< how many these are
        WordRun run{};
    };

    static Part PartAt(std::string_view bytes, std::size_t index) {
        Part part = 0;
        std::memcpy(&part, bytes.data() + index * sizeof part, sizeof part);
        return part;
    }
    static std::size_t SlotOf(Part first) {
        return (first * 0x9E3779B97F4A7C15) >> (64 - SlotBits);
    }

    std::array<Slot, 1 << SlotBits> slots{};
};

}  // namespace generalutilities::rtf
