#include "text/flat_tables.h"

#include "text/char_tables.h"

#include <stdexcept>

namespace generalutilities::flat {
namespace {

/// What `make` says of each code unit and its entry in a table of two stages. Row by row and
/// through pointers, since compilers limit the steps of what they compute.
template <typename Entry, typename RowEntry, std::size_t Size>
constexpr Table<Entry> Spread(const std::array<std::uint8_t, 2048>& index,
                              const std::array<RowEntry, Size>& rows,
                              Entry (*make)(char16_t, RowEntry)) {
    Table<Entry> table{};
    Entry* out = table.data();
    char16_t unit = 0;
    for (const std::uint8_t number : index) {
        const RowEntry* row = rows.data() + std::size_t{number} * 32;
        for (int i = 0; i < 32; ++i) {
            *out++ = make(unit++, row[i]);
        }
    }
    return table;
}

constexpr char16_t Moved(char16_t unit, std::uint16_t distance) {
    return static_cast<char16_t>(unit + distance);
}

constexpr char16_t Replaced(char16_t unit, std::uint16_t entry) {
    return entry != 0 ? static_cast<char16_t>(entry) : unit;
}

constexpr std::uint8_t WithKind(char16_t unit, std::uint8_t classes) {
    const bool special = (classes & charclass::Number) != 0 || unit == u'&' || unit == u'\'';
    const std::uint8_t kind = special                                 ? KindSpecial
                              : (classes & charclass::EastAsian) != 0 ? KindEastAsian
                              : (classes & charclass::Letter) != 0    ? KindLetter
                                                                      : 0;
    return static_cast<std::uint8_t>(classes | kind);
}

constexpr Pages PagesOf(const Table<char16_t>& mapped) {
    Pages pages{};
    std::size_t unit = FirstPage * PageSize;
    for (Page& page : pages) {
        for (std::int8_t& distance : page) {
            const int wanted = mapped[unit] - static_cast<int>(unit);
            distance = static_cast<std::int8_t>(wanted);
            if (distance != wanted) {
                throw std::logic_error("a distance that does not fit into a byte");
            }
            ++unit;
        }
    }
    return pages;
}

}  // namespace

constexpr Table<char16_t> Upper = Spread(tables::UpperCaseIndex, tables::UpperCaseRows, Moved);
constexpr Table<char16_t> Lower = Spread(tables::LowerCaseIndex, tables::LowerCaseRows, Moved);
constexpr Table<char16_t> Unaccented =
    Spread(tables::AccentFoldIndex, tables::AccentFoldRows, Replaced);

constexpr Table<std::uint8_t> Classes =
    Spread(tables::CharCategoryIndex, tables::CharClassRows, WithKind);

constexpr Pages UpperPages = PagesOf(Upper);
constexpr Pages LowerPages = PagesOf(Lower);

}  // namespace generalutilities::flat
