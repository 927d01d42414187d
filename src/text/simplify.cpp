// SimplifyString: the punctuation of all scripts in plain ASCII, so that texts can be compared by
// eye and by machine. The rows below are turned into a table by code unit while compiling.

#include <generalutilities/text/words.h>

#include <array>

namespace generalutilities {
namespace {

struct PunctuationRow {
    char16_t result;
    std::u16string_view units;
};

constexpr PunctuationRow Punctuation[] = {
    {u'!', u"\u055C\uFE57\uFF01"},
    {u'"', u"\u00AB\u00BB\u201C\u201D\u201E\u201F\u301D\u301E\u301F\uFF02"},
    {u'\'', u"\u02BC\u055A\u2018\u2019\u201A\u201B\u2039\u203A\uFF07"},
    {u'(',
     u"[{\u2045\u207D\u208D\u2329\u3008\u300A\u300C\u300E\u3010\u3014\u3016\u3018\u301A\uFD3E"
     u"\uFE35\uFE37\uFE39\uFE3B\uFE3D\uFE3F\uFE41\uFE43\uFE59\uFE5B\uFE5D\uFF08\uFF3B\uFF5B"
     u"\uFF62"},
    {u')',
     u"]}\u2046\u207E\u208E\u232A\u3009\u300B\u300D\u300F\u3011\u3015\u3017\u3019\u301B\uFD3F"
     u"\uFE36\uFE38\uFE3A\uFE3C\uFE3E\uFE40\uFE42\uFE44\uFE5A\uFE5C\uFE5E\uFF09\uFF3D\uFF5D"
     u"\uFF63"},
    {u',', u"\u055D\u3001\uFE50\uFE51\uFF0C\uFF64"},
    {u'-',
     u"\u00AD\u058A\u1806\u2010\u2011\u2012\u2013\u2014\u2015\u301C\u3030\uFE31\uFE32\uFE58"
     u"\uFE63\uFF0D"},
    {u'.', u"\u0589\u3002\uFE52\uFF0E\uFF61"},
    {u':', u"\uFE55\uFF1A"},
    {u';', u"\uFE54\uFF1B"},
    {u'?', u"\u037E\u055E\uFE56\uFF1F"},
};

constexpr std::int32_t Greek = 1032;  // ";" ends a Greek question

/// For each code unit the row of its high byte (row 0 is empty) and in that row its result or 0.
struct PunctuationTable {
    std::array<std::uint8_t, 256> index{};
    std::array<std::array<char, 256>, 16> rows{};
};

constexpr PunctuationTable Table = [] {
    PunctuationTable table;
    std::uint8_t rows = 1;
    for (const PunctuationRow& row : Punctuation) {
        for (const char16_t unit : row.units) {
            std::uint8_t& index = table.index[unit >> 8];
            if (index == 0) {
                index = rows++;
            }
            table.rows[index][unit & 0xFF] = static_cast<char>(row.result);
        }
    }
    return table;
}();

}  // namespace

void SimplifyTo(std::u16string_view text, std::int32_t lcid, char16_t* out) {
    for (const char16_t unit : text) {
        const char plain = Table.rows[Table.index[unit >> 8]][unit & 0xFF];
        *out++ = plain != 0                      ? static_cast<char16_t>(plain)
                 : unit == u';' && lcid == Greek ? u'?'
                                                 : unit;
    }
}

std::u16string SimplifyString(std::u16string_view text, std::int32_t lcid) {
    std::u16string result(text.substr(0, text.find(u'\0')));
    SimplifyTo(result, lcid, result.data());
    return result;
}

}  // namespace generalutilities
