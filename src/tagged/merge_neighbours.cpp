// Merging codes that stand side by side, without walking the texts for each question. Four things
// are kept up to date instead:
//
//   places      for each id its tags in order, dead ones included: a range of one array; an id made
//               by a merge adds its own at the end
//   live        which places are alive, in a Fenwick tree: how many tags with an id stand in a
//   text,
//               or in front of one, is a difference of two sums
//   neighbours  all pairs of tags side by side, ordered by their two ids and then by position
//   most        how many tags with an id one text has at most: counts only fall, so a text that
//               never had enough need not be asked

#include "tagged/code_tags.h"

#include <algorithm>
#include <compare>
#include <map>
#include <set>

namespace generalutilities {

namespace {

/// Sums over a row of zeros and ones.
class FenwickTree {
  public:
    explicit FenwickTree(std::size_t size) : sums(size + 1) {}

    void Set(std::size_t index) { Add(index, 1); }
    void Clear(std::size_t index) { Add(index, static_cast<std::size_t>(-1)); }
    std::size_t Between(std::size_t begin, std::size_t end) const {
        return Before(end) - Before(begin);
    }

  private:
    void Add(std::size_t index, std::size_t amount) {
        for (std::size_t i = index + 1; i < sums.size(); i += i & (~i + 1)) {
            sums[i] += amount;
        }
    }
    std::size_t Before(std::size_t index) const {
        std::size_t sum = 0;
        for (std::size_t i = index; i > 0; i &= i - 1) {
            sum += sums[i];
        }
        return sum;
    }

    std::vector<std::size_t> sums;
};

struct Neighbours {
    std::size_t first;   ///< id of a tag
    std::size_t second;  ///< id of the next one
    std::size_t tag;     ///< index of the first

    friend auto operator<=>(const Neighbours&, const Neighbours&) = default;
};

/// The most tags with an id that one text had when the id came up, and the most that any other had.
struct MostOfAnId {
    std::size_t count = 0;
    std::size_t text = 0;
    std::size_t elsewhere = 0;

    void Enter(std::size_t newText, std::size_t newCount) {
        if (newCount > count) {
            elsewhere = count;
            count = newCount;
            text = newText;
        } else {
            elsewhere = std::max(elsewhere, newCount);
        }
    }
    std::size_t OutsideOf(std::size_t thisText) const {
        return thisText == text ? elsewhere : count;
    }
};

class Merger {
  public:
    explicit Merger(CodeTags& codes)
        : tags(codes.tags), ends(codes.ends), all(codes), live(2 * codes.tags.size()) {
        LinkTags();
        EnterPlaces();
    }

    void Run() {
        for (std::size_t text = 0; text < ends.size(); ++text) {
            std::size_t tag = all.Begin(text) == ends[text] ? None : all.Begin(text);
            while (tag != None) {
                if (tags[tag].joinsNext && AllAgree(tag, text)) {
                    tag = Merge(tag, text);
                } else {
                    tag = next[tag];
                }
            }
        }
        all.idCount = most.size();
    }

  private:
    static constexpr std::size_t None = static_cast<std::size_t>(-1);

    void LinkTags() {
        next.assign(tags.size(), None);
        previous.assign(tags.size(), None);
        for (std::size_t text = 0; text < ends.size(); ++text) {
            for (std::size_t tag = all.Begin(text); tag + 1 < ends[text]; ++tag) {
                next[tag] = tag + 1;
                previous[tag + 1] = tag;
                if (tags[tag].joinsNext) {
                    neighbours.insert({tags[tag].id, tags[tag + 1].id, tag});
                }
            }
        }
    }

    void EnterPlaces() {
        places.reserve(2 * tags.size());  // every merge costs a tag and adds a place
        places.resize(tags.size());
        placeOf.resize(tags.size());
        starts.assign(all.idCount + 1, 0);
        for (const CodeTag& tag : tags) {
            ++starts[tag.id + 1];
        }
        for (std::size_t id = 0; id < all.idCount; ++id) {
            starts[id + 1] += starts[id];
        }
        std::vector<std::size_t> free(starts.begin(), starts.end() - 1);
        for (std::size_t tag = 0; tag < tags.size(); ++tag) {
            EnterPlace(tag, free[tags[tag].id]++);
        }
        for (std::size_t id = 0; id < all.idCount; ++id) {
            EnterMost(id);
        }
    }

    void EnterPlace(std::size_t tag, std::size_t place) {
        places[place] = tag;
        placeOf[tag] = place;
        live.Set(place);
    }

    /// Once all tags with the id have their places.
    void EnterMost(std::size_t id) {
        most.emplace_back();
        ForEachText(id, [&](std::size_t text) {
            most[id].Enter(text, Count(text, id));
            return true;
        });
    }

    /// The first place of a tag with this id at or behind the tag with that index.
    std::size_t PlaceBehind(std::size_t id, std::size_t tag) const {
        const auto begin = places.begin();
        return static_cast<std::size_t>(
            std::lower_bound(begin + Offset(starts[id]), begin + Offset(starts[id + 1]), tag) -
            begin);
    }
    static std::ptrdiff_t Offset(std::size_t index) { return static_cast<std::ptrdiff_t>(index); }

    std::size_t Count(std::size_t text, std::size_t id) const {
        return live.Between(PlaceBehind(id, all.Begin(text)), PlaceBehind(id, ends[text]));
    }

    /// Calls `use` for each text that has or had tags with the id, for as long as it gives true.
    /// Gives what it gave last.
    template <class Use>
    bool ForEachText(std::size_t id, Use use) const {
        for (std::size_t place = starts[id]; place < starts[id + 1];) {
            const auto end = std::ranges::upper_bound(ends, places[place]);
            if (!use(static_cast<std::size_t>(end - ends.begin()))) {
                return false;
            }
            place = PlaceBehind(id, *end);
        }
        return true;
    }

    /// Whether the codes of a tag and of the next one may become one. The text that refused a pair
    /// last is asked first: it mostly refuses again.
    bool AllAgree(std::size_t tag, std::size_t ownText) {
        const std::size_t a = tags[tag].id;
        const std::size_t b = tags[next[tag]].id;
        const std::size_t countA = Count(ownText, a);
        const std::size_t countB = Count(ownText, b);
        const auto agrees = [&](std::size_t text) { return Agrees(text, a, b, countA, countB); };
        const auto refused = refusals.find({a, b});
        if (refused != refusals.end() && !agrees(refused->second)) {
            return false;
        }
        const auto remember = [&](std::size_t text) {
            if (agrees(text)) {
                return true;
            }
            refusals[{a, b}] = text;
            return false;
        };
        return (most[a].OutsideOf(ownText) < countA || ForEachText(a, remember)) &&
               (most[b].OutsideOf(ownText) < countB || ForEachText(b, remember));
    }

    bool Agrees(std::size_t text, std::size_t a, std::size_t b, std::size_t countA,
                std::size_t countB) const {
        if (Count(text, a) < countA && Count(text, b) < countB) {
            return true;
        }
        const auto together = neighbours.lower_bound({a, b, all.Begin(text)});
        if (together == neighbours.end() || together->first != a || together->second != b ||
            together->tag >= ends[text]) {
            return false;
        }
        const std::size_t inFront =
            live.Between(PlaceBehind(a, all.Begin(text)), placeOf[together->tag]);
        return inFront < countA;
    }

    /// Merges all neighbours with the ids of a tag and of the next one. Gives the tag of the text
    /// to go on with: the one that now has as many tags in front of it as `tag` had.
    std::size_t Merge(std::size_t tag, std::size_t text) {
        const std::size_t first = tags[tag].id;
        const std::size_t second = tags[next[tag]].id;
        std::size_t lostInFront = 0;
        for (;;) {
            const auto pair = neighbours.lower_bound({first, second, 0});
            if (pair == neighbours.end() || pair->first != first || pair->second != second) {
                break;
            }
            const std::size_t absorbed = next[pair->tag];
            lostInFront += absorbed >= all.Begin(text) && absorbed < tag ? 1 : 0;
            MergeWithNext(pair->tag);
        }
        starts.push_back(places.size());
        EnterMost(most.size());
        if (tags[tag].absorbed) {
            tag = next[tag];
        }
        for (; lostInFront > 0 && tag != None; --lostInFront) {
            tag = next[tag];
        }
        return tag;
    }

    void MergeWithNext(std::size_t tag) {
        const std::size_t newId = most.size();
        const std::size_t other = next[tag];
        const std::size_t before = previous[tag];
        const std::size_t behind = next[other];
        if (before != None && tags[before].joinsNext) {
            neighbours.erase({tags[before].id, tags[tag].id, before});
            neighbours.insert({tags[before].id, newId, before});
        }
        neighbours.erase({tags[tag].id, tags[other].id, tag});
        if (tags[other].joinsNext) {
            neighbours.erase({tags[other].id, tags[behind].id, other});
            neighbours.insert({newId, tags[behind].id, tag});
        }
        live.Clear(placeOf[tag]);
        live.Clear(placeOf[other]);
        places.push_back(tag);
        EnterPlace(tag, places.size() - 1);

        // Nothing stands between the two, so that together they are one stretch of the text.
        CodeTag& merged = tags[tag];
        merged.text = {merged.text.data(), merged.text.size() + tags[other].text.size()};
        merged.joinsNext = tags[other].joinsNext;
        merged.id = newId;
        tags[other].absorbed = true;
        next[tag] = behind;
        if (behind != None) {
            previous[behind] = tag;
        }
    }

    std::vector<CodeTag>& tags;
    const std::vector<std::size_t>& ends;
    CodeTags& all;
    std::vector<std::size_t> next;  ///< of each tag, the next one of its text that is left
    std::vector<std::size_t> previous;
    std::vector<std::size_t> places;
    std::vector<std::size_t> placeOf;  ///< of each tag under its present id
    std::vector<std::size_t> starts;   ///< of each id in `places`, and the end
    FenwickTree live;
    std::set<Neighbours> neighbours;
    std::vector<MostOfAnId> most;
    std::map<std::pair<std::size_t, std::size_t>, std::size_t> refusals;
};

}  // namespace

void MergeNeighbours(CodeTags& codes) {
    if (codes.anyJoined) {
        Merger(codes).Run();
    }
}

}  // namespace generalutilities
