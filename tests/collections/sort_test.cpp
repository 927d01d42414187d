#include <generalutilities/collections/sort.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/collections.h>

#include "case_table.h"
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

std::int32_t CompareNumbers(const void* left, const void* right) {
    ++calls;
    return *static_cast<const std::int32_t*>(left) - *static_cast<const std::int32_t*>(right);
}

std::string log;

/// Writes down which characters are compared.
std::int32_t CompareAndTell(const void* left, const void* right) {
    const char a = *static_cast<const char*>(left);
    const char b = *static_cast<const char*>(right);
    log += {a, b, ' '};
    return a - b;
}

TEST(Sort, ComparesInItsFixedOrder) {
    for (const auto& row : CaseTable("sort_orders.tsv")) {
        std::string sorted = Bytes(row[0]);
        log.clear();
        SortElements(sorted.data(), 1, sorted.size(), CompareAndTell);
        EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end())) << sorted;
        EXPECT_EQ(log, Bytes(row[1]));
    }
}

/// Elements of any size, whose first two bytes count.
std::int32_t CompareFirstBytes(const void* left, const void* right) {
    return std::memcmp(left, right, 2);
}

TEST(Sort, SortsElementsOfEverySize) {
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    for (const std::size_t size : {2u, 3u, 4u, 8u, 16u, 21u}) {
        for (const std::size_t count : {0u, 1u, 2u, 15u, 16u, 17u, 18u, 33u, 1000u, 20000u}) {
            for (const int shape : {0, 1, 2, 3, 4}) {
                SCOPED_TRACE(testing::Message()
                             << size << " bytes, " << count << " elements, shape " << shape
                             << ", seed " << seed);
                std::string all, expectedBytes;
                std::vector<std::string> expected(count);
                for (std::size_t i = 0; i < count; ++i) {
                    const std::size_t value = shape == 0   ? i
                                              : shape == 1 ? count - i
                                              : shape == 2 ? random()
                                              : shape == 3 ? 7
                                                           : random() % 10;
                    const auto high = static_cast<char>(value >> 8), low = static_cast<char>(value);
                    expected[i] = std::string(size, low);  // the rest goes with the key
                    expected[i][0] = high;
                    all += expected[i];
                }
                std::sort(expected.begin(), expected.end());
                SortElements(all.data(), size, count, CompareFirstBytes);
                for (const std::string& element : expected) {
                    expectedBytes += element;
                }
                EXPECT_TRUE(all == expectedBytes);
            }
        }
    }
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
    const std::int32_t compare = HandleFromPointer(reinterpret_cast<void*>(CompareNumbers));
    const std::int32_t compareStrings = HandleFromPointer(reinterpret_cast<void*>(CompareStrings));
    std::int32_t numbers[] = {3, 1, 2};
    const struct {
        void* array;
        std::int32_t size, count, function;
        HRESULT status;
    } table[] = {{numbers, 4, 3, 0, S_FALSE},
                 {numbers, 4, 0, compare, S_OK},
                 {nullptr, 4, -1, compare + 1000, S_OK},
                 {numbers, 4, 1, compare, S_OK},
                 {numbers, 4, 3, compare + 1000, E_INVALIDARG},
                 {numbers, 0, 3, compare, E_INVALIDARG},
                 {nullptr, 4, 3, compare, E_POINTER}};
    calls = 0;
    for (const auto& [array, size, count, function, status] : table) {
        EXPECT_EQ(sort->Sort(array, size, count, function), status);
    }
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(numbers[0], 3);
    EXPECT_EQ(sort->Sort(numbers, 4, 3, compare), S_OK);
    EXPECT_TRUE(std::is_sorted(std::begin(numbers), std::end(numbers)));

    SAFEARRAY* strings = SafeArrayCreateVector(VT_BSTR, -3, 40);
    auto* const data = static_cast<BSTR*>(strings->pvData);
    for (std::size_t i = 0; i < 40; ++i) {
        data[i] = Bstr(std::u16string(1, static_cast<char16_t>(u'A' + i * 7 % 40))).Release();
    }
    EXPECT_EQ(sort->StringSort(&strings, 0), S_FALSE);
    EXPECT_EQ(sort->StringSort(&strings, compareStrings), S_OK);
    EXPECT_EQ(strings->cLocks, 0u);
    EXPECT_TRUE(std::is_sorted(data, data + 40, [](BSTR a, BSTR b) { return *a < *b; }));
    SafeArrayDestroy(strings);
    SAFEARRAY* none = nullptr;
    SAFEARRAY* wrong = SafeArrayCreateVector(VT_I4, 0, 2);
    EXPECT_EQ(sort->StringSort(&none, compareStrings), E_INVALIDARG);
    EXPECT_EQ(sort->StringSort(nullptr, compareStrings), E_POINTER);
    EXPECT_EQ(sort->StringSort(&wrong, compareStrings), E_INVALIDARG);
    SafeArrayDestroy(wrong);
    ReleaseHandle(compare);
    ReleaseHandle(compareStrings);
}

}  // namespace
}  // namespace generalutilities
