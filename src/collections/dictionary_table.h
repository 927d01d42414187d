#pragma once

#include <generalutilities/automation/pointers.h>

#include "collections/key_index.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

/// The entries behind `qlnDictionary`, in an order that follows from the operations alone.
///
/// Integers, strings and yes/no values lie in buckets. Buckets stand in the order in which they
/// received their first entry, and the entries of one bucket ascend: integers by value, then
/// strings without regard to the case of A to Z, then with regard to it. A yes/no value compares
/// with values of its kind alone, so it is the same key as whatever came first into its bucket, and
/// the other way round.
///
/// A key of any other type (a double, a date, an object, nothing at all) is equal to keys of the
/// same type and value only: numbers by their bytes, objects by identity, arrays by bounds and
/// elements. Such keys come last, in the order in which they were added.
///
/// The hash that chooses the bucket has few values for short texts that differ in their digits, and
/// thousands of keys may share one. So nothing is looked for in a bucket, but in an index with a
/// hash of its own, and a bucket is put in order when somebody asks for the order.
///
/// Keys and items are owned. No by-reference value may be given.
namespace generalutilities {

struct alignas(64) DictionaryEntry {
    static constexpr std::uint32_t None = KeyIndex::None;

    Variant key;
    Variant item;
    std::uint32_t identityHash = 0;
    std::uint32_t bucketHash = 0;   ///< of a key that lies in a bucket
    std::uint32_t next = None;      ///< the number of another entry of the bucket, or the
    std::uint32_t previous = None;  ///< neighbours among the keys that lie in none
};

class DictionaryTable {
  public:
    DictionaryTable();
    ~DictionaryTable();
    DictionaryTable(const DictionaryTable&) = delete;
    DictionaryTable& operator=(const DictionaryTable&) = delete;

    std::size_t Count() const { return count; }

    /// The entry of a key, or null. It stays where it is until an entry is removed.
    DictionaryEntry* Find(const VARIANT& key);

    /// Adds an entry for a key that is not there. Throws std::bad_alloc and changes nothing.
    void Insert(Variant key, Variant item);

    /// Gives an entry another key, which is not there. Throws std::bad_alloc and changes nothing.
    void Rename(DictionaryEntry& entry, Variant key);

    /// What was taken out. A value that is given up may be an object which calls back, so that it
    /// must not go before the table is in order.
    struct Removed {
        Variant key;
        Variant item;
    };
    Removed Remove(DictionaryEntry& entry);

    /// Takes all entries out; the number of buckets stays.
    void RemoveAll();

    /// Calls `visit(entry)` for all entries in order, as long as it succeeds. Throws
    /// std::bad_alloc.
    template <class Visit>
    HRESULT VisitAll(Visit visit) {
        std::vector<std::uint32_t> order = ByBuckets();
        HRESULT status = S_OK;
        for (std::size_t place = 0, end = 0; place < order.size() && Succeeded(status); ++place) {
            end = place == end ? SortBucket(order, place) : end;
            status = visit(At(order[place]));
        }
        return status;
    }

  private:
    static constexpr std::uint32_t None = DictionaryEntry::None;
    static constexpr std::size_t BlockSize = 32;
    static constexpr std::size_t Ahead = 16;  ///< so many texts are fetched in advance
    using Block = std::array<DictionaryEntry, BlockSize>;

    /// Those that hold something are a list in their order.
    struct Bucket {
        std::uint32_t first = None;  ///< its entries are a list in no order
        std::uint32_t count = 0;
        std::uint32_t previous = None;
        std::uint32_t next = None;
        std::uint32_t place = 0;  ///< in what `ByBuckets` gives
    };

    DictionaryEntry& At(std::size_t number) {
        return (*blocks[number / BlockSize])[number % BlockSize];
    }
    std::uint32_t NumberOf(const DictionaryEntry& entry);
    std::uint32_t BucketNumber(std::uint32_t hash) const {
        return hash & static_cast<std::uint32_t>(buckets.size() - 1);
    }
    Bucket& BucketOf(const DictionaryEntry& entry) {
        return buckets[BucketNumber(entry.bucketHash)];
    }
    std::uint32_t& LinkTo(std::uint32_t number);
    DictionaryEntry* FindByOrder(const Bucket& bucket, const VARIANT& key);
    void Enter(std::uint32_t number);
    void Leave(std::uint32_t number);
    void EnterList(std::uint32_t number);
    void LeaveList(std::uint32_t number);
    void FillGap(std::uint32_t number);
    void Grow();
    std::vector<std::uint32_t> ByBuckets();
    std::size_t SortBucket(std::vector<std::uint32_t>& order, std::size_t first);

    std::vector<std::unique_ptr<Block>> blocks;  ///< the numbers of entries are without gaps
    std::uint32_t count = 0;
    KeyIndex index;
    std::vector<Bucket> buckets;
    std::uint32_t firstBucket = None;
    std::uint32_t lastBucket = None;
    std::uint32_t countInBuckets = 0;
    std::uint32_t yesNoCount = 0;
    std::uint32_t lastOther = None;  ///< the newest of the keys without a bucket
};

}  // namespace generalutilities
