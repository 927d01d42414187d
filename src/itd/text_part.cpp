// The stream and its pieces. All of it but the header is a multiple of two bytes long, so a copy of
// the stream from the first record on, aligned for units, serves the records as it is; positions in
// bytes are needed only where markers are searched for, which may stand at any alignment.

#include <generalutilities/itd/text_part.h>

#include <algorithm>

namespace generalutilities {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t HeadSize = sizeof(ItdBlock);
constexpr std::size_t StatusEntrySize = 20;
constexpr std::size_t NotFound = std::string_view::npos;
constexpr std::string_view Marker = "\xFF\xFE"sv;

template <class Number>
Number ReadNumber(std::string_view bytes, std::size_t at) {
    Number number;
    std::memcpy(&number, bytes.data() + at, sizeof number);
    return number;
}

template <class Number>
void AppendBytes(std::string& out, const Number& number) {
    out.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void AppendUnits(std::string& out, std::u16string_view units) {
    out.append(reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t));
}

/// The length in the form that it calls for.
void AppendLength(std::string& out, std::size_t length) {
    out += '\xFF';
    if (length < 0xFF) {
        out += static_cast<char>(length);
    } else if (length < 0xFFFF) {
        out += '\xFF';
        AppendBytes(out, static_cast<std::uint16_t>(length));
    } else {
        out += "\xFF\xFF\xFF";
        AppendBytes(out, static_cast<std::uint32_t>(length));
    }
}

void AppendRecord(std::string& out, const ItdRecord& record) {
    AppendBytes(out, record.block);
    out += Marker;
    AppendLength(out, record.text.size());
    AppendUnits(out, record.text);
}

void AppendSection(std::string& out, const std::vector<ItdSegment>& segments) {
    for (const ItdSegment& segment : segments) {
        for (const ItdRecord& record : segment) {
            AppendRecord(out, record);
        }
    }
}

/// Reads one text part. Everything is a step forward through the bytes.
class TextPartParser {
  public:
    TextPartParser(std::string_view data, std::uint32_t entries, ItdDocument& result)
        : bytes(data), statusEntryCount(entries), document(result) {}

    ItdParse Parse() {
        const std::size_t run = bytes.find("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv);
        if (run == NotFound) {
            return ItdParse::NoTextPart;
        }
        // The status table stands a little behind that run, or else behind the last record.
        constexpr std::size_t TableSign = 34;
        if (bytes.size() - run <= TableSign) {
            return ItdParse::FaultyStream;
        }
        const bool early = bytes[run + TableSign] != '\xFF';
        const std::size_t table = run + TableSign + 4;
        if (early && !ReadStatusEntries(table)) {
            return ItdParse::FaultyStream;
        }
        // Statuses and scores may look like a marker; the first record stands behind them.
        const std::size_t tableEnd = document.statusEntries.empty()
                                         ? 0
                                         : table + document.statusEntries.size() * StatusEntrySize;
        const std::size_t marker = bytes.find(Marker, tableEnd + HeadSize);
        if (marker == NotFound) {
            return ItdParse::FaultyStream;
        }
        document.headerBytes = bytes.substr(0, marker - HeadSize);
        Align(marker - HeadSize);
        if (!ReadSection(document.sourceSegments) || !GoToTarget() ||
            !ReadSection(document.targetSegments) ||
            (!early && !ReadStatusEntries(position + 22))) {
            return ItdParse::FaultyStream;
        }
        document.footerBytes = bytes.substr(position);
        return ItdParse::Complete;
    }

  private:
    bool ReadStatusEntries(std::size_t at) {
        if (statusEntryCount != 0 &&
            (at > bytes.size() || (bytes.size() - at) / StatusEntrySize < statusEntryCount)) {
            return false;
        }
        document.statusEntries.reserve(statusEntryCount);
        for (std::uint32_t i = 0; i < statusEntryCount; ++i, at += StatusEntrySize) {
            document.statusEntries.push_back(
                {ReadNumber<std::uint32_t>(bytes, at + 8), ReadNumber<double>(bytes, at + 12)});
        }
        return true;
    }

    /// Makes `units` begin at a position in the bytes.
    void Align(std::size_t at) {
        position = at;
        if (units.data() == nullptr || (at - unitsStart) % sizeof(char16_t) != 0) {
            unitsStart = at;
            const std::size_t count = (bytes.size() - at) / sizeof(char16_t);
            auto copy = std::make_unique_for_overwrite<char16_t[]>(count);
            std::memcpy(copy.get(), bytes.data() + at, count * sizeof(char16_t));
            units = document.Keep(std::move(copy), count);
        }
    }

    /// What stands at the position and behind it.
    std::u16string_view Rest() const {
        return units.substr((position - unitsStart) / sizeof(char16_t));
    }

    /// From the head of a section's first record to behind its last record.
    bool ReadSection(std::vector<ItdSegment>& segments) {
        const std::u16string_view section = Rest();
        ItdRecord record;
        std::size_t segmentStart = 0;
        std::uint32_t sid = 0;
        for (std::size_t at = 0;;) {
            const std::size_t length = ReadItdRecord(section.substr(at), record);
            if (length == 0) {
                return false;
            }
            if (at != segmentStart && record.block.sid != sid) {
                segments.emplace_back(section.substr(segmentStart, at - segmentStart));
                segmentStart = at;
            }
            sid = record.block.sid;
            at += length;
            if (record.block.f2 == ItdLastOfSection) {
                segments.emplace_back(section.substr(segmentStart, at - segmentStart));
                position += at * sizeof(char16_t);
                return true;
            }
        }
    }

    /// Over the comment table, if there is one, and the section word.
    ///
    /// What stands between the sections tells itself only by where the next marker is found. The
    /// search begins behind the last record: its own bytes, down to its marker, may look like one.
    bool GoToTarget() {
        const std::u16string_view rest = Rest();
        const bool hasComments = rest.size() >= 2 && rest[0] != 0 && rest[1] == ItdMarker;
        if (hasComments && !ReadComments()) {
            return false;
        }
        // The section word and the head of the first target record lie before its marker.
        const std::size_t nearest = position + 2 + HeadSize;
        std::size_t marker = bytes.find(Marker, position);
        if (marker < nearest || !IsRecordMarker(marker)) {
            // The section word or the head holds FF FE. The record is where it has to be, or
            // nowhere.
            const bool escaped = bytes.substr(position, 2) == "\xFF\xFF"sv;
            marker = escaped && !IsRecordMarker(nearest) ? nearest + 4 : nearest;
            if (!IsRecordMarker(marker)) {
                return false;
            }
        }
        ReadSectionWord(marker - HeadSize);
        Align(marker - HeadSize);
        return true;
    }

    /// A marker and the first byte of the length behind it.
    bool IsRecordMarker(std::size_t at) const {
        return at < bytes.size() && bytes.substr(at, 3) == "\xFF\xFE\xFF"sv;
    }

    /// Ends before the head of the first target record.
    void ReadSectionWord(std::size_t end) {
        // Where there is room for the short form alone, what looks like the escape of the long one
        // is the end of the text before.
        const bool escaped = end >= position + 6 && bytes.substr(end - 6, 2) == "\xFF\xFF"sv;
        document.sectionWord = escaped ? ReadNumber<std::uint32_t>(bytes, end - 4)
                                       : ReadNumber<std::uint16_t>(bytes, end - 2);
        document.gapBytes = bytes.substr(position, end - (escaped ? 6 : 2) - position);
    }

    bool ReadComments() {
        const std::u16string_view table = Rest();
        std::size_t at = 1;
        for (std::size_t i = 0; i < table[0]; ++i) {
            std::u16string_view text;
            if (at >= table.size() || table[at] != ItdMarker) {
                return false;
            }
            const std::size_t length = ReadItdText(table.substr(at + 1), text);
            if (length == 0) {
                return false;
            }
            if (text.size() >= 2 && text[0] == ItdMarker) {
                text.remove_prefix(1);
            }
            document.commentStrings.emplace_back(text);
            at += 1 + length;
        }
        position += at * sizeof(char16_t);
        return true;
    }

    std::string_view bytes;
    std::uint32_t statusEntryCount;
    ItdDocument& document;
    std::size_t position = 0;   ///< in bytes
    std::u16string_view units;  ///< the bytes from `unitsStart` on
    std::size_t unitsStart = 0;
};

/// Steps through the text part's header; behind the end everything reads as 0.
class HeaderBytes {
  public:
    explicit HeaderBytes(std::string_view part) : bytes(part) {}

    std::size_t Position() const { return position; }
    bool IsWhole() const { return position <= bytes.size(); }

    std::string_view Take(std::size_t count) {
        const std::string_view taken =
            IsWhole() ? bytes.substr(position, count) : std::string_view();
        position += count;
        return taken;
    }
    template <class Number>
    Number Take() {
        const std::string_view taken = Take(sizeof(Number));
        return taken.size() == sizeof(Number) ? ReadNumber<Number>(taken, 0) : Number{};
    }
    /// A string behind a byte that tells its length.
    std::u16string TakeShortString() {
        const std::string_view text = Take(Take<std::uint8_t>());
        std::u16string wide;
        for (const char unit : text) {
            wide += static_cast<unsigned char>(unit);
        }
        return wide;
    }

  private:
    std::string_view bytes;
    std::size_t position = 0;
};

/// Over the wide string that some headers have; false where its length is in no known form.
bool SkipWideString(HeaderBytes& header) {
    const auto form = header.Take<std::uint16_t>();
    if ((form & 0xFF) != 0xFF) {
        return false;
    }
    const std::size_t length = form == 0xFFFF ? header.Take<std::uint16_t>() : form >> 8;
    header.Take(length * sizeof(char16_t));
    return true;
}

}  // namespace

ItdSegment ItdDocument::Store(std::span<const ItdRecord> records) {
    std::string stream;
    for (const ItdRecord& record : records) {
        AppendRecord(stream, record);
    }
    auto units = std::make_unique_for_overwrite<char16_t[]>(stream.size() / sizeof(char16_t));
    std::memcpy(units.get(), stream.data(), stream.size());
    return ItdSegment(Keep(std::move(units), stream.size() / sizeof(char16_t)));
}

std::u16string_view ItdDocument::Keep(std::unique_ptr<char16_t[]> units, std::size_t count) {
    return {storage.emplace_back(std::move(units)).get(), count};
}

ItdParse ParseTextHeader(std::string_view bytes, ItdTextHeader& header) {
    HeaderBytes rest(bytes);
    rest.Take(8);
    const auto kind = rest.Take<std::uint8_t>();
    if (kind == 0xFF) {
        rest.Take(1);
        if (!SkipWideString(rest)) {
            return ItdParse::UnknownTextHeader;
        }
        rest.TakeShortString();
        rest.Take(1);
    }
    rest.Take(12);
    header.sourceLanguageOffset = rest.Position();
    header.sourceLanguage = rest.TakeShortString();
    header.targetLanguageOffset = rest.Position();
    header.targetLanguage = rest.TakeShortString();
    rest.Take(4);
    for (int i = 0; i < 3; ++i) {
        rest.TakeShortString();
    }
    header.statusEntryCount = rest.Take<std::uint32_t>();
    rest.Take(4);
    return rest.IsWhole() ? ItdParse::Complete : ItdParse::UnknownTextHeader;
}

ItdParse ParseTextPart(std::string_view bytes, std::uint32_t statusEntryCount,
                       ItdDocument& document) {
    document = ItdDocument();
    return TextPartParser(bytes, statusEntryCount, document).Parse();
}

std::string SerializeTextPart(const ItdDocument& document) {
    std::string stream;
    std::size_t size = document.headerBytes.size() + document.footerBytes.size() + 2048;
    for (const auto* column : {&document.sourceSegments, &document.targetSegments}) {
        for (const ItdSegment& segment : *column) {
            size += segment.Stored().size() * sizeof(char16_t);
        }
    }
    stream.reserve(size);
    stream += document.headerBytes;
    AppendSection(stream, document.sourceSegments);
    if (!document.commentStrings.empty()) {
        AppendBytes(stream, static_cast<std::uint16_t>(document.commentStrings.size()));
        for (const std::u16string& comment : document.commentStrings) {
            const bool marked = comment.starts_with(ItdMarker);
            stream += Marker;
            AppendLength(stream, comment.size() + (marked ? 0 : 1));
            stream += marked ? ""sv : Marker;
            AppendUnits(stream, comment);
        }
    }
    stream += document.gapBytes;
    if (document.sectionWord > 0xFFFF) {
        stream += "\xFF\xFF";
        AppendBytes(stream, document.sectionWord);
    } else {
        AppendBytes(stream, static_cast<std::uint16_t>(document.sectionWord));
    }
    AppendSection(stream, document.targetSegments);
    stream += document.footerBytes;
    return stream;
}

std::optional<ItdLanguageCodePlace> FindLanguageCode(std::u16string_view text) {
    constexpr std::u16string_view Opening = u"lc=\"";
    const std::size_t found = text.find(Opening);
    if (found == NotFound) {
        return std::nullopt;
    }
    const std::size_t start = found + Opening.size();
    return ItdLanguageCodePlace{start, std::min(text.find(u'"', start), text.size()) - start};
}

std::u16string LanguageCodeOfFileLine(std::span<const ItdSegment> segments) {
    if (!segments.empty()) {
        for (const ItdRecord& record : segments.front()) {
            if (record.block.f2 == ItdFileLine) {
                const auto place = FindLanguageCode(record.text);
                return std::u16string(place ? record.text.substr(place->start, place->length)
                                            : std::u16string_view());
            }
        }
    }
    return {};
}

}  // namespace generalutilities
