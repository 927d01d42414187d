#include <generalutilities/extview/export_options.h>
#include <generalutilities/project/status_names.h>

#include <algorithm>
#include <charconv>

namespace generalutilities {
namespace {

struct NamedBit {
    std::int32_t bit;
    std::u16string_view name;
};

constexpr NamedBit Names[] = {
    {StatusExact, u"exact"},
    {StatusFuzzy, u"fuzzy"},
    {StatusAssembled, u"assembled"},
    {StatusPropagated, u"propagated"},
    {StatusAutoPropagated, u"auto-propagated"},
    {StatusMachineTranslated, u"machine"},
    {StatusLocked, u"locked"},
    {StatusPending, u"pending"},
    {StatusGuaranteed, u"guaranteed"},
    {StatusExactExtra, u"exact-extra"},
};

std::u16string_view Trim(std::u16string_view text) {
    const std::size_t first = text.find_first_not_of(u" \t");
    return first == std::u16string_view::npos
               ? std::u16string_view()
               : text.substr(first, text.find_last_not_of(u" \t") + 1 - first);
}

std::optional<std::int32_t> ParseNumber(std::u16string_view text) {
    std::string digits;
    for (const char16_t unit : text) {
        digits += unit < 0x80 ? static_cast<char>(unit) : '?';
    }
    int base = 10;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
        digits.erase(0, 2);
        base = 16;
    }
    std::int32_t number = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number, base);
    return error == std::errc() && stop == end && number >= 0 ? std::optional(number)
                                                              : std::nullopt;
}

std::optional<std::int32_t> ParseOne(std::u16string_view text) {
    std::u16string lower;
    for (const char16_t unit : text) {
        lower += unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
    }
    if (lower == u"none") {
        return 0;
    }
    for (const auto& [bit, name] : Names) {
        if (lower == name) {
            return bit;
        }
    }
    return ParseNumber(lower);
}

}  // namespace

std::u16string StatusText(std::int32_t status) {
    if (status == 0) {
        return u"none";
    }
    std::u16string text;
    const auto add = [&text](std::u16string_view part) {
        text.append(text.empty() ? u"" : u"+").append(part);
    };
    auto rest = static_cast<std::uint32_t>(status);
    for (const auto& [bit, name] : Names) {
        if ((status & bit) != 0) {
            add(name);
            rest &= ~static_cast<std::uint32_t>(bit);
        }
    }
    if (rest != 0) {
        char digits[11] = {'0', 'x'};
        const char* end = std::to_chars(digits + 2, digits + sizeof digits, rest, 16).ptr;
        add(std::u16string(static_cast<const char*>(digits), end));
    }
    return text;
}

std::optional<std::int32_t> ParseStatus(std::u16string_view text) {
    std::int32_t status = 0;
    if (Trim(text).empty()) {
        return status;
    }
    for (std::size_t first = 0; first <= text.size();) {
        const std::size_t end = std::min(text.find_first_of(u"+,|", first), text.size());
        const auto bits = ParseOne(Trim(text.substr(first, end - first)));
        if (!bits) {
            return std::nullopt;
        }
        status |= *bits;
        first = end + 1;
    }
    return status;
}

std::u16string StatusNameList() {
    std::u16string list;
    for (const auto& [bit, name] : Names) {
        list.append(list.empty() ? u"" : u", ").append(name);
    }
    return list;
}

}  // namespace generalutilities
