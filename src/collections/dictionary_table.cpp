#include "collections/dictionary_table.h"

#include "collections/dictionary_keys.h"

namespace generalutilities {
namespace {

constexpr std::size_t FirstBucketCount = 8;
constexpr std::size_t MaxLoad = 4;
/// A growth is three doublings, of which those beyond this are left out.
constexpr std::size_t EnoughBuckets = 0x1FFFFFFF;

}  // namespace

DictionaryTable::DictionaryTable() : buckets(FirstBucketCount) {}

DictionaryTable::~DictionaryTable() {
    RemoveAll();
}

DictionaryEntry* DictionaryTable::Find(const VARIANT& key) {
    if (!IsTableKey(key.vt)) {
        return FindOther(key, OtherKeyHash(key));
    }
    const std::uint32_t hash = KeyHash(key);
    const Bucket& bucket = BucketOf(hash);
    if (bucket.first == nullptr) {
        return nullptr;
    }
    const DictionaryEntry* const behind = bucket.last->next;
    if (key.vt == VT_BOOL || bucket.first->key.Get().vt == VT_BOOL) {
        DictionaryEntry* entry = bucket.first;
        while (entry != behind && KeyLess(entry->key.Get(), key)) {
            entry = entry->next;
        }
        return entry != behind && !KeyLess(key, entry->key.Get()) ? entry : nullptr;
    }
    // Without yes/no values the bucket is in order, and the same key has the same hash.
    for (DictionaryEntry* entry = bucket.first; entry != behind; entry = entry->next) {
        if (entry->hash == hash && SameTableKey(entry->key.Get(), key)) {
            return entry;
        }
    }
    return nullptr;
}

DictionaryEntry* DictionaryTable::FindOther(const VARIANT& key, std::uint32_t hash) {
    const auto [begin, end] = otherByHash.equal_range(hash);
    for (auto place = begin; place != end; ++place) {
        if (SameOtherKey((*place->second)->key.Get(), key)) {
            return place->second->get();
        }
    }
    return nullptr;
}

DictionaryEntry& DictionaryTable::Insert(Variant key, Variant item) {
    auto entry = std::make_unique<DictionaryEntry>();
    entry->key = std::move(key);
    entry->item = std::move(item);
    if (!IsTableKey(entry->key.Get().vt)) {
        entry->hash = OtherKeyHash(entry->key.Get());
        others.push_back(std::move(entry));
        const auto place = std::prev(others.end());
        try {
            otherByHash.emplace((*place)->hash, place);
        } catch (...) {
            others.pop_back();
            throw;
        }
        return **place;
    }
    entry->hash = KeyHash(entry->key.Get());
    Link(*entry);
    if (count > buckets.size() * MaxLoad && buckets.size() < EnoughBuckets) {
        try {
            Grow();
        } catch (...) {
            Unlink(*entry);
            throw;
        }
    }
    return *entry.release();
}

DictionaryEntry& DictionaryTable::Rename(DictionaryEntry& entry, Variant key) {
    if (!IsTableKey(entry.key.Get().vt) || !IsTableKey(key.Get().vt)) {
        DictionaryEntry& renamed = Insert(std::move(key), {});
        std::swap(renamed.item, entry.item);
        Remove(entry);
        return renamed;
    }
    // Out first and then in: the entry may leave its bucket empty and be the first to come back.
    Unlink(entry);
    std::swap(entry.key, key);
    entry.hash = KeyHash(entry.key.Get());
    Link(entry);
    return entry;
}

/// Puts an entry into its bucket's order, and into the list of all.
void DictionaryTable::Link(DictionaryEntry& entry) {
    Bucket& bucket = BucketOf(entry.hash);
    DictionaryEntry* before = bucket.first == nullptr ? last : bucket.last;
    if (bucket.first != nullptr) {
        const DictionaryEntry* const front = bucket.first->previous;
        while (before != front && KeyLess(entry.key.Get(), before->key.Get())) {
            before = before->previous;
        }
    }
    entry.previous = before;
    entry.next = before == nullptr ? first : before->next;
    (entry.previous == nullptr ? first : entry.previous->next) = &entry;
    (entry.next == nullptr ? last : entry.next->previous) = &entry;
    if (bucket.first == nullptr || bucket.first->previous == &entry) {
        bucket.first = &entry;
    }
    if (bucket.last == nullptr || bucket.last->next == &entry) {
        bucket.last = &entry;
    }
    ++count;
}

void DictionaryTable::Unlink(DictionaryEntry& entry) {
    Bucket& bucket = BucketOf(entry.hash);
    if (bucket.first == bucket.last) {
        bucket = {};
    } else if (bucket.first == &entry) {
        bucket.first = entry.next;
    } else if (bucket.last == &entry) {
        bucket.last = entry.previous;
    }
    (entry.previous == nullptr ? first : entry.previous->next) = entry.next;
    (entry.next == nullptr ? last : entry.next->previous) = entry.previous;
    --count;
}

/// Eight times the buckets; all entries are put in once more, in the order in which they stand.
void DictionaryTable::Grow() {
    std::size_t size = buckets.size();
    for (int doubling = 0; doubling < 3 && size < EnoughBuckets; ++doubling) {
        size *= 2;
    }
    buckets = std::vector<Bucket>(size);
    DictionaryEntry* entry = std::exchange(first, nullptr);
    last = nullptr;
    count = 0;
    while (entry != nullptr) {
        Link(*std::exchange(entry, entry->next));
    }
}

std::unique_ptr<DictionaryEntry> DictionaryTable::Remove(DictionaryEntry& entry) {
    if (IsTableKey(entry.key.Get().vt)) {
        Unlink(entry);
        return std::unique_ptr<DictionaryEntry>(&entry);
    }
    const auto [begin, end] = otherByHash.equal_range(entry.hash);
    for (auto place = begin; place != end; ++place) {
        if (place->second->get() == &entry) {
            std::unique_ptr<DictionaryEntry> removed = std::move(*place->second);
            others.erase(place->second);
            otherByHash.erase(place);
            return removed;
        }
    }
    return nullptr;
}

void DictionaryTable::RemoveAll() {
    DictionaryEntry* entry = std::exchange(first, nullptr);
    last = nullptr;
    count = 0;
    std::fill(buckets.begin(), buckets.end(), Bucket());
    otherByHash.clear();
    const Others removedOthers = std::move(others);
    others.clear();
    while (entry != nullptr) {
        delete std::exchange(entry, entry->next);
    }
}

}  // namespace generalutilities
