// The dictionary beside a plain one: lists of lists, written from the rules alone.

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/collections.h>

#include "frame/values.h"

#include <algorithm>
#include <cctype>
#include <list>
#include <random>
#include <tuple>
#include <vector>

namespace generalutilities {
namespace {

/// A key of the plain dictionary: a VT_I4, a VT_BOOL or an ASCII text.
struct Key {
    int type;
    std::int32_t number = 0;
    std::string text;

    VARIANT Value() const {
        VARIANT value = Of(type, number);
        if (type == VT_BSTR) {
            value.bstrVal = Bstr(std::u16string(text.begin(), text.end())).Release();
        }
        return value;
    }
    std::uint32_t Hash() const {
        auto hash = static_cast<std::uint32_t>(number);
        for (const char c : text) {
            hash = hash * 5 + static_cast<unsigned char>(c);
        }
        return hash;
    }
};

/// Whether `a` stands before `b`: numbers, texts without regard to case and then with it. Yes/no
/// values compare with their kind alone, no before yes.
bool Less(const Key& a, const Key& b) {
    const auto order = [](const Key& key) {
        std::string lower = key.text;
        std::transform(lower.begin(), lower.end(), lower.begin(), ::tolower);
        return std::tuple(key.type == VT_BOOL ? -key.number : key.number, lower, key.text);
    };
    return a.type == b.type ? order(a) < order(b) : a.type == VT_I4 && b.type == VT_BSTR;
}

class PlainDictionary {
  public:
    struct Entry {
        Key key;
        int item;
    };

    Entry* Find(const Key& key) {
        for (Entry& entry : BucketOf(key)) {
            if (!Less(entry.key, key)) {
                return Less(key, entry.key) ? nullptr : &entry;
            }
        }
        return nullptr;
    }
    void Put(const Key& key, int item) {
        if (Entry* const entry = Find(key)) {
            entry->item = item;
            return;
        }
        Insert({key, item});
        if (const std::vector<Entry> all = Entries(); all.size() > 4 * buckets.size()) {
            buckets = std::vector<std::list<Entry>>(buckets.size() * 8);
            order.clear();
            std::for_each(all.begin(), all.end(), [this](const Entry& entry) { Insert(entry); });
        }
    }
    void Remove(const Key& key) {
        if (Entry* const found = Find(key)) {
            auto& bucket = BucketOf(key);
            bucket.remove_if([found](const Entry& entry) { return &entry == found; });
            if (bucket.empty()) {
                order.remove(&bucket);
            }
        }
    }
    void Rename(const Key& from, const Key& to) {
        Entry* const old = Find(from);
        if (Find(to) == nullptr) {
            const int item = old == nullptr ? 0 : old->item;
            Remove(from);
            Put(to, item);
        }
    }
    std::vector<Entry> Entries() const {
        std::vector<Entry> all;
        for (const auto* bucket : order) {
            all.insert(all.end(), bucket->begin(), bucket->end());
        }
        return all;
    }

  private:
    std::list<Entry>& BucketOf(const Key& key) { return buckets[key.Hash() % buckets.size()]; }
    void Insert(const Entry& entry) {
        auto& bucket = BucketOf(entry.key);
        if (bucket.empty()) {
            order.push_back(&bucket);
        }
        bucket.insert(std::find_if(bucket.begin(), bucket.end(),
                                   [&](const Entry& each) { return Less(entry.key, each.key); }),
                      entry);
    }

    std::vector<std::list<Entry>> buckets{8};
    std::list<const std::list<Entry>*> order;  ///< the buckets that hold something
};

class DictionaryTest : public testing::Test {
  protected:
    std::vector<VARIANT> List(HRESULT (IQLNDictionary::*list)(VARIANT*)) {
        EXPECT_EQ((dictionary.Get()->*list)(array.Out()), S_OK);
        const VARIANT& given = array.Get();
        EXPECT_EQ(given.vt, VT_ARRAY | VT_VARIANT);
        EXPECT_EQ(given.parray->rgsabound[0].lLbound, 1);
        const auto* data = static_cast<const VARIANT*>(given.parray->pvData);
        return {data, data + given.parray->rgsabound[0].cElements};
    }
    std::int32_t Count() {
        std::int32_t count = -1;
        EXPECT_EQ(dictionary->get_Count(&count), S_OK);
        return count;
    }

    ComPtr<IQLNDictionary> dictionary =
        Create<IQLNDictionary>(CLSID_qlnDictionary, IID_IQLNDictionary);
    Variant array;
};

TEST_F(DictionaryTest, KeepsTheOrderThatFollowsFromTheOperations) {
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    SCOPED_TRACE(seed);
    const auto randomKey = [&random]() -> Key {
        switch (random() % 8) {
            case 0:
                return {VT_BOOL, random() % 2 == 0 ? VARIANT_TRUE : VARIANT_FALSE, {}};
            case 1:
            case 2:
            case 3: {
                Key key{VT_BSTR, 0, std::string(random() % 4, ' ')};
                std::generate(key.text.begin(), key.text.end(),
                              [&random] { return "aAbB_[zZ"[random() % 8]; });
                return key;
            }
            default:
                return {VT_I4, static_cast<std::int32_t>(random() % 2000) - 1000, {}};
        }
    };
    for (int round = 0; round < 20; ++round) {
        PlainDictionary plain;
        ASSERT_EQ(dictionary->RemoveAll(), S_OK);
        dictionary = Create<IQLNDictionary>(CLSID_qlnDictionary, IID_IQLNDictionary);
        for (int step = 0; step < 1500; ++step) {
            const Key key = randomKey();
            Variant value;
            *value.InOut() = key.Value();
            switch (random() % 6) {
                case 0:
                    plain.Remove(key);
                    ASSERT_EQ(dictionary->Remove(value.InOut()), S_OK);
                    break;
                case 1: {
                    const Key other = randomKey();
                    Variant otherValue;
                    *otherValue.InOut() = other.Value();
                    plain.Rename(key, other);
                    ASSERT_EQ(dictionary->put_Key(value.InOut(), otherValue.InOut()), S_OK);
                    break;
                }
                default:
                    plain.Put(key, step);
                    VARIANT item = Long(step);
                    ASSERT_EQ(dictionary->Add(value.InOut(), &item), S_OK);
            }
            VARIANT_BOOL exists = VARIANT_FALSE;
            ASSERT_EQ(dictionary->Exists(value.InOut(), &exists), S_OK);
            ASSERT_EQ(exists != VARIANT_FALSE, plain.Find(key) != nullptr);
        }
        const std::vector<PlainDictionary::Entry> expected = plain.Entries();
        const std::vector<VARIANT> keys = List(&IQLNDictionary::Keys);
        ASSERT_EQ(keys.size(), expected.size());
        for (std::size_t i = 0; i < keys.size(); ++i) {
            Variant key;
            *key.InOut() = expected[i].key.Value();
            ASSERT_EQ(keys[i].vt, key.Get().vt) << i;
            ASSERT_EQ(Text(keys[i]), Text(key.Get())) << i;
        }
        const std::vector<VARIANT> items = List(&IQLNDictionary::Items);
        for (std::size_t i = 0; i < items.size(); ++i) {
            ASSERT_EQ(items[i].vt == VT_I4 ? items[i].lVal : 0, expected[i].item) << i;
        }
    }
}

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
    EXPECT_EQ(List(&IQLNDictionary::Keys)[1].lVal, 5) << "integers come before doubles";
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
