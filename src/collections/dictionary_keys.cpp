#include "collections/dictionary_keys.h"

#include <generalutilities/automation/functions.h>
#include <generalutilities/automation/pointers.h>

#include "platform/automation/element_size.h"

#include <cstring>
#include <functional>
#include <string_view>

namespace generalutilities {
namespace {

bool IsInteger(VARTYPE type) {
    return type == VT_I4 || type == VT_UI4 || type == VT_INT || type == VT_UINT;
}

std::u16string_view TextOf(const VARIANT& string) {
    return string.bstrVal == nullptr
               ? std::u16string_view()
               : std::u16string_view(string.bstrVal, SysStringLen(string.bstrVal));
}

bool SameText(const VARIANT& left, const VARIANT& right) {
    const std::u16string_view mine = TextOf(left);
    const std::u16string_view theirs = TextOf(right);
    return mine.size() == theirs.size() &&
           (mine.empty() || std::memcmp(mine.data(), theirs.data(), mine.size() * 2) == 0);
}

/// The order of strings: first without the case of A to Z, then with it.
int CompareTexts(std::u16string_view left, std::u16string_view right) {
    const auto folded = [](char16_t unit) {
        return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
    };
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (folded(left[i]) != folded(right[i])) {
            return folded(left[i]) < folded(right[i]) ? -1 : 1;
        }
    }
    return left.size() != right.size() ? (left.size() < right.size() ? -1 : 1)
                                       : left.compare(right);
}

/// The bytes of the value of a type that holds no pointer; a missing value has none.
std::size_t ValueSize(VARTYPE type) {
    return type == VT_RECORD    ? sizeof(VARIANT::Record)
           : type == VT_DECIMAL ? sizeof(VARIANT::llVal)
                                : ElementSize(type);
}

bool IsObject(VARTYPE type) {
    return type == VT_UNKNOWN || type == VT_DISPATCH;
}

/// One object may have an address for each of its interfaces; that of `IUnknown` identifies it.
IUnknown* IdentityOf(IUnknown* object) {
    ComPtr<IUnknown> identity;
    if (object != nullptr) {
        object->QueryInterface(IID_IUnknown, identity.OutVoid());
    }
    return identity ? identity.Get() : object;
}

std::uint32_t ElementCount(const SAFEARRAY& array) {
    std::uint32_t count = 1;
    for (std::uint16_t i = 0; i < array.cDims; ++i) {
        count *= array.rgsabound[i].cElements;
    }
    return count;
}

bool SameValue(const VARIANT& left, const VARIANT& right);

/// Whether the elements at `index` are equal, in two arrays of the same element type.
bool SameElement(VARTYPE type, const SAFEARRAY& left, const SAFEARRAY& right, std::uint32_t index) {
    const std::size_t offset = std::size_t{left.cbElements} * index;
    const auto* const mine = static_cast<const std::byte*>(left.pvData) + offset;
    const auto* const theirs = static_cast<const std::byte*>(right.pvData) + offset;
    if (type == VT_VARIANT) {
        return SameValue(*reinterpret_cast<const VARIANT*>(mine),
                         *reinterpret_cast<const VARIANT*>(theirs));
    }
    if (type != VT_BSTR && !IsObject(type)) {
        return std::memcmp(mine, theirs, left.cbElements) == 0;
    }
    VARIANT values[2]{};
    values[0].vt = values[1].vt = type;
    std::memcpy(&values[0].byref, mine, sizeof(void*));
    std::memcpy(&values[1].byref, theirs, sizeof(void*));
    return SameValue(values[0], values[1]);
}

bool SameArray(VARTYPE type, const SAFEARRAY* left, const SAFEARRAY* right) {
    if (left == nullptr || right == nullptr) {
        return left == right;
    }
    if (left->cDims != right->cDims || left->cbElements != right->cbElements ||
        std::memcmp(left->rgsabound, right->rgsabound, left->cDims * sizeof(SAFEARRAYBOUND)) != 0) {
        return false;
    }
    const std::uint32_t count = ElementCount(*left);
    for (std::uint32_t i = 0; i < count; ++i) {
        if (!SameElement(type, *left, *right, i)) {
            return false;
        }
    }
    return true;
}

/// Equal type and value, whatever the type.
bool SameValue(const VARIANT& left, const VARIANT& right) {
    if (left.vt != right.vt) {
        return false;
    }
    if ((left.vt & VT_BYREF) != 0) {
        return left.byref == right.byref;
    }
    if ((left.vt & VT_ARRAY) != 0) {
        return SameArray(left.vt & VT_TYPEMASK, left.parray, right.parray);
    }
    if (left.vt == VT_BSTR) {
        return SameText(left, right);
    }
    if (IsObject(left.vt)) {
        return IdentityOf(left.punkVal) == IdentityOf(right.punkVal);
    }
    const bool sameScaleAndHead =
        left.vt != VT_DECIMAL || std::memcmp(&left.wReserved1, &right.wReserved1, 6) == 0;
    return sameScaleAndHead && std::memcmp(&left.llVal, &right.llVal, ValueSize(left.vt)) == 0;
}

}  // namespace

bool SameKey(const VARIANT& left, const VARIANT& right) {
    if (left.vt == VT_BSTR && right.vt == VT_BSTR) {
        return SameText(left, right);
    }
    return IsInteger(left.vt) && IsInteger(right.vt) ? left.lVal == right.lVal
                                                     : SameValue(left, right);
}

std::uint32_t IdentityHash(const VARIANT& key) {
    if (key.vt == VT_BSTR) {
        return static_cast<std::uint32_t>(std::hash<std::u16string_view>()(TextOf(key)));
    }
    std::uint64_t bits = 0;
    if ((key.vt & VT_ARRAY) != 0) {
        bits = key.parray == nullptr ? 0 : ElementCount(*key.parray);
    } else if (IsObject(key.vt)) {
        bits = reinterpret_cast<std::uintptr_t>(IdentityOf(key.punkVal));
    } else {
        std::memcpy(&bits, &key.llVal, std::min(ValueSize(key.vt), sizeof bits));
    }
    bits ^= IsInteger(key.vt) ? VARTYPE{VT_I4} : key.vt;
    bits *= 0x9E3779B97F4A7C15u;  // spreads what differs in few bits
    return static_cast<std::uint32_t>(bits >> 32);
}

bool IsBucketKey(VARTYPE type) {
    return IsInteger(type) || type == VT_BSTR || type == VT_BOOL;
}

std::uint32_t BucketHash(const VARIANT& key) {
    if (key.vt == VT_BOOL) {
        return static_cast<std::uint32_t>(std::int32_t{key.boolVal});
    }
    if (key.vt != VT_BSTR) {
        return key.ulVal;
    }
    std::uint32_t hash = 0;
    for (const char16_t unit : TextOf(key)) {
        if (unit == 0) {
            break;
        }
        hash = hash * 5 + unit;
    }
    return hash;
}

bool KeyLess(const VARIANT& left, const VARIANT& right) {
    if (left.vt == VT_BOOL || right.vt == VT_BOOL) {
        return left.vt == right.vt && right.boolVal < left.boolVal;
    }
    if (IsInteger(left.vt)) {
        return right.vt == VT_BSTR || left.lVal < right.lVal;
    }
    return right.vt == VT_BSTR && CompareTexts(TextOf(left), TextOf(right)) < 0;
}

}  // namespace generalutilities
