// Edit distance beside the textbook's bit-parallel form and beside two rows of doubles. No library
// with a bit-parallel distance of UTF-16 is among Debian's packages, so the peer is written here as
// the papers have it: one table of match words for each code unit, direct for the first 256 units
// and hashed for the others, and one column of words after the other (Hyyrö 2003).

#include <generalutilities/text/distance.h>

#include "ratios.h"
#include "sample_texts.h"
#include "text/char_tables.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <numeric>

namespace generalutilities::bench {
namespace {

using benchmark::RegisterBenchmark;
using benchmark::State;

/// Where each unit stands in a pattern, 64 rows a word.
class MatchWords {
  public:
    explicit MatchWords(std::u16string_view pattern)
        : words((pattern.size() + 63) / 64), direct(256 * words) {
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            At(pattern[i], i / 64) |= std::uint64_t{1} << i % 64;
        }
    }

    std::size_t Words() const { return words; }

    std::uint64_t Get(char16_t unit, std::size_t word) const {
        if (unit < 256) {
            return direct[unit * words + word];
        }
        return hashed.empty() ? 0 : hashed[word * 128 + Slot(unit, word)].bits;
    }

  private:
    struct Entry {
        char16_t unit = 0;
        std::uint64_t bits = 0;
    };

    std::size_t Slot(char16_t unit, std::size_t word) const {
        std::size_t slot = unit % 128;
        while (hashed[word * 128 + slot].bits != 0 && hashed[word * 128 + slot].unit != unit) {
            slot = (slot + 1) % 128;
        }
        return slot;
    }

    std::uint64_t& At(char16_t unit, std::size_t word) {
        if (unit < 256) {
            return direct[unit * words + word];
        }
        hashed.resize(words * 128);
        Entry& entry = hashed[word * 128 + Slot(unit, word)];
        entry.unit = unit;
        return entry.bits;
    }

    std::size_t words;
    std::vector<std::uint64_t> direct;
    std::vector<Entry> hashed;
};

std::size_t BitParallel(std::u16string_view pattern, std::u16string_view text) {
    const MatchWords matches(pattern);
    struct Word {
        std::uint64_t plus = ~std::uint64_t{0};
        std::uint64_t minus = 0;
    };
    std::vector<Word> column(matches.Words());
    std::size_t distance = pattern.size();
    const std::uint64_t last = std::uint64_t{1} << (pattern.size() - 1) % 64;
    for (const char16_t unit : text) {
        std::uint64_t carryPlus = 1;
        std::uint64_t carryMinus = 0;
        for (std::size_t k = 0; k < column.size(); ++k) {
            const std::uint64_t equal = matches.Get(unit, k);
            const std::uint64_t plus = column[k].plus;
            const std::uint64_t minus = column[k].minus;
            const std::uint64_t x = equal | carryMinus;
            const std::uint64_t zero = (((x & plus) + plus) ^ plus) | x | minus;
            std::uint64_t grows = minus | ~(zero | plus);
            std::uint64_t shrinks = zero & plus;
            if (k + 1 == column.size()) {
                distance += (grows & last) != 0;
                distance -= (shrinks & last) != 0;
            }
            const std::uint64_t nextPlus = grows >> 63;
            const std::uint64_t nextMinus = shrinks >> 63;
            grows = grows << 1 | carryPlus;
            shrinks = shrinks << 1 | carryMinus;
            carryPlus = nextPlus;
            carryMinus = nextMinus;
            column[k].plus = shrinks | ~(zero | grows);
            column[k].minus = grows & zero;
        }
    }
    return distance;
}

double TwoRows(std::u16string_view one, std::u16string_view other, double casePenalty) {
    std::vector<double> above(one.size() + 1);
    std::vector<double> row(one.size() + 1);
    std::iota(above.begin(), above.end(), 0.0);
    for (const char16_t unit : other) {
        row[0] = above[0] + 1.0;
        for (std::size_t j = 0; j < one.size(); ++j) {
            const double cost = one[j] == unit                         ? 0.0
                                : LowerCase(one[j]) == LowerCase(unit) ? casePenalty
                                                                       : 1.0;
            row[j + 1] = std::min(std::min(row[j], above[j + 1]) + 1.0, above[j] + cost);
        }
        row.swap(above);
    }
    return above.back();
}

struct Pair {
    std::u16string one;
    std::u16string other;
};
using SharedPair = std::shared_ptr<const Pair>;

/// A text and a copy in which one unit of `every` was replaced, deleted or doubled, and the case of
/// one unit of `everyCase` changed; 0 for none.
SharedPair MakePair(const std::u16string& text, std::size_t every, std::size_t everyCase) {
    std::mt19937 random(7);
    Pair pair{text, {}};
    for (const char16_t unit : text) {
        const std::size_t choice = every == 0 ? 3 : random() % (3 * every);
        if (everyCase != 0 && random() % everyCase == 0) {
            pair.other += UpperCase(unit) == unit ? LowerCase(unit) : UpperCase(unit);
        } else if (choice == 0) {
            pair.other += text[random() % text.size()];
        } else if (choice != 1) {
            pair.other.append(choice == 2 ? 2 : 1, unit);
        }
    }
    return std::make_shared<const Pair>(std::move(pair));
}

template <class Distance>
void Register(const std::string& name, const SharedPair& pair, Distance distance) {
    RegisterBenchmark(name.c_str(), [pair, distance](State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(distance(pair->one, pair->other));
        }
        state.SetItemsProcessed(static_cast<std::int64_t>(pair->one.size() * pair->other.size()) *
                                static_cast<std::int64_t>(state.iterations()));
    });
}

auto Ours(double casePenalty) {
    return [casePenalty](const std::u16string& one, const std::u16string& other) {
        return EditDistance(one, other, casePenalty);
    };
}

void RegisterCounts(std::vector<Goal>& goals) {
    for (const std::size_t size : {10u, 32u, 100u, 1000u, 10000u}) {
        const auto samples = Samples(size);
        for (const Sample& sample : samples) {
            const SharedPair pair = MakePair(sample.text, 4, 0);
            const std::string name =
                "penalty 1, " + std::to_string(size) + " units, " + sample.name;
            Register(name + "/ours", pair, Ours(1.0));
            Register(name + "/peer", pair, BitParallel);
            const bool manyUnits = sample.name == "CJK" && size >= 1000;
            goals.push_back({size < 100 ? "4d" : "4a", name, manyUnits ? 1.5 : 1.0, 0,
                             size == 1000    ? 20e3
                             : size == 10000 ? 25e3
                                             : 0});
        }
    }
}

void RegisterPenalties(std::vector<Goal>& goals) {
    const struct {
        const char* name;
        SharedPair pair;
        double goal;
    } works[] = {
        {"no unit differs by case alone", MakePair(TextMaker(1000).Words({Ascii}), 6, 0), 13},
        {"a tenth of the units differs by case", MakePair(TextMaker(1000).Words({Ascii}), 12, 10),
         8},
        {"nothing matches",
         std::make_shared<const Pair>(
             Pair{TextMaker(1000).Words({Cyrillic}), std::u16string(1000, u'\u4E00')}),
         4},
    };
    for (const auto& [what, pair, goal] : works) {
        for (const double penalty : {0.1, 0.5, 1.5}) {
            char text[16];
            std::snprintf(text, sizeof text, "%g", penalty);
            const std::string name = std::string("penalty ") + text + ", 1000 units, " + what;
            Register(name + "/ours", pair, Ours(penalty));
            Register(name + "/peer", pair,
                     [penalty](const std::u16string& one, const std::u16string& other) {
                         return TwoRows(one, other, penalty);
                     });
            goals.push_back({"4b, 4c", name, goal});
        }
    }
}

}  // namespace
}  // namespace generalutilities::bench

int main(int argc, char** argv) {
    std::vector<generalutilities::bench::Goal> goals;
    generalutilities::bench::RegisterCounts(goals);
    generalutilities::bench::RegisterPenalties(goals);
    return generalutilities::bench::Run(argc, argv, goals);
}
