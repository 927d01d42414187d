// The collections of automation clients, each called through its interface: the dictionary beside a
// hash table, the sort beside two others with the same comparison function, and the intersection of
// sets beside that of sorted vectors.

#include <generalutilities/automation/functions.h>
#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/collections.h>

#include "check.h"
#include "ratios.h"

#include <absl/container/flat_hash_map.h>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <memory>
#include <random>

namespace generalutilities::bench {
namespace {

using benchmark::RegisterBenchmark;
using benchmark::State;

constexpr std::size_t Million = 1000000;

template <class Interface>
ComPtr<Interface> Create(REFCLSID classId, REFIID iid) {
    ComPtr<Interface> object;
    Check(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, iid, object.OutVoid()) == S_OK,
          "no component");
    return object;
}

/// Measures runs of `work`, with `prepare` in front of each that is not counted.
void Register(
    const std::string& name, std::size_t items, const std::function<void()>& work,
    const std::function<void()>& prepare = [] {}) {
    RegisterBenchmark(name.c_str(), [=](State& state) {
        for (auto _ : state) {
            state.PauseTiming();
            prepare();
            state.ResumeTiming();
            work();
        }
        state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items));
    })->Unit(benchmark::kMillisecond);
}

// ---- The dictionary

using Texts = std::vector<std::u16string>;
using HashMap = absl::flat_hash_map<std::u16string, std::int32_t>;

std::u16string RandomLetters(std::size_t number) {
    std::u16string letters;
    for (std::uint64_t bits = number * 0x9E3779B97F4A7C15u; letters.size() < 10; bits /= 26) {
        letters += static_cast<char16_t>(u'a' + bits % 26);
    }
    return letters;
}

std::u16string SixDigits(std::size_t number) {
    const std::string digits = std::to_string(Million + number).substr(1);
    return {digits.begin(), digits.end()};
}

std::u16string SixDigitsAndTail(std::size_t number) {
    return SixDigits(number) + std::u16string(60, u'x');
}

/// A million keys, as texts and as the values of an automation client; they are added in one random
/// order and asked for in another.
struct Keys {
    explicit Keys(std::u16string (*make)(std::size_t)) {
        std::minstd_rand random(1);
        for (std::size_t i = 0; i < Million; ++i) {
            texts.push_back(make(i));
            asked.push_back(static_cast<std::uint32_t>(i));
        }
        std::shuffle(texts.begin(), texts.end(), random);
        std::shuffle(asked.begin(), asked.end(), random);
        for (const std::u16string& text : texts) {
            VARIANT* const value = values.emplace_back().Out();
            value->vt = VT_BSTR;
            value->bstrVal = Bstr(text).Release();
        }
    }

    Texts texts;
    std::vector<Variant> values;
    std::vector<std::uint32_t> asked;
};

ComPtr<IQLNDictionary> NewDictionary() {
    return Create<IQLNDictionary>(CLSID_qlnDictionary, IID_IQLNDictionary);
}

void Fill(IQLNDictionary& dictionary, Keys& keys) {
    VARIANT item{};
    item.vt = VT_I4;
    for (Variant& key : keys.values) {
        ++item.lVal;
        dictionary.Add(key.InOut(), &item);
    }
}

void Fill(HashMap& map, const Keys& keys) {
    std::int32_t item = 0;
    for (const std::u16string& key : keys.texts) {
        map.insert_or_assign(key, ++item);
    }
}

/// What the jobs of one kind of keys share, filled when the first of them is run.
struct Filled {
    explicit Filled(std::u16string (*make)(std::size_t)) : keys(make) {
        Fill(*dictionary.Get(), keys);
        Fill(map, keys);
    }
    Keys keys;
    ComPtr<IQLNDictionary> dictionary = NewDictionary();
    HashMap map;
};

void RegisterDictionary(const std::string& kind, std::u16string (*make)(std::size_t)) {
    const auto made = std::make_shared<std::unique_ptr<Filled>>();
    const auto filled = [=]() -> Filled& {
        if (!*made) {
            *made = std::make_unique<Filled>(make);
        }
        return **made;
    };
    const auto fresh = std::make_shared<ComPtr<IQLNDictionary>>();
    const auto freshMap = std::make_shared<HashMap>();
    Register(
        "add a million keys, " + kind + "/ours", Million,
        [=] { Fill(*fresh->Get(), filled().keys); },
        [=] {
            filled();
            *fresh = NewDictionary();
        });
    Register(
        "add a million keys, " + kind + "/peer", Million, [=] { Fill(*freshMap, filled().keys); },
        [=] {
            filled();
            *freshMap = HashMap();
        });
    Register(
        "find a million keys, " + kind + "/ours", Million,
        [=] {
            Filled& shared = filled();
            for (const std::uint32_t key : shared.keys.asked) {
                VARIANT_BOOL found = VARIANT_FALSE;
                shared.dictionary->Exists(shared.keys.values[key].InOut(), &found);
                Check(found == VARIANT_TRUE, "a key is lost");
            }
        },
        filled);
    Register(
        "find a million keys, " + kind + "/peer", Million,
        [=] {
            const Filled& shared = filled();
            for (const std::uint32_t key : shared.keys.asked) {
                Check(shared.map.contains(shared.keys.texts[key]), "a key is lost");
            }
        },
        filled);
    Register(
        "list a million keys, " + kind + "/ours", Million,
        [=] {
            Variant list;
            Check(filled().dictionary->Keys(list.Out()) == S_OK, "no list");
        },
        filled);
    Register(
        "list a million keys, " + kind + "/peer", Million,
        [=] {
            Texts list;
            list.reserve(Million);
            for (const auto& [key, item] : filled().map) {
                list.push_back(key);
            }
            std::sort(list.begin(), list.end());
            benchmark::DoNotOptimize(list.data());
        },
        filled);
}

// ---- The sort

template <std::size_t Bytes>
struct Element {
    std::int32_t key;
    char rest[Bytes - sizeof key];
};
template <>
struct Element<4> {
    std::int32_t key;
};

std::int32_t CompareKeys(const void* left, const void* right) {
    std::int32_t keys[2];
    std::memcpy(&keys[0], left, sizeof keys[0]);
    std::memcpy(&keys[1], right, sizeof keys[1]);
    return keys[0] < keys[1] ? -1 : keys[0] > keys[1] ? 1 : 0;
}

/// The sorts of elements of one size. Small arrays are sorted many times over, so that no array
/// comes twice in the same order.
template <std::size_t Bytes>
void RegisterSort(std::size_t count, std::vector<Goal>& goals) {
    using Value = Element<Bytes>;
    static_assert(sizeof(Value) == Bytes);
    const std::size_t arrays = std::max<std::size_t>(1, 100000 / count);
    std::vector<Value> unsorted(count * arrays);
    std::mt19937 random(Bytes);
    for (Value& value : unsorted) {
        value.key = static_cast<std::int32_t>(random());
    }
    const auto values = std::make_shared<std::vector<Value>>();
    const auto add = [&](const std::string& name, const std::function<void(Value*)>& sort) {
        Register(
            name, count * arrays,
            [=] {
                for (std::size_t i = 0; i < arrays; ++i) {
                    sort(values->data() + i * count);
                }
            },
            [=] { *values = unsorted; });
    };
    const std::string work =
        "sort " + std::to_string(count) + " elements of " + std::to_string(Bytes) + " bytes";
    const auto sorter = Create<IQLNSort>(CLSID_QLNSort, IID_IQLNSort);
    const std::int32_t handle = HandleFromPointer(reinterpret_cast<void*>(&CompareKeys));
    const auto ours = [=](Value* first) {
        sorter->Sort(first, Bytes, static_cast<std::int32_t>(count), handle);
    };
    add(work + "/ours", ours);
    add(work + "/peer", [=](Value* first) {
        std::int32_t (*compare)(const void*, const void*) = &CompareKeys;
        benchmark::DoNotOptimize(compare);
        std::sort(first, first + count, [compare](const Value& left, const Value& right) {
            return compare(&left, &right) < 0;
        });
    });
    goals.push_back({.row = "7", .work = work, .peer = 1});
    add(work + ", qsort/ours", ours);
    add(work + ", qsort/peer",
        [=](Value* first) { std::qsort(first, count, Bytes, &CompareKeys); });
    goals.push_back({.row = "7", .work = work + ", qsort", .peer = 1.3});
    if (count < Million) {
        return;
    }
    add(work + "/limit", [=](Value* first) {
        std::int32_t (*compare)(const void*, const void*) = &CompareKeys;
        const auto calls = static_cast<std::size_t>(static_cast<double>(count) * std::log2(count));
        std::int32_t sum = 0;
        for (std::size_t i = 0; i < calls; ++i) {
            benchmark::DoNotOptimize(compare);
            const Value* const value = first + i % (count - 1);
            sum += compare(value, value + 1);
        }
        benchmark::DoNotOptimize(sum);
    });
    goals[goals.size() - 2].limit = 0.3;
}

// ---- The intersection

/// Two sets of a million values out of two million, beside two sorted vectors of the same.
void RegisterIntersection(const std::string& work, bool inOrder) {
    struct Sets {
        std::vector<std::int32_t> vectors[2];
        ComPtr<ILongSet> sets[2];
    };
    const auto sets = std::make_shared<Sets>();
    const auto fill = [=] {
        std::mt19937 random(3);
        for (int i = 0; i < 2 && sets->vectors[i].empty(); ++i) {
            std::vector<std::int32_t>& values = sets->vectors[i];
            for (std::int32_t value = 0; value < static_cast<std::int32_t>(2 * Million); ++value) {
                values.push_back(value);
            }
            std::shuffle(values.begin(), values.end(), random);
            values.resize(Million);
            if (inOrder) {
                std::sort(values.begin(), values.end());
            }
            sets->sets[i] = Create<ILongSet>(CLSID_LongSet, IID_ILongSet);
            for (const std::int32_t value : values) {
                sets->sets[i]->Add(value);
            }
            std::sort(values.begin(), values.end());
        }
    };
    Register(
        work + "/ours", 2 * Million,
        [=] {
            ComPtr<ILongSet> both;
            Check(sets->sets[0]->IntersectWith(sets->sets[1].Get(), both.Out()) == S_OK, "no set");
        },
        fill);
    Register(
        work + "/limit", 2 * Million,
        [=] {
            std::vector<std::int32_t> both;
            std::set_intersection(sets->vectors[0].begin(), sets->vectors[0].end(),
                                  sets->vectors[1].begin(), sets->vectors[1].end(),
                                  std::back_inserter(both));
            benchmark::DoNotOptimize(both.data());
        },
        fill);
}

std::vector<Goal> RegisterAll() {
    std::vector<Goal> goals;
    for (const auto& [kind, make, hasGoals] :
         {std::tuple("ten random letters", &RandomLetters, true),
          std::tuple("six digits", &SixDigits, false),
          std::tuple("six digits and 60 equal units", &SixDigitsAndTail, false)}) {
        RegisterDictionary(kind, make);
        for (const auto& [work, goal] :
             {std::pair("find", 0.8), std::pair("add", 1.2), std::pair("list", 4.0)}) {
            goals.push_back(
                {"6", std::string(work) + " a million keys, " + kind, hasGoals ? goal : 0});
        }
    }
    for (const std::size_t count : {std::size_t{100}, std::size_t{10000}, Million}) {
        RegisterSort<4>(count, goals);
        RegisterSort<8>(count, goals);
        RegisterSort<16>(count, goals);
        RegisterSort<24>(count, goals);
    }
    for (const bool inOrder : {false, true}) {
        const std::string work = std::string("intersect two sets of a million, filled in ") +
                                 (inOrder ? "order" : "any order");
        RegisterIntersection(work, inOrder);
        goals.push_back({"", work, 0, 0.1});
    }
    return goals;
}

}  // namespace
}  // namespace generalutilities::bench

int main(int argc, char** argv) {
    const auto goals = generalutilities::bench::RegisterAll();
    return generalutilities::bench::Run(argc, argv, goals);
}
