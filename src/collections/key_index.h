#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace generalutilities {

/// From the hash of a key to the number of its entry: a table with open addressing, at most three
/// quarters full, in which whatever did not find its place free stands directly behind it. The hash
/// is kept beside the number, so that hardly an entry is looked at in vain.
class KeyIndex {
  public:
    static constexpr std::uint32_t None = UINT32_MAX;

    /// Makes room for one more entry. Throws std::bad_alloc and changes nothing.
    void Reserve() {
        if ((used + 1) * 4 <= slots.size() * 3) {
            return;
        }
        std::vector<Slot> old(slots.empty() ? 8 : slots.size() * 2);
        old.swap(slots);
        for (const Slot& slot : old) {
            if (slot.number != None) {
                slots[FreePlace(slot.hash)] = slot;
            }
        }
    }

    /// The number of an entry with this hash for which `isWanted(number)` holds, or None.
    template <class IsWanted>
    std::uint32_t Find(std::uint32_t hash, IsWanted isWanted) const {
        if (slots.empty()) {
            return None;
        }
        for (std::size_t place = hash & Mask(); slots[place].number != None;
             place = (place + 1) & Mask()) {
            if (slots[place].hash == hash && isWanted(slots[place].number)) {
                return slots[place].number;
            }
        }
        return None;
    }

    /// Room must have been made.
    void Insert(std::uint32_t hash, std::uint32_t number) noexcept {
        slots[FreePlace(hash)] = {hash, number};
        ++used;
    }

    void Erase(std::uint32_t hash, std::uint32_t number) noexcept {
        std::size_t hole = PlaceOf(hash, number);
        slots[hole] = {};
        --used;
        // What stands behind moves up, unless that would bring it in front of its own place.
        for (std::size_t place = (hole + 1) & Mask(); slots[place].number != None;
             place = (place + 1) & Mask()) {
            const std::size_t own = slots[place].hash & Mask();
            if (((place - own) & Mask()) >= ((place - hole) & Mask())) {
                slots[hole] = slots[place];
                slots[place] = {};
                hole = place;
            }
        }
    }

    /// An entry has got another number.
    void Renumber(std::uint32_t hash, std::uint32_t from, std::uint32_t to) noexcept {
        slots[PlaceOf(hash, from)].number = to;
    }

  private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t number = None;
    };

    std::size_t Mask() const { return slots.size() - 1; }
    std::size_t FreePlace(std::uint32_t hash) const {
        std::size_t place = hash & Mask();
        while (slots[place].number != None) {
            place = (place + 1) & Mask();
        }
        return place;
    }
    std::size_t PlaceOf(std::uint32_t hash, std::uint32_t number) const {
        std::size_t place = hash & Mask();
        while (slots[place].number != number) {
            place = (place + 1) & Mask();
        }
        return place;
    }

    std::vector<Slot> slots;  ///< none or a power of two
    std::size_t used = 0;
};

}  // namespace generalutilities
