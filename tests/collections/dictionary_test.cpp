// What a table of calls cannot hold: keys of odd types, and items that call back.

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/collections.h>

#include "frame/values.h"

namespace generalutilities {
namespace {

class DictionaryTest : public testing::Test {
  protected:
    std::int32_t Count() {
        std::int32_t count = -1;
        EXPECT_EQ(dictionary->get_Count(&count), S_OK);
        return count;
    }

    ComPtr<IQLNDictionary> dictionary =
        Create<IQLNDictionary>(CLSID_qlnDictionary, IID_IQLNDictionary);
};

TEST_F(DictionaryTest, FindsKeysOfEveryTypeByTheirOwnValue) {
    double half = 0.5;
    VARIANT real = Of(VT_R8, 0), decimal = Of(VT_DECIMAL, 5);
    real.dblVal = half;
    decimal.wReserved1 = 2;
    VARIANT date = real;
    date.vt = VT_DATE;
    const auto other = Create<IQLNDictionary>(CLSID_qlnDictionary, IID_IQLNDictionary);
    VARIANT objects[] = {Of(VT_DISPATCH), Of(VT_DISPATCH)};
    objects[0].pdispVal = dictionary.Get();
    objects[1].pdispVal = other.Get();
    Variant arrays[3];
    for (std::int32_t i = 0; i < 3; ++i) {
        const Bstr text(i == 2 ? u"different" : u"same");
        std::int32_t index = 0;
        arrays[i].InOut()->vt = VT_ARRAY | VT_BSTR;
        arrays[i].InOut()->parray = SafeArrayCreateVector(VT_BSTR, 0, 1);
        SafeArrayPutElement(arrays[i].Get().parray, &index, text.Get());
    }
    VARIANT keys[] = {Of(VT_I4, 0),    Of(VT_R8, 0),    real,         date,
                      Of(VT_EMPTY),    Of(VT_NULL),     objects[0],   objects[1],
                      Of(VT_I2, 5),    Of(VT_UI1, 5),   Of(VT_I4, 5), Of(VT_I8, 5),
                      arrays[0].Get(), arrays[2].Get(), decimal,      Of(VT_DECIMAL, 5)};
    for (std::int32_t i = 0; i < std::ssize(keys); ++i) {
        VARIANT item = Of(VT_I4, i);
        ASSERT_EQ(dictionary->Add(&keys[i], &item), S_OK);
    }
    EXPECT_EQ(Count(), std::ssize(keys));
    const auto expectItem = [&](VARIANT key, std::int32_t expected) {
        Variant item;
        ASSERT_EQ(dictionary->get_Item(&key, item.Out()), S_OK);
        EXPECT_EQ(item.Get().lVal, expected) << key.vt;
    };
    for (std::int32_t i = 0; i < std::ssize(keys); ++i) {
        expectItem(keys[i], i);
    }
    expectItem(Ref(VT_R8, &half), 2);
    expectItem(Of(VT_UI4, 5), 10);
    expectItem(Of(VT_UINT, 5), 10);
    expectItem(arrays[1].Get(), 12);
    expectItem(Ref(VT_DECIMAL, &decimal), 14);
    Variant order;
    EXPECT_EQ(dictionary->Keys(order.Out()), S_OK);
    EXPECT_EQ(static_cast<VARIANT*>(order.Get().parray->pvData)[1].lVal, 5)
        << "integers come before doubles";
    for (VARIANT& key : keys) {
        EXPECT_EQ(dictionary->Remove(&key), S_OK);
    }
    EXPECT_EQ(Count(), 0);
}

/// An item that empties the dictionary when it is let go.
struct Emptier : Local<IUnknown> {
    explicit Emptier(IQLNDictionary& ofWhom) : dictionary(ofWhom) {}
    std::uint32_t Release() noexcept override {
        if (--references == 0) {
            dictionary.RemoveAll();
        }
        return references;
    }
    IQLNDictionary& dictionary;
};

TEST_F(DictionaryTest, IsInOrderWhenAnItemCallsBack) {
    VARIANT five = Of(VT_I4, 5);
    for (const int way : {0, 1, 2}) {
        Emptier emptier(*dictionary.Get());
        VARIANT item{};
        item.vt = VT_UNKNOWN;
        item.punkVal = &emptier;
        ASSERT_EQ(dictionary->Add(&five, &item), S_OK);
        way == 0   ? dictionary->Add(&five, &five)
        : way == 1 ? dictionary->Remove(&five)
                   : dictionary->RemoveAll();
        EXPECT_EQ(Count(), 0);
        EXPECT_EQ(emptier.references, 0u);
    }
}

}  // namespace
}  // namespace generalutilities
