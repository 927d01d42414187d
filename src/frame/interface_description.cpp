#include "frame/interface_description.h"

namespace generalutilities {

Method MakeEvent(DISPID id, const char16_t* name,
                 std::initializer_list<const char16_t*> arguments) {
    Method event{id, name, INVOKE_FUNC, {}};
    for (const char16_t* argument : arguments) {
        event.arguments.push_back({In(argument), ArgumentTypeOf<std::int32_t>::Value});
    }
    return event;
}

bool SameName(std::u16string_view a, std::u16string_view b) {
    const auto lower = [](char16_t c) {
        return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
    };
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (lower(a[i]) != lower(b[i])) {
            return false;
        }
    }
    return true;
}

const Method* FindMethod(const InterfaceDescription& interface, DISPID id, std::uint16_t kinds) {
    for (const Method& method : interface.methods) {
        if (method.id == id && (kinds & method.kind) != 0) {
            return &method;
        }
    }
    return nullptr;
}

HRESULT FindIds(const InterfaceDescription& interface, char16_t** names, std::uint32_t count,
                DISPID* ids) {
    if (count == 0) {
        return S_OK;
    }
    if (names == nullptr || ids == nullptr) {
        return E_INVALIDARG;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        ids[i] = DISPID_UNKNOWN;
        if (names[i] == nullptr) {
            return E_INVALIDARG;
        }
    }
    bool known = false;
    bool allFound = count == 1;
    // A property's getter and setter share a name; the arguments may stand in either.
    for (const Method& method : interface.methods) {
        if (!SameName(names[0], method.name)) {
            continue;
        }
        known = true;
        ids[0] = method.id;
        std::uint32_t found = 1;
        for (std::uint32_t i = 1; i < count; ++i) {
            for (std::size_t a = 0; a < method.arguments.size(); ++a) {
                if (!method.arguments[a].IsResult() &&
                    SameName(names[i], method.arguments[a].name)) {
                    ids[i] = static_cast<DISPID>(a);
                }
            }
            found += ids[i] != DISPID_UNKNOWN ? 1 : 0;
        }
        allFound = found == count;
        if (allFound) {
            break;
        }
    }
    return known && allFound ? S_OK : DISP_E_UNKNOWNNAME;
}

}  // namespace generalutilities
