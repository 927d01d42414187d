#pragma once

#include <generalutilities/automation/pointers.h>

#include <cstdint>
#include <list>
#include <memory>
#include <unordered_map>
#include <vector>

/// The entries behind `qlnDictionary`, in an order that follows from the operations alone.
///
/// Integers, strings and yes/no values lie in a hash table with chained buckets. Buckets stand in
/// the order in which they received their first entry, and the entries of one bucket ascend:
/// integers by value, then strings without regard to the case of A to Z, then with regard to it.
/// A yes/no value compares with values of its kind alone, so it is the same key as whatever came
/// first into its bucket, and the other way round.
///
/// A key of any other type (a double, a date, an object, nothing at all) is equal to keys of the
/// same type and value only: numbers by their bytes, objects by identity, arrays by bounds and
/// elements. Such keys come last, in the order in which they were added.
///
/// Keys and items are owned. No by-reference value may be given.
namespace generalutilities {

struct DictionaryEntry {
    Variant key;
    Variant item;
    std::uint32_t hash = 0;
    DictionaryEntry* previous = nullptr;
    DictionaryEntry* next = nullptr;
};

class DictionaryTable {
  public:
    DictionaryTable();
    ~DictionaryTable();
    DictionaryTable(const DictionaryTable&) = delete;
    DictionaryTable& operator=(const DictionaryTable&) = delete;

    std::size_t Count() const { return count + others.size(); }

    /// The entry of a key, or null.
    DictionaryEntry* Find(const VARIANT& key);

    /// Adds an entry for a key that is not there. Throws std::bad_alloc and changes nothing.
    DictionaryEntry& Insert(Variant key, Variant item);

    /// Gives an entry another key, which is not there. Throws std::bad_alloc and changes nothing.
    DictionaryEntry& Rename(DictionaryEntry& entry, Variant key);

    /// Takes an entry out and hands it over: a value that is given up may be an object which calls
    /// back, so that it must not go before the table is in order.
    std::unique_ptr<DictionaryEntry> Remove(DictionaryEntry& entry);

    /// Takes all entries out; the number of buckets stays.
    void RemoveAll();

    /// Calls `visit(entry)` for all entries in order, as long as it succeeds.
    template <class Visit>
    HRESULT VisitAll(Visit visit) const {
        HRESULT status = S_OK;
        for (const DictionaryEntry* entry = first; entry != nullptr && Succeeded(status);
             entry = entry->next) {
            status = visit(*entry);
        }
        for (auto other = others.begin(); other != others.end() && Succeeded(status); ++other) {
            status = visit(**other);
        }
        return status;
    }

  private:
    /// The entries of one bucket are neighbours in the list of all entries.
    struct Bucket {
        DictionaryEntry* first = nullptr;
        DictionaryEntry* last = nullptr;
    };
    using Others = std::list<std::unique_ptr<DictionaryEntry>>;

    Bucket& BucketOf(std::uint32_t hash) { return buckets[hash & (buckets.size() - 1)]; }
    DictionaryEntry* FindOther(const VARIANT& key, std::uint32_t hash);
    void Link(DictionaryEntry& entry);
    void Unlink(DictionaryEntry& entry);
    void Grow();

    DictionaryEntry* first = nullptr;
    DictionaryEntry* last = nullptr;
    std::size_t count = 0;
    std::vector<Bucket> buckets;
    Others others;
    std::unordered_multimap<std::uint32_t, Others::iterator> otherByHash;
};

}  // namespace generalutilities
