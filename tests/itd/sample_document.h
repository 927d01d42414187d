// Documents made in memory: one by hand, and random ones with what the format makes hard to read.

#pragma once

#include <generalutilities/itd/text_part.h>

#include <random>

namespace generalutilities {

/// The bytes before the first record: no wide string, and the status table, if it is early, in
/// place. `odd` makes them one byte longer.
inline std::string SampleHeader(std::uint32_t entries, bool early, bool odd = false) {
    using namespace std::string_literals;
    std::string header(21, '\0');
    header +=
        "\x05"
        "en-US\x05"
        "de-DE"s +
        std::string(4, '\0') + "\0"s;
    header += odd ? "\x02xy\x01z"s : "\x02xy\x02zz"s;
    header.append(reinterpret_cast<const char*>(&entries), 4);
    header += std::string(4, '\0') + std::string(8, '\xFF') + std::string(26, '\x01');
    header += (early ? '\0' : '\xFF') + "\0\0\0"s;
    return header;
}

/// A status table; entry i has the status i + 1 and the score (i + 1) / 4. Its unknown bytes look
/// like the marker of a record.
inline std::string SampleStatusTable(std::uint32_t entries) {
    std::string table;
    for (std::uint32_t status = 1; status <= entries; ++status) {
        const double score = status / 4.0;
        table += "\xFF\xFE\xFF\2\2\2\2\2";
        table.append(reinterpret_cast<const char*>(&status), 4);
        table.append(reinterpret_cast<const char*>(&score), 8);
    }
    return table;
}

/// Neither its heads nor its section word hold FF FE.
inline ItdDocument RandomDocument(std::mt19937& random) {
    const auto below = [&random](std::uint32_t limit) {
        return static_cast<std::uint32_t>(random() % limit);
    };
    const auto word = [&] {
        constexpr std::uint32_t Words[] = {0, 0x20, 0xFF, 0xFF00, 0xFFFF, 0x10000, 0x7FFFFFFF};
        return Words[below(std::size(Words))];
    };
    const auto text = [&] {
        constexpr std::uint32_t Lengths[] = {254, 255, 65534, 65535};
        constexpr char16_t Units[] = {u'a', 0xFEFF, 0xFFFF, 0xFF01, 0xFE, 0xD800, 0};
        std::u16string units(below(500) == 0 ? Lengths[below(4)] : below(5), u'x');
        for (std::size_t i = units.size() - std::min<std::size_t>(units.size(), 4);
             i < units.size(); ++i) {
            units[i] = Units[below(std::size(Units))];
        }
        return units;
    };
    ItdDocument document;
    const std::uint32_t entries = below(3);
    const bool early = below(2) == 0;
    document.headerBytes = SampleHeader(entries, early, below(2) == 0);
    (early ? document.headerBytes : document.footerBytes = std::string(22, '\x03')) +=
        SampleStatusTable(entries);
    for (std::uint32_t i = 1; i <= entries; ++i) {
        document.statusEntries.push_back({i, i / 4.0});
    }
    const std::uint32_t count = 1 + below(4);
    for (auto* column : {&document.sourceSegments, &document.targetSegments}) {
        for (std::uint32_t i = 1; i <= count; ++i) {
            std::vector<std::u16string> texts(1 + below(3));
            std::vector<ItdRecord> records;
            for (std::u16string& units : texts) {
                const bool last = i == count && &units == &texts.back();
                units = text();
                records.push_back(
                    {{word(), last ? ItdLastOfSection : 1 + below(64), word(), i}, units});
            }
            column->push_back(document.Store(records));
        }
    }
    for (std::uint32_t i = below(3); i != 0; --i) {
        const std::u16string comment = text();
        document.commentStrings.push_back(comment.empty() || comment[0] == ItdMarker ? u"\uFEFF"
                                                                                     : comment);
    }
    document.gapBytes = std::string(below(3) == 0 ? below(40) : 0, '\5');
    document.sectionWord = word();
    return document;
}

}  // namespace generalutilities
