#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/collections.h>

#include "frame/values.h"

#include <random>
#include <set>
#include <vector>

namespace generalutilities {
namespace {

ComPtr<ILongSet> SetOf(const std::vector<std::int32_t>& values) {
    auto set = Create<ILongSet>(CLSID_LongSet, IID_ILongSet);
    for (const std::int32_t value : values) {
        EXPECT_EQ(set->Add(value), S_OK);
    }
    return set;
}

/// All values by `Item`.
std::vector<std::int32_t> Values(ILongSet& set) {
    std::int32_t count = -1;
    EXPECT_EQ(set.get_Count(&count), S_OK);
    std::vector<std::int32_t> values(static_cast<std::size_t>(count));
    for (std::int32_t n = 1; n <= count; ++n) {
        EXPECT_EQ(set.get_Item(n, &values[static_cast<std::size_t>(n) - 1]), S_OK);
    }
    std::int32_t value = 0;
    EXPECT_EQ(set.get_Item(count + 1, &value), E_FAIL);
    return values;
}

ComPtr<IEnumVARIANT> Enumerate(ILongSet& set) {
    ComPtr<IUnknown> enumerator;
    EXPECT_EQ(set.get__NewEnum(enumerator.Out()), S_OK);
    return enumerator.As<IEnumVARIANT>(IID_IEnumVARIANT);
}

/// The next values of an enumerator, at most `count`.
std::vector<std::int32_t> Next(IEnumVARIANT& enumerator, std::uint32_t count) {
    std::vector<VARIANT> given(count + 1);
    std::uint32_t fetched = 99;
    const HRESULT status = enumerator.Next(count, given.data(), &fetched);
    EXPECT_EQ(status, fetched == count ? S_OK : S_FALSE);
    std::vector<std::int32_t> values;
    for (std::uint32_t i = 0; i < fetched; ++i) {
        EXPECT_EQ(given[i].vt, VT_I4);
        values.push_back(given[i].lVal);
    }
    return values;
}

using Longs = std::vector<std::int32_t>;

/// Enough values for many blocks, put in at random or in order, and taken out again.
TEST(LongSet, KeepsThousandsOfValuesAsAPlainSetDoes) {
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    SCOPED_TRACE(seed);
    std::set<std::int32_t> plain;
    const auto set = SetOf({});
    const auto compare = [&] { ASSERT_EQ(Values(*set.Get()), Longs(plain.begin(), plain.end())); };
    for (std::int32_t i = 0; i < 6000; ++i) {
        const std::int32_t value = i < 1500 ? i : static_cast<std::int32_t>(random() % 3000);
        const bool isRemoved = i >= 4500;
        ASSERT_EQ(isRemoved ? set->Remove(value) : set->Add(value), S_OK);
        isRemoved ? void(plain.erase(value)) : void(plain.insert(value));
        if (i % 500 == 499) {
            compare();
        }
    }
    while (!plain.empty()) {
        ASSERT_EQ(set->Remove(*plain.rbegin()), S_OK);
        plain.erase(*plain.rbegin());
    }
    compare();
}

TEST(LongSet, IntersectsWithoutTouchingEither) {
    struct Case {
        Longs left, right, both;
    };
    for (const Case& each :
         {Case{{}, {1}, {}}, Case{{1}, {}, {}}, Case{{1, 2, 3, 9}, {0, 2, 9, 10}, {2, 9}},
          Case{{-5, 7}, {-5, 7}, {-5, 7}}, Case{{1, 3}, {2, 4}, {}}}) {
        const auto left = SetOf(each.left);
        const auto right = SetOf(each.right);
        ComPtr<ILongSet> both;
        ASSERT_EQ(left->IntersectWith(right.Get(), both.Out()), S_OK);
        EXPECT_EQ(Values(*both.Get()), each.both);
        EXPECT_EQ(Values(*left.Get()), each.left);
        EXPECT_EQ(Values(*right.Get()), each.right);
    }
    EXPECT_EQ(SetOf({1})->IntersectWith(SetOf({1}).Get(), nullptr), E_POINTER);
}

void* strangersAddress;
HRESULT GiveStrangersAddress(ILongSet*, void** set) {
    *set = strangersAddress;
    return S_OK;
}

TEST(LongSet, DoesNotFollowTheAddressOfAStranger) {
    const auto set = SetOf({1});
    const auto other = SetOf({});
    const Replaced operation(other.Get(), 7 + 6, Operation(GiveStrangersAddress));
    int somewhere = 0;
    ComPtr<ILongSet> both;
    for (void* const address : {static_cast<void*>(nullptr), static_cast<void*>(&somewhere),
                                reinterpret_cast<void*>(std::uintptr_t{16})}) {
        strangersAddress = address;
        EXPECT_EQ(set->IntersectWith(other.Get(), both.Out()), E_INVALIDARG);
        EXPECT_FALSE(both);
    }
    ASSERT_EQ(set->_GetSet(&strangersAddress), S_OK);
    EXPECT_EQ(set->IntersectWith(other.Get(), both.Out()), S_OK) << "one that wraps a set of ours";
    EXPECT_EQ(Values(*both.Get()), Longs{1});
}

TEST(LongSet, EnumeratesTheLiveSet) {
    auto set = SetOf({10, 20, 30});
    const auto enumerator = Enumerate(*set.Get());
    EXPECT_EQ(Next(*enumerator.Get(), 1), Longs{10});
    set->Add(15);  // before the position
    set->Add(25);  // behind it
    ComPtr<IEnumVARIANT> clone;
    ASSERT_EQ(enumerator->Clone(clone.Out()), S_OK);
    EXPECT_EQ(Next(*enumerator.Get(), 9), (Longs{20, 25, 30}));
    EXPECT_EQ(Next(*enumerator.Get(), 1), Longs{});
    EXPECT_EQ(enumerator->Skip(0), S_OK);
    EXPECT_EQ(enumerator->Skip(1), S_FALSE);
    EXPECT_EQ(enumerator->Reset(), S_OK);
    EXPECT_EQ(enumerator->Skip(3), S_OK);
    EXPECT_EQ(Next(*enumerator.Get(), 1), Longs{25});
    EXPECT_EQ(enumerator->Skip(2), S_FALSE);

    set->Remove(20);  // the clone's position
    set = {};         // the enumerators hold it
    EXPECT_EQ(Next(*clone.Get(), 1), Longs{25});
    VARIANT value{};
    EXPECT_EQ(clone->Next(1, &value, nullptr), S_OK);
    EXPECT_EQ(value.lVal, 30);
    EXPECT_EQ(clone->Next(1, &value, nullptr), S_FALSE);
    std::uint32_t fetched = 99;
    EXPECT_EQ(clone->Next(2, &value, nullptr), E_POINTER);
    EXPECT_EQ(clone->Next(1, nullptr, &fetched), E_POINTER);
    EXPECT_EQ(clone->Clone(nullptr), E_POINTER);
}

}  // namespace
}  // namespace generalutilities
