#include "collections/dictionary_table.h"

#include "collections/dictionary_keys.h"

#include <algorithm>
#include <new>
#include <utility>

namespace generalutilities {
namespace {

constexpr std::size_t FirstBucketCount = 8;
constexpr std::size_t MaxLoad = 4;
/// A growth is three doublings, of which those beyond this are left out.
constexpr std::size_t EnoughBuckets = 0x1FFFFFFF;

bool HasBucket(const DictionaryEntry& entry) {
    return IsBucketKey(entry.key.Get().vt);
}

bool IsYesNo(const DictionaryEntry& entry) {
    return entry.key.Get().vt == VT_BOOL;
}

}  // namespace

DictionaryTable::DictionaryTable() : buckets(FirstBucketCount) {}

DictionaryTable::~DictionaryTable() {
    RemoveAll();
}

DictionaryEntry* DictionaryTable::Find(const VARIANT& key) {
    if (key.vt == VT_BOOL || (yesNoCount > 0 && IsBucketKey(key.vt))) {
        const Bucket& bucket = buckets[BucketNumber(BucketHash(key))];
        if (bucket.first != None && (key.vt == VT_BOOL || IsYesNo(At(bucket.first)))) {
            return FindByOrder(bucket, key);
        }
    }
    const std::uint32_t number = index.Find(IdentityHash(key), [&](std::uint32_t candidate) {
        return SameKey(At(candidate).key.Get(), key);
    });
    return number != None ? &At(number) : nullptr;
}

/// The first entry in the order of the bucket that is not less than the key, if it is not greater.
DictionaryEntry* DictionaryTable::FindByOrder(const Bucket& bucket, const VARIANT& key) {
    DictionaryEntry* found = nullptr;
    for (std::uint32_t number = bucket.first; number != None; number = At(number).next) {
        DictionaryEntry& entry = At(number);
        if (!KeyLess(entry.key.Get(), key) &&
            (found == nullptr || KeyLess(entry.key.Get(), found->key.Get()))) {
            found = &entry;
        }
    }
    return found != nullptr && !KeyLess(key, found->key.Get()) ? found : nullptr;
}

void DictionaryTable::Insert(Variant key, Variant item) {
    if (count == None) {
        throw std::bad_alloc();
    }
    index.Reserve();
    if (count == blocks.size() * BlockSize) {
        blocks.push_back(std::make_unique<Block>());
    }
    DictionaryEntry& entry = At(count);
    entry.key = std::move(key);
    entry.item = std::move(item);
    Enter(count++);
    if (countInBuckets > buckets.size() * MaxLoad && buckets.size() < EnoughBuckets) {
        try {
            Grow();
        } catch (...) {
            Remove(entry);
            throw;
        }
    }
}

void DictionaryTable::Rename(DictionaryEntry& entry, Variant key) {
    if (HasBucket(entry) && IsBucketKey(key.Get().vt)) {
        // Out first and then in: the entry may leave its bucket empty and be the first to come
        // back.
        const std::uint32_t number = NumberOf(entry);
        Leave(number);
        entry.key = std::move(key);
        Enter(number);
    } else {
        Insert(std::move(key), {});
        std::swap(At(count - 1).item, entry.item);
        Remove(entry);
    }
}

std::uint32_t DictionaryTable::NumberOf(const DictionaryEntry& entry) {
    return index.Find(entry.identityHash,
                      [&](std::uint32_t candidate) { return &At(candidate) == &entry; });
}

/// Where the number of an entry stands in its list. That of a bucket is searched: it is short but
/// for odd keys, and its entries do not touch each other when one comes in.
std::uint32_t& DictionaryTable::LinkTo(std::uint32_t number) {
    const DictionaryEntry& entry = At(number);
    if (!HasBucket(entry)) {
        return entry.previous == None ? lastOther : At(entry.previous).next;
    }
    std::uint32_t* link = &BucketOf(entry).first;
    while (*link != number) {
        link = &At(*link).next;
    }
    return *link;
}

/// Makes an entry one that is found by the key it holds. Room in the index must have been made.
void DictionaryTable::Enter(std::uint32_t number) {
    DictionaryEntry& entry = At(number);
    const VARIANT& key = entry.key.Get();
    entry.identityHash = IdentityHash(key);
    entry.bucketHash = HasBucket(entry) ? BucketHash(key) : 0;
    index.Insert(entry.identityHash, number);
    EnterList(number);
}

void DictionaryTable::Leave(std::uint32_t number) {
    index.Erase(At(number).identityHash, number);
    LeaveList(number);
}

void DictionaryTable::EnterList(std::uint32_t number) {
    DictionaryEntry& entry = At(number);
    if (!HasBucket(entry)) {
        entry.previous = None;
        entry.next = std::exchange(lastOther, number);
        if (entry.next != None) {
            At(entry.next).previous = number;
        }
        return;
    }
    Bucket& bucket = BucketOf(entry);
    entry.next = std::exchange(bucket.first, number);
    if (bucket.count++ == 0) {
        const auto own = static_cast<std::uint32_t>(&bucket - buckets.data());
        bucket.previous = lastBucket;
        bucket.next = None;
        (lastBucket == None ? firstBucket : buckets[lastBucket].next) = own;
        lastBucket = own;
    }
    ++countInBuckets;
    yesNoCount += IsYesNo(entry) ? 1 : 0;
}

void DictionaryTable::LeaveList(std::uint32_t number) {
    const DictionaryEntry& entry = At(number);
    LinkTo(number) = entry.next;
    if (!HasBucket(entry)) {
        if (entry.next != None) {
            At(entry.next).previous = entry.previous;
        }
        return;
    }
    Bucket& bucket = BucketOf(entry);
    if (--bucket.count == 0) {
        (bucket.previous == None ? firstBucket : buckets[bucket.previous].next) = bucket.next;
        (bucket.next == None ? lastBucket : buckets[bucket.next].previous) = bucket.previous;
    }
    --countInBuckets;
    yesNoCount -= IsYesNo(entry) ? 1 : 0;
}

DictionaryTable::Removed DictionaryTable::Remove(DictionaryEntry& entry) {
    const std::uint32_t number = NumberOf(entry);
    Leave(number);
    Removed removed{std::move(entry.key), std::move(entry.item)};
    if (--count != number) {
        FillGap(number);
    }
    if (blocks.size() > count / BlockSize + 2) {
        blocks.pop_back();
    }
    return removed;
}

/// Gives the last entry the number of one that is gone.
void DictionaryTable::FillGap(std::uint32_t number) {
    DictionaryEntry& last = At(count);
    index.Renumber(last.identityHash, count, number);
    LinkTo(count) = number;
    if (!HasBucket(last) && last.next != None) {
        At(last.next).previous = number;
    }
    At(number) = std::move(last);
}

void DictionaryTable::RemoveAll() {
    const std::vector<std::unique_ptr<Block>> removed = std::exchange(blocks, {});
    index = KeyIndex();
    std::fill(buckets.begin(), buckets.end(), Bucket());
    firstBucket = lastBucket = lastOther = None;
    count = countInBuckets = yesNoCount = 0;
}

/// Eight times the buckets; all entries are put in once more, in the order in which they stand.
void DictionaryTable::Grow() {
    std::size_t size = buckets.size();
    for (int doubling = 0; doubling < 3 && size < EnoughBuckets; ++doubling) {
        size *= 2;
    }
    std::vector<std::uint32_t> order = ByBuckets();
    order.resize(countInBuckets);
    for (std::size_t place = 0; place < order.size();) {
        place = SortBucket(order, place);
    }
    buckets = std::vector<Bucket>(size);
    firstBucket = lastBucket = None;
    countInBuckets = yesNoCount = 0;
    for (const std::uint32_t number : order) {
        EnterList(number);
    }
}

/// The numbers of all entries: those of each bucket together, then those that lie in none.
std::vector<std::uint32_t> DictionaryTable::ByBuckets() {
    std::vector<std::uint32_t> order(count);
    std::uint32_t place = 0;
    for (std::uint32_t i = firstBucket; i != None; i = buckets[i].next) {
        buckets[i].place = place;
        place += buckets[i].count;
    }
    for (std::uint32_t number = 0; number < count; ++number) {
        if (const DictionaryEntry& entry = At(number); HasBucket(entry)) {
            order[BucketOf(entry).place++] = number;
        }
    }
    place = count;
    for (std::uint32_t number = lastOther; number != None; number = At(number).next) {
        order[--place] = number;
    }
    return order;
}

/// Sorts the bucket that begins at a place of such numbers; where it ends.
std::size_t DictionaryTable::SortBucket(std::vector<std::uint32_t>& order, std::size_t first) {
    std::size_t end = first;
    const std::uint32_t hash = At(order[first]).bucketHash;
    do {
        // What comes next lies anywhere in memory: it is fetched while these are compared.
        if (end + 2 * Ahead < order.size()) {
            __builtin_prefetch(&At(order[end + 2 * Ahead]));
            __builtin_prefetch(At(order[end + Ahead]).key.Get().bstrVal);
        }
        ++end;
    } while (end < countInBuckets && BucketNumber(At(order[end]).bucketHash ^ hash) == 0);
    const auto begin = order.begin();
    std::sort(begin + static_cast<std::ptrdiff_t>(first), begin + static_cast<std::ptrdiff_t>(end),
              [this](std::uint32_t left, std::uint32_t right) {
                  return KeyLess(At(left).key.Get(), At(right).key.Get());
              });
    return end;
}

}  // namespace generalutilities
