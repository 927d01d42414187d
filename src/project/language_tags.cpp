// A tag is cut into language, script and region, and the first row of the table that has all the
// given parts answers. The table's order puts a language's usual region first.

#include <generalutilities/project/language_tags.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace generalutilities {
namespace {

struct TagRow {
    std::int32_t langId;
    std::u16string_view tag;
    std::u16string_view impliedScript;
};

constexpr TagRow Table[] = {
#include "project/language_tag_table.inc"
};

/// Other codes of the same languages, from older standards and common use.
constexpr std::array<std::u16string_view, 2> LanguageAliases[] = {
    {u"no", u"nb"},  {u"iw", u"he"},  {u"in", u"id"}, {u"ji", u"yi"},
    {u"tl", u"fil"}, {u"qu", u"quz"}, {u"mo", u"ro"}, {u"ku", u"ckb"},
};

/// The scripts that locale names spell out behind "@".
constexpr std::array<std::u16string_view, 2> ModifierScripts[] = {
    {u"latin", u"latn"}, {u"cyrillic", u"cyrl"}, {u"arabic", u"arab"}, {u"devanagari", u"deva"}};

char16_t LowerAscii(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

std::u16string LowerAscii(std::u16string_view text) {
    std::u16string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char16_t unit) { return LowerAscii(unit); });
    return lower;
}

struct TagParts {
    std::u16string language;
    std::u16string script;  ///< empty: not given
    std::u16string region;  ///< the region and all behind it; empty: not given
};

/// Cuts a lower-case tag with "-" between its parts.
TagParts Cut(std::u16string_view tag) {
    TagParts parts;
    const std::size_t languageEnd = std::min(tag.find(u'-'), tag.size());
    parts.language = tag.substr(0, languageEnd);
    std::u16string_view rest = tag.substr(std::min(languageEnd + 1, tag.size()));
    const std::size_t scriptEnd = std::min(rest.find(u'-'), rest.size());
    if (scriptEnd == 4 && rest[0] >= u'a') {
        parts.script = rest.substr(0, scriptEnd);
        rest = rest.substr(std::min(scriptEnd + 1, rest.size()));
    }
    parts.region = rest;
    return parts;
}

/// A script goes without saying where the table names none: "en-Latn-GB" is "en-GB".
std::optional<std::int32_t> Find(const TagParts& wanted) {
    for (const TagRow& row : Table) {
        const TagParts parts = Cut(LowerAscii(row.tag));
        const std::u16string script =
            parts.script.empty() ? LowerAscii(row.impliedScript) : parts.script;
        if (parts.language == wanted.language &&
            (wanted.region.empty() || wanted.region == parts.region) &&
            (wanted.script.empty() || wanted.script == script ||
             (script.empty() && !wanted.region.empty()))) {
            return row.langId;
        }
    }
    return std::nullopt;
}

std::optional<std::int32_t> ParseNumber(std::u16string_view text) {
    std::string digits(text.begin(), text.end());
    int base = 10;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        digits.erase(0, 2);
        base = 16;
    }
    std::int32_t number = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number, base);
    if (error != std::errc() || stop != end || number < 1 || number > 0xFFFF) {
        return std::nullopt;
    }
    return number;
}

}  // namespace

std::optional<std::int32_t> LangIdOfTag(std::u16string_view tag) {
    if (!std::all_of(tag.begin(), tag.end(), [](char16_t unit) { return unit < 0x80; })) {
        return std::nullopt;
    }
    if (!tag.empty() && tag[0] >= u'0' && tag[0] <= u'9') {
        return ParseNumber(tag);
    }
    std::u16string lower = LowerAscii(tag);
    std::replace(lower.begin(), lower.end(), u'_', u'-');
    const std::size_t modifier = std::min(lower.find(u'@'), lower.size());
    const std::u16string name = lower.substr(0, std::min(lower.find(u'.'), modifier));
    TagParts wanted = Cut(name);
    for (const auto& [text, script] : ModifierScripts) {
        if (modifier < lower.size() && lower.substr(modifier + 1) == text) {
            wanted.script = script;
        }
    }
    if (wanted.language == u"sh") {  // Serbo-Croatian: Serbian in Latin letters
        wanted.language = u"sr";
        wanted.script = u"latn";
    }
    for (const auto& [alias, language] : LanguageAliases) {
        if (wanted.language == alias) {
            wanted.language = language;
        }
    }
    return Find(wanted);
}

std::u16string TagOfLangId(std::int32_t langId) {
    for (const TagRow& row : Table) {
        if (row.langId == langId) {
            return std::u16string(row.tag);
        }
    }
    const std::string digits = std::to_string(langId);
    return std::u16string(digits.begin(), digits.end());
}

}  // namespace generalutilities
