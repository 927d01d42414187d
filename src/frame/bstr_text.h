#pragma once

#include <generalutilities/automation/functions.h>

#include <string_view>

/// Between the strings of callers and the text that functions take and give.
namespace generalutilities {

inline std::u16string_view View(BSTR string) {
    return string == nullptr ? std::u16string_view()
                             : std::u16string_view(string, SysStringLen(string));
}

inline std::string_view Memory(BSTR string) {
    return string == nullptr
               ? std::string_view()
               : std::string_view(reinterpret_cast<const char*>(string), SysStringByteLen(string));
}

/// Up to the first U+0000, as methods read it that know no length. The last byte of an odd number
/// of them counts as a unit.
inline std::u16string_view TerminatedView(BSTR string) {
    const std::u16string_view whole(string, (Memory(string).size() + 1) / 2);
    return whole.substr(0, whole.find(u'\0'));
}

/// E_OUTOFMEMORY, and a null string, where the text finds no room.
inline HRESULT Give(std::u16string_view text, BSTR* out) {
    *out = SysAllocStringLen(text.data(), static_cast<std::uint32_t>(text.size()));
    return *out == nullptr ? E_OUTOFMEMORY : S_OK;
}

}  // namespace generalutilities
