#include <generalutilities/collections/sort.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/collections.h>

#include "frame/values.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace generalutilities {
namespace {

int calls = 0;

template <class Number>
std::int32_t CompareNumbers(const void* left, const void* right) {
    ++calls;
    Number a;
    Number b;
    std::memcpy(&a, left, sizeof a);
    std::memcpy(&b, right, sizeof b);
    return a < b ? -1 : b < a ? 1 : 0;
}

std::string log;

/// Writes down which characters are compared. What is expected comes from a plain list program that
/// was written from the description of the algorithm alone.
std::int32_t CompareAndTell(const void* left, const void* right) {
    const char a = *static_cast<const char*>(left);
    const char b = *static_cast<const char*>(right);
    log += {a, b, ' '};
    return a - b;
}

TEST(Sort, ComparesInItsFixedOrder) {
    for (const auto& [text, expected] : std::vector<std::pair<std::string, std::string>>{
             {"", ""},
             {"b", ""},
             {"ba", "ab "},
             {"ab", "ba ba "},
             {"cab", "ac ba bc ba "},
             {"bca", "cb cb ab "},
             {"bcabca", "cb cb ab ba bc bb ca cc aa ac ac ab ab aa "},
             {"qwertyuiopasdfghjkl",
              "qp ql pl qp pl wp pk ep rp pj tp ph yp pg up pf ip op pp pd ap sp kl ek je jl jk je "
              "he hl hk hj he ge gl gk gj gh ge fe fl fk fj fh fg fe ie il ik ij ih oe ol de ad sa "
              "so pa ps po ua us ya yu ta ty tu ts ry ru rt rs rp wy wu qy qw qu qt qs qr qp "}}) {
        std::string sorted = text;
        log.clear();
        SortElements(sorted.data(), 1, sorted.size(), CompareAndTell);
        EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end())) << text;
        EXPECT_EQ(log, expected) << text;
    }
}

template <class Number>
void SortAllShapes() {
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    for (const std::size_t count : {0u, 1u, 2u, 15u, 16u, 17u, 18u, 33u, 1000u, 20000u}) {
        for (const int shape : {0, 1, 2, 3, 4}) {
            std::vector<Number> numbers(count);
            std::iota(numbers.begin(), numbers.end(), Number(0));
            if (shape == 1) {
                std::reverse(numbers.begin(), numbers.end());
            } else if (shape == 2) {
                std::shuffle(numbers.begin(), numbers.end(), random);
            } else if (shape == 3) {
                std::fill(numbers.begin(), numbers.end(), Number(7));
            } else if (shape == 4) {
                std::generate(numbers.begin(), numbers.end(),
                              [&] { return Number(random() % 10); });
            }
            std::vector<Number> expected = numbers;
            std::sort(expected.begin(), expected.end());
            SortElements(numbers.data(), sizeof(Number), count, CompareNumbers<Number>);
            EXPECT_EQ(numbers, expected)
                << count << " elements, shape " << shape << ", seed " << seed;
        }
    }
}

struct Three {
    unsigned char bytes[3];
    Three() = default;
    explicit Three(std::size_t value)
        : bytes{static_cast<unsigned char>(value >> 16), static_cast<unsigned char>(value >> 8),
                static_cast<unsigned char>(value)} {}
    Three& operator++() { return *this = Three((bytes[0] << 16 | bytes[1] << 8 | bytes[2]) + 1u); }
    auto operator<=>(const Three&) const = default;
};

TEST(Sort, SortsElementsOfEverySize) {
    SortAllShapes<std::uint8_t>();
    SortAllShapes<Three>();
    SortAllShapes<std::int32_t>();
    SortAllShapes<double>();
    SortAllShapes<long double>();
}

TEST(Sort, StaysInsideTheArrayWithABrokenFunction) {
    for (const CompareElements compare :
         {CompareElements([](const void*, const void*) { return -1; }),
          CompareElements([](const void*, const void*) { return 1; }),
          CompareElements([](const void*, const void*) { return ++calls % 3 - 1; })}) {
        for (const std::size_t count : {2u, 16u, 17u, 300u}) {
            std::vector<std::int32_t> numbers(count);  // exactly so much memory, for the sanitizer
            std::iota(numbers.begin(), numbers.end(), 0);
            SortElements(numbers.data(), 4, count, compare);
            std::sort(numbers.begin(), numbers.end());
            for (std::size_t i = 0; i < count; ++i) {
                ASSERT_EQ(numbers[i], static_cast<std::int32_t>(i)) << "an element is lost";
            }
        }
    }
}

std::int32_t CompareStrings(const void* left, const void* right) {
    const std::u16string_view a(*static_cast<const BSTR*>(left));
    return a.compare(*static_cast<const BSTR*>(right));
}

TEST(Sort, SortsTheArraysOfAClient) {
    const auto sort = Create<IQLNSort>(CLSID_QLNSort, IID_IQLNSort);
    const std::int32_t numberFunction =
        HandleFromPointer(reinterpret_cast<void*>(CompareNumbers<std::int32_t>));
    const std::int32_t stringFunction = HandleFromPointer(reinterpret_cast<void*>(CompareStrings));
    std::int32_t numbers[] = {3, 1, 2};
    calls = 0;
    EXPECT_EQ(sort->Sort(numbers, 4, 3, 0), S_FALSE);
    EXPECT_EQ(sort->Sort(numbers, 4, 0, numberFunction), S_OK);
    EXPECT_EQ(sort->Sort(nullptr, 4, -1, numberFunction + 1000), S_OK) << "nothing to compare";
    EXPECT_EQ(sort->Sort(numbers, 4, 1, numberFunction), S_OK);
    EXPECT_EQ(sort->Sort(numbers, 4, 3, numberFunction + 1000), E_INVALIDARG);
    EXPECT_EQ(sort->Sort(numbers, 0, 3, numberFunction), E_INVALIDARG);
    EXPECT_EQ(sort->Sort(nullptr, 4, 3, numberFunction), E_POINTER);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(numbers[0], 3);
    EXPECT_EQ(sort->Sort(numbers, 4, 3, numberFunction), S_OK);
    EXPECT_TRUE(std::is_sorted(std::begin(numbers), std::end(numbers)));

    for (const std::int32_t lowerBound : {1, -3}) {
        SAFEARRAY* strings = SafeArrayCreateVector(VT_BSTR, lowerBound, 40);
        for (std::int32_t i = 0; i < 40; ++i) {
            const Bstr text(std::u16string(1, static_cast<char16_t>(u'A' + i * 7 % 40)));
            std::int32_t index = lowerBound + i;
            ASSERT_EQ(SafeArrayPutElement(strings, &index, text.Get()), S_OK);
        }
        EXPECT_EQ(sort->StringSort(&strings, 0), S_FALSE);
        EXPECT_EQ(sort->StringSort(&strings, stringFunction), S_OK);
        EXPECT_EQ(strings->cLocks, 0u);
        auto* const data = static_cast<BSTR*>(strings->pvData);
        for (int i = 0; i < 40; ++i) {
            EXPECT_EQ(std::u16string(data[i]), std::u16string(1, static_cast<char16_t>(u'A' + i)));
        }
        SafeArrayDestroy(strings);
    }
    SAFEARRAY* none = nullptr;
    EXPECT_EQ(sort->StringSort(&none, stringFunction), E_INVALIDARG);
    EXPECT_EQ(sort->StringSort(nullptr, stringFunction), E_POINTER);
    SAFEARRAY* wrong = SafeArrayCreateVector(VT_I4, 0, 2);
    EXPECT_EQ(sort->StringSort(&wrong, stringFunction), E_INVALIDARG);
    SafeArrayDestroy(wrong);
    ReleaseHandle(numberFunction);
    ReleaseHandle(stringFunction);
}

}  // namespace
}  // namespace generalutilities
