// Conversion between variant types, without regard to locale.
//
// Every source becomes one of four intermediate values: nothing, an integer (64 bits and a sign), a
// floating-point number, or a text. The target is made from that. Fractions round to the nearest
// even integer; a value outside the target's range is DISP_E_OVERFLOW; what has no meaning as the
// target (null, errors, objects, "abc" as a number) is DISP_E_TYPEMISMATCH.

#include <generalutilities/automation/functions.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <variant>

namespace generalutilities {

namespace {

struct Integer {
    std::uint64_t magnitude = 0;
    bool negative = false;
};

using Intermediate = std::variant<std::monostate, Integer, double, std::u16string_view>;

Integer FromSigned(std::int64_t value) {
    return value < 0 ? Integer{~static_cast<std::uint64_t>(value) + 1, true}
                     : Integer{static_cast<std::uint64_t>(value), false};
}

/// The scale and the sign stand in the bytes of the first reserved word.
double FromDecimal(const VARIANT& decimal) {
    const std::uint32_t high = decimal.wReserved2 | std::uint32_t{decimal.wReserved3} << 16;
    const double digits = std::ldexp(high, 64) + static_cast<double>(decimal.ullVal);
    const double size = digits / std::pow(10.0, decimal.wReserved1 & 0xFF);
    return decimal.wReserved1 >> 15 != 0 ? -size : size;
}

/// The value of a direct (not by-reference) variant; a status where there is none.
HRESULT Read(const VARIANT& source, Intermediate& value) {
    switch (source.vt) {
        case VT_EMPTY:
            value = std::monostate();
            return S_OK;
        case VT_I1:
            value = FromSigned(source.cVal);
            return S_OK;
        case VT_I2:
        case VT_BOOL:
            value = FromSigned(source.iVal);
            return S_OK;
        case VT_I4:
        case VT_INT:
            value = FromSigned(source.lVal);
            return S_OK;
        case VT_I8:
            value = FromSigned(source.llVal);
            return S_OK;
        case VT_UI1:
            value = Integer{source.bVal, false};
            return S_OK;
        case VT_UI2:
            value = Integer{source.uiVal, false};
            return S_OK;
        case VT_UI4:
        case VT_UINT:
            value = Integer{source.ulVal, false};
            return S_OK;
        case VT_UI8:
            value = Integer{source.ullVal, false};
            return S_OK;
        case VT_R4:
            value = static_cast<double>(source.fltVal);
            return S_OK;
        case VT_R8:
        case VT_DATE:
            value = source.dblVal;
            return S_OK;
        case VT_CY:
            value = static_cast<double>(source.cyVal) / 10000.0;
            return S_OK;
        case VT_DECIMAL:
            value = FromDecimal(source);
            return S_OK;
        case VT_BSTR:
            value = source.bstrVal == nullptr
                        ? std::u16string_view()
                        : std::u16string_view(source.bstrVal, SysStringLen(source.bstrVal));
            return S_OK;
        default:
            return DISP_E_TYPEMISMATCH;
    }
}

/// A number in a text: blanks around it, a sign, digits with a point, an exponent.
std::optional<std::variant<Integer, double>> ParseNumber(std::u16string_view text) {
    const auto blank = [](char16_t c) { return c == u' ' || c == u'\t'; };
    while (!text.empty() && blank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && blank(text.back())) {
        text.remove_suffix(1);
    }
    std::string narrow;
    for (const char16_t c : text) {
        const bool numeric = (c >= u'0' && c <= u'9') || c == u'.' || c == u'-' || c == u'+' ||
                             c == u'e' || c == u'E';
        if (!numeric) {
            return std::nullopt;
        }
        narrow.push_back(static_cast<char>(c));
    }
    const char* first = narrow.data();
    const char* const last = first + narrow.size();
    bool negative = false;
    if (first != last && (*first == '+' || *first == '-')) {
        negative = *first == '-';
        ++first;
    }
    if (first == last || *first == '-' || *first == '+') {
        return std::nullopt;
    }
    std::uint64_t magnitude = 0;
    if (const auto [end, error] = std::from_chars(first, last, magnitude);
        error == std::errc() && end == last) {
        return Integer{magnitude, negative && magnitude != 0};
    }
    double number = 0;
    const auto [end, error] = std::from_chars(first, last, number);
    if (error != std::errc() || end != last) {
        return std::nullopt;
    }
    return negative ? -number : number;
}

HRESULT ToInteger(const Intermediate& value, Integer& result) {
    if (std::holds_alternative<std::monostate>(value)) {
        result = Integer{};
        return S_OK;
    }
    if (const auto* integer = std::get_if<Integer>(&value)) {
        result = *integer;
        return S_OK;
    }
    double number = 0;
    if (const auto* text = std::get_if<std::u16string_view>(&value)) {
        const auto parsed = ParseNumber(*text);
        if (!parsed) {
            return DISP_E_TYPEMISMATCH;
        }
        if (const auto* integer = std::get_if<Integer>(&*parsed)) {
            result = *integer;
            return S_OK;
        }
        number = std::get<double>(*parsed);
    } else {
        number = std::get<double>(value);
    }
    const double rounded = std::nearbyint(number);
    if (!(std::fabs(rounded) < 18446744073709551616.0)) {
        return DISP_E_OVERFLOW;
    }
    result = Integer{static_cast<std::uint64_t>(std::fabs(rounded)), rounded < 0};
    return S_OK;
}

HRESULT ToDouble(const Intermediate& value, double& result) {
    if (const auto* number = std::get_if<double>(&value)) {
        result = *number;
        return S_OK;
    }
    if (const auto* text = std::get_if<std::u16string_view>(&value)) {
        const auto parsed = ParseNumber(*text);
        if (!parsed) {
            return DISP_E_TYPEMISMATCH;
        }
        if (const auto* number = std::get_if<double>(&*parsed)) {
            result = *number;
            return S_OK;
        }
        const Integer integer = std::get<Integer>(*parsed);
        result = static_cast<double>(integer.magnitude) * (integer.negative ? -1 : 1);
        return S_OK;
    }
    Integer integer;
    ToInteger(value, integer);
    result = static_cast<double>(integer.magnitude) * (integer.negative ? -1 : 1);
    return S_OK;
}

template <class Target>
HRESULT Narrow(const Intermediate& value, Target& target) {
    Integer integer;
    if (const HRESULT status = ToInteger(value, integer); Failed(status)) {
        return status;
    }
    constexpr auto Highest = static_cast<std::uint64_t>(std::numeric_limits<Target>::max());
    const std::uint64_t limit = !integer.negative                        ? Highest
                                : std::numeric_limits<Target>::is_signed ? Highest + 1
                                                                         : 0;
    if (integer.magnitude > limit) {
        return DISP_E_OVERFLOW;
    }
    const std::uint64_t bits = integer.negative ? ~integer.magnitude + 1 : integer.magnitude;
    target = static_cast<Target>(bits);
    return S_OK;
}

HRESULT ToText(const VARIANT& source, const Intermediate& value, BSTR& result) {
    std::string narrow;
    if (source.vt == VT_BOOL) {
        narrow = source.boolVal != VARIANT_FALSE ? "True" : "False";
    } else if (const auto* integer = std::get_if<Integer>(&value)) {
        narrow = (integer->negative ? "-" : "") + std::to_string(integer->magnitude);
    } else if (std::holds_alternative<double>(value)) {
        char buffer[64];
        const auto [end, error] =
            source.vt == VT_R4
                ? std::to_chars(buffer, buffer + sizeof buffer, source.fltVal)
                : std::to_chars(buffer, buffer + sizeof buffer, std::get<double>(value));
        narrow.assign(buffer, end);
    } else if (const auto* text = std::get_if<std::u16string_view>(&value)) {
        result = SysAllocStringLen(text->data(), static_cast<std::uint32_t>(text->size()));
        return result == nullptr ? E_OUTOFMEMORY : S_OK;
    }
    const std::u16string wide(narrow.begin(), narrow.end());
    result = SysAllocStringLen(wide.data(), static_cast<std::uint32_t>(wide.size()));
    return result == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT ToBoolean(const Intermediate& value, VARIANT_BOOL& result) {
    if (const auto* text = std::get_if<std::u16string_view>(&value)) {
        std::u16string lower(*text);
        for (char16_t& c : lower) {
            c = c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
        }
        if (lower == u"true" || lower == u"false") {
            result = lower == u"true" ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        }
    }
    double number = 0;
    if (const HRESULT status = ToDouble(value, number); Failed(status)) {
        return status;
    }
    result = number != 0 ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT ToObject(const VARIANT& source, VARTYPE type, VARIANT& target) {
    if (source.vt != VT_UNKNOWN && source.vt != VT_DISPATCH) {
        return DISP_E_TYPEMISMATCH;
    }
    if (source.punkVal == nullptr) {
        target.punkVal = nullptr;
        return S_OK;
    }
    const IID& iid = type == VT_DISPATCH ? IID_IDispatch : IID_IUnknown;
    return Failed(source.punkVal->QueryInterface(iid, reinterpret_cast<void**>(&target.punkVal)))
               ? DISP_E_TYPEMISMATCH
               : S_OK;
}

/// Makes `target` (empty so far) from a direct source.
HRESULT Convert(const VARIANT& source, VARTYPE type, VARIANT& target) {
    target.vt = type;
    if (type == VT_UNKNOWN || type == VT_DISPATCH) {
        return ToObject(source, type, target);
    }
    Intermediate value;
    if (const HRESULT status = Read(source, value); Failed(status)) {
        return status;
    }
    switch (type) {
        case VT_I1:
            return Narrow(value, target.cVal);
        case VT_I2:
            return Narrow(value, target.iVal);
        case VT_I4:
        case VT_INT:
            return Narrow(value, target.lVal);
        case VT_I8:
            return Narrow(value, target.llVal);
        case VT_UI1:
            return Narrow(value, target.bVal);
        case VT_UI2:
            return Narrow(value, target.uiVal);
        case VT_UI4:
        case VT_UINT:
            return Narrow(value, target.ulVal);
        case VT_UI8:
            return Narrow(value, target.ullVal);
        case VT_BOOL:
            return ToBoolean(value, target.boolVal);
        case VT_BSTR:
            return ToText(source, value, target.bstrVal);
        case VT_R8:
        case VT_DATE:
            return ToDouble(value, target.dblVal);
        case VT_R4: {
            double number = 0;
            const HRESULT status = ToDouble(value, number);
            if (Succeeded(status) && std::isfinite(number) &&
                std::fabs(number) > std::numeric_limits<float>::max()) {
                return DISP_E_OVERFLOW;
            }
            target.fltVal = static_cast<float>(number);
            return status;
        }
        case VT_CY: {
            double number = 0;
            const HRESULT status = ToDouble(value, number);
            const double scaled = std::nearbyint(number * 10000.0);
            if (Succeeded(status) && !(std::fabs(scaled) < 9223372036854775808.0)) {
                return DISP_E_OVERFLOW;
            }
            target.cyVal = Succeeded(status) ? static_cast<std::int64_t>(scaled) : 0;
            return status;
        }
        default:
            return DISP_E_BADVARTYPE;
    }
}

}  // namespace

extern "C" HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source,
                                     std::uint16_t /*flags*/, VARTYPE type) noexcept {
    if (destination == nullptr || source == nullptr) {
        return E_INVALIDARG;
    }
    VARIANT direct{};
    if (const HRESULT status = VariantCopyInd(&direct, source); Failed(status)) {
        return status;
    }
    VARIANT target{};
    HRESULT status = S_OK;
    if (direct.vt == type) {
        std::swap(direct, target);
    } else if (type == VT_EMPTY || type == VT_NULL) {
        target.vt = type;
    } else {
        try {
            status = Convert(direct, type, target);
        } catch (...) {
            status = E_OUTOFMEMORY;
        }
    }
    VariantClear(&direct);
    if (Failed(status)) {
        return status;  // `target` owns nothing yet: only success stores an owned value
    }
    if (status = VariantClear(destination); Failed(status)) {
        VariantClear(&target);
        return status;
    }
    *destination = target;
    return S_OK;
}

}  // namespace generalutilities
