#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The text part of an ITD document: the segments of both columns, as one stream of records.
///
/// A document is the stream cut into pieces, so that what is not understood goes back as it came.
/// Records stay in the form that they have in the stream, in memory that the document owns; an
/// `ItdSegment` is a view of a run of them, and reading a record's text copies nothing.
/// docs/itd.md has the form of the stream.
namespace generalutilities {

/// What a parser found; the numbers are the format's own.
enum class ItdParse : int {
    Complete = 0,
    UnknownTextHeader = 257,
    NoTextPart = 513,    ///< no bytes, or no run of eight 0xFF bytes among them
    FaultyStream = 514,  ///< any other fault
};

/// Values of `ItdBlock::f2` with a meaning of their own.
inline constexpr std::uint32_t ItdLastOfSection = 0x80000002;  ///< the last record of a section
inline constexpr std::uint32_t ItdFileLine = 4;                ///< its text holds lc="..."

inline constexpr char16_t ItdMarker = 0xFEFF;  ///< stands before each text of the stream

/// The head of a record. `pid` and `f3` are carried through.
struct ItdBlock {
    std::uint32_t pid = 0;
    std::uint32_t f2 = 0;  ///< what kind of record it is
    std::uint32_t f3 = 0;
    std::uint32_t sid = 0;  ///< number of the segment that the record belongs to

    /// Whether the record's text is translatable; that of all others is a code.
    bool IsTranslatable() const { return (f2 & 0xFF000020) == 0x20; }
    friend bool operator==(const ItdBlock&, const ItdBlock&) = default;
};

/// One record. The text points to where the record is stored.
struct ItdRecord {
    ItdBlock block;
    std::u16string_view text;

    friend bool operator==(const ItdRecord&, const ItdRecord&) = default;
};

/// Reads the length and the text with which `stream` begins. Gives how many units they take, or 0
/// where no whole text stands.
inline std::size_t ReadItdText(std::u16string_view stream, std::u16string_view& text) {
    if (stream.empty() || (stream[0] & 0xFF) != 0xFF) {
        return 0;
    }
    std::size_t start = 1;
    std::size_t length = stream[0] >> 8;
    if (stream[0] == 0xFFFF) {
        // The longer forms: the length in one unit, or behind another 0xFFFF in two.
        start = stream.size() > 1 && stream[1] == 0xFFFF ? 4 : 2;
        if (stream.size() < start) {
            return 0;
        }
        length = start == 2 ? stream[1] : stream[2] | std::size_t{stream[3]} << 16;
    }
    if (length > stream.size() - start) {
        return 0;
    }
    text = stream.substr(start, length);
    return start + length;
}

/// Reads the record with which `stream` begins. Gives how many units it takes, or 0 where no whole
/// record stands.
inline std::size_t ReadItdRecord(std::u16string_view stream, ItdRecord& record) {
    constexpr std::size_t Marker = sizeof(ItdBlock) / sizeof(char16_t);
    if (stream.size() <= Marker || stream[Marker] != ItdMarker) {
        return 0;
    }
    const std::size_t length = ReadItdText(stream.substr(Marker + 1), record.text);
    if (length == 0) {
        return 0;
    }
    // The stream is little-endian, as every processor that we build for.
    std::array<std::uint32_t, 4> head;
    std::memcpy(head.data(), stream.data(), sizeof head);
    record.block = {head[0], head[1], head[2], head[3]};
    return Marker + 1 + length;
}

/// A segment: the neighbouring records of one section that have the same `sid`, at least one.
///
///     for (const ItdRecord& record : segment) ...
class ItdSegment {
  public:
    /// Reads one record after the other.
    class Iterator {
      public:
        using value_type = ItdRecord;
        using difference_type = std::ptrdiff_t;

        Iterator() = default;
        explicit Iterator(std::u16string_view stored) : rest(stored) { ++*this; }
        const ItdRecord& operator*() const { return record; }
        const ItdRecord* operator->() const { return &record; }
        Iterator& operator++() {
            length = ReadItdRecord(rest, record);
            rest.remove_prefix(length);
            return *this;
        }
        Iterator operator++(int) {
            Iterator before = *this;
            ++*this;
            return before;
        }
        friend bool operator==(const Iterator& a, std::default_sentinel_t) { return a.length == 0; }

      private:
        std::u16string_view rest;
        ItdRecord record;
        std::size_t length = 0;  ///< of the record; 0 behind the last one
    };

    ItdSegment() = default;
    /// `records` are whole records, stored as in the stream.
    explicit ItdSegment(std::u16string_view records) : stored(records) {}

    std::u16string_view Stored() const { return stored; }
    Iterator begin() const { return Iterator(stored); }
    std::default_sentinel_t end() const { return {}; }
    /// Whether the records are the same, stored in the same form.
    friend bool operator==(const ItdSegment&, const ItdSegment&) = default;

  private:
    std::u16string_view stored;
};

/// Of a segment with translatable text; the values are the outside tool's.
struct ItdStatusEntry {
    std::uint32_t status = 0;
    double score = 0;

    friend bool operator==(const ItdStatusEntry&, const ItdStatusEntry&) = default;
};

/// A document, filled by `ParseTextPart` or piece by piece. It can be moved, and its segments stay
/// valid; it cannot be copied.
struct ItdDocument {
    std::string headerBytes;  ///< the stream before the first record
    /// One for each segment with translatable text, in order. Read only: their bytes are in
    /// `headerBytes` or `footerBytes`, from where they go back to the stream.
    std::vector<ItdStatusEntry> statusEntries;
    std::vector<ItdSegment> sourceSegments;
    std::vector<std::u16string> commentStrings;  ///< string i belongs to segment i; at most 65535
    std::string gapBytes;                        ///< unknown bytes before the section word, if any
    std::uint32_t sectionWord = 0;
    std::vector<ItdSegment> targetSegments;
    std::string footerBytes;  ///< the stream behind the last record

    /// Stores records and gives them as a segment, to be put in the place of another one.
    ItdSegment Store(std::span<const ItdRecord> records);
    /// Takes units that segments will be views of.
    std::u16string_view Keep(std::unique_ptr<char16_t[]> units, std::size_t count);

  private:
    std::vector<std::unique_ptr<char16_t[]>> storage;
};

/// What the header of the text part tells.
struct ItdTextHeader {
    std::u16string sourceLanguage;         ///< one byte a character in the stream
    std::size_t sourceLanguageOffset = 0;  ///< of its length byte, from the start of the part
    std::u16string targetLanguage;
    std::size_t targetLanguageOffset = 0;
    std::uint32_t statusEntryCount = 0;
};

/// Reads the header: `Complete` or `UnknownTextHeader`.
ItdParse ParseTextHeader(std::string_view bytes, ItdTextHeader& header);

/// Reads a whole text part, which is copied. After a fault the document holds what was read up to
/// it. Linear in time and memory. Throws `std::bad_alloc`.
ItdParse ParseTextPart(std::string_view bytes, std::uint32_t statusEntryCount,
                       ItdDocument& document);

/// The stream of a document. Throws `std::bad_alloc`.
std::string SerializeTextPart(const ItdDocument& document);

/// Where the language code stands in the text of a file line: between lc=" and the next double
/// quote, or the end of the text.
struct ItdLanguageCodePlace {
    std::size_t start = 0;
    std::size_t length = 0;
};
/// The first place; nothing without one.
std::optional<ItdLanguageCodePlace> FindLanguageCode(std::u16string_view text);

/// The language code of the first file line in the first segment; empty when there is none.
std::u16string LanguageCodeOfFileLine(std::span<const ItdSegment> segments);

}  // namespace generalutilities
