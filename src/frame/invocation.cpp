// Late binding.
//
// Each argument of the method gets a slot. A slot holds the bits that the method receives; where
// the caller's value has another type, or none, it also owns a converted value that those bits are
// or point to, and remembers where to write that value back.

#include "frame/invocation.h"

#include <generalutilities/automation/pointers.h>

#include "frame/object.h"

#include <memory>

namespace generalutilities {

namespace {

class OwnedVariant : public VARIANT {
  public:
    // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.UninitializedObject): it is a union
    OwnedVariant() : VARIANT{} {}
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;
    ~OwnedVariant() { VariantClear(this); }
};

struct Slot {
    ArgumentBits bits;
    OwnedVariant own;
    VARIANT* writeBack = nullptr;  ///< the caller's by-reference value that receives `own`
};

bool IsOmitted(const VARIANT* value) {
    return value == nullptr || (value->vt == VT_ERROR && value->scode == DISP_E_PARAMNOTFOUND);
}

/// VT_INT and VT_UINT travel in the same 32 bits as VT_I4.
bool SameRepresentation(VARTYPE a, VARTYPE b) {
    const auto canonical = [](VARTYPE type) {
        return type == VT_INT || type == VT_UINT || type == VT_UI4 ? VARTYPE{VT_I4} : type;
    };
    return canonical(a) == canonical(b);
}

/// What cannot be converted, for whatever reason, is a mismatch of types; only a lack of memory
/// keeps its own status.
HRESULT Convert(VARIANT& to, const VARIANT& from, VARTYPE type) {
    const HRESULT status = VariantChangeType(&to, &from, 0, type);
    return Failed(status) && status != E_OUTOFMEMORY ? DISP_E_TYPEMISMATCH : status;
}

HRESULT PrepareInterface(const Argument& argument, const VARIANT& value, Slot& slot) {
    const VARIANT* source = &value;
    if (source->vt == (VT_BYREF | VT_VARIANT)) {
        source = source->pvarVal;
    }
    if (source == nullptr) {
        return DISP_E_TYPEMISMATCH;
    }
    IUnknown* object = nullptr;
    if (source->vt == VT_UNKNOWN || source->vt == VT_DISPATCH) {
        object = source->punkVal;
    } else if (source->vt == (VT_BYREF | VT_UNKNOWN) || source->vt == (VT_BYREF | VT_DISPATCH)) {
        object = source->ppunkVal == nullptr ? nullptr : *source->ppunkVal;
    } else if (source->vt != VT_EMPTY && source->vt != VT_NULL) {
        return DISP_E_TYPEMISMATCH;
    }
    if (object != nullptr) {
        slot.own.vt = VT_UNKNOWN;
        if (Failed(object->QueryInterface(*argument.type.interfaceId,
                                          reinterpret_cast<void**>(&slot.own.punkVal)))) {
            slot.own.punkVal = nullptr;
            return DISP_E_TYPEMISMATCH;
        }
    }
    slot.bits = ArgumentBits::Of(slot.own.punkVal);
    return S_OK;
}

/// An argument that the method takes by value.
HRESULT PrepareValue(const Argument& argument, const VARIANT& value, Slot& slot) {
    if (argument.type.interfaceId != nullptr) {
        return PrepareInterface(argument, value, slot);
    }
    const VARTYPE type = argument.type.transport;
    if (value.vt == type) {
        slot.bits.bits = value.ullVal;
        return S_OK;
    }
    if (const HRESULT status = Convert(slot.own, value, type); Failed(status)) {
        return status;
    }
    slot.bits.bits = slot.own.ullVal;
    return S_OK;
}

/// `[in] VARIANT*`: the method sees the caller's own value.
HRESULT PrepareVariant(VARIANT& value, Slot& slot) {
    VARIANT* const seen = value.vt == (VT_BYREF | VT_VARIANT) ? value.pvarVal : &value;
    if (seen == nullptr) {
        return DISP_E_TYPEMISMATCH;
    }
    slot.bits = ArgumentBits::Of(seen);
    return S_OK;
}

/// `void*` and records: an address in this process.
HRESULT PrepareAddress(const Argument& argument, const VARIANT& value, Slot& slot) {
    void* address = nullptr;
    if (value.vt == VT_RECORD) {
        address = value.record.pvRecord;
    } else if ((value.vt & VT_BYREF) != 0) {
        address = value.byref;
    } else if (argument.type.base == VT_VOID && (value.vt == VT_I8 || value.vt == VT_UI8)) {
        address = reinterpret_cast<void*>(value.ullVal);
    }
    if (address == nullptr) {
        return DISP_E_TYPEMISMATCH;
    }
    slot.bits = ArgumentBits::Of(address);
    return S_OK;
}

/// An argument that the method takes by reference, for reading, writing or both.
HRESULT PrepareReference(const Argument& argument, VARIANT& value, Slot& slot) {
    const VARTYPE type = argument.type.transport;
    if ((value.vt & VT_BYREF) != 0 && value.byref == nullptr) {
        return DISP_E_TYPEMISMATCH;
    }
    if ((value.vt & VT_BYREF) != 0 &&
        SameRepresentation(static_cast<VARTYPE>(value.vt & ~VT_BYREF), type)) {
        slot.bits = ArgumentBits::Of(value.byref);
        return S_OK;
    }
    if ((value.vt & VT_BYREF) != 0) {
        slot.writeBack = &value;
    }
    slot.own.vt = type;
    if (argument.IsIn()) {
        const VARIANT& source = value.vt == (VT_BYREF | VT_VARIANT) ? *value.pvarVal : value;
        // An array that is not there yet may come as an empty value.
        const bool absent = (type & VT_ARRAY) != 0 && source.vt == VT_EMPTY;
        slot.own.vt = VT_EMPTY;
        if (const HRESULT status = absent ? S_OK : Convert(slot.own, source, type);
            Failed(status)) {
            return status;
        }
        slot.own.vt = type;
    }
    slot.bits = ArgumentBits::Of(static_cast<void*>(&slot.own.llVal));
    return S_OK;
}

HRESULT Prepare(const Argument& argument, VARIANT* value, Slot& slot) {
    const ArgumentType& type = argument.type;
    if (argument.IsResult()) {
        // A VARIANT is written whole, any other value into the union behind its type.
        slot.own.vt = type.transport == VT_VARIANT ? VARTYPE{VT_EMPTY} : type.transport;
        slot.bits = type.transport == VT_VARIANT
                        ? ArgumentBits::Of(static_cast<VARIANT*>(&slot.own))
                        : ArgumentBits::Of(static_cast<void*>(&slot.own.llVal));
        return S_OK;
    }
    OwnedVariant replacement;
    if (IsOmitted(value)) {
        if (!argument.IsOptional()) {
            return DISP_E_PARAMNOTOPTIONAL;
        }
        if (const HRESULT status = StoreDefault(argument.defaultValue, replacement);
            Failed(status)) {
            return status;
        }
        value = &replacement;  // defaults are plain numbers: the slot keeps no pointer to them
    }
    if (type.transport == VT_RECORD || type.base == VT_VOID) {
        return PrepareAddress(argument, *value, slot);
    }
    if (type.transport == VT_VARIANT) {
        return PrepareVariant(*value, slot);
    }
    const bool byValue = type.pointers == (type.base == VT_USERDEFINED && type.interfaceId ? 1 : 0);
    return byValue ? PrepareValue(argument, *value, slot)
                   : PrepareReference(argument, *value, slot);
}

HRESULT WriteBack(Slot& slot) {
    VARIANT& place = *slot.writeBack;
    if (place.vt == (VT_BYREF | VT_VARIANT)) {
        if (const HRESULT status = VariantClear(place.pvarVal); Failed(status)) {
            return status;
        }
        *place.pvarVal = slot.own;
        static_cast<VARIANT&>(slot.own) = VARIANT{};
        return S_OK;
    }
    OwnedVariant converted;
    const auto type = static_cast<VARTYPE>(place.vt & ~VT_BYREF);
    if (const HRESULT status = Convert(converted, slot.own, type); Failed(status)) {
        return status;
    }
    switch (type) {
        case VT_I1:
        case VT_UI1:
            *static_cast<std::uint8_t*>(place.byref) = converted.bVal;
            return S_OK;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            *place.piVal = converted.iVal;
            return S_OK;
        case VT_R4:
        case VT_I4:
            *place.plVal = converted.lVal;
            return S_OK;
        case VT_R8:
        case VT_DATE:
        case VT_CY:
        case VT_I8:
        case VT_UI8:
            *static_cast<std::int64_t*>(place.byref) = converted.llVal;
            return S_OK;
        case VT_BSTR:
            SysFreeString(*place.pbstrVal);
            *place.pbstrVal = converted.bstrVal;
            converted.vt = VT_EMPTY;
            return S_OK;
        default:
            return DISP_E_TYPEMISMATCH;
    }
}

/// Fills in what the method reported, when it reported anything.
void FillException(HRESULT status, EXCEPINFO* exception) {
    ComPtr<IErrorInfo> error;
    const bool reported = GetErrorInfo(0, error.Out()) == S_OK;
    if (exception == nullptr) {
        return;
    }
    *exception = EXCEPINFO{};
    exception->scode = status;
    if (reported) {
        error->GetSource(&exception->bstrSource);
        error->GetDescription(&exception->bstrDescription);
        error->GetHelpFile(&exception->bstrHelpFile);
        error->GetHelpContext(&exception->dwHelpContext);
    }
}

/// Pairs the caller's values with the method's arguments. `values[i]` stays null for what is
/// missing; `positions[i]` is the value's place in the caller's list.
HRESULT MatchArguments(const Method& method, const DISPPARAMS& given, std::vector<VARIANT*>& values,
                       std::vector<std::uint32_t>& positions, std::uint32_t* badArgument) {
    std::size_t takes = method.arguments.size();
    if (takes > 0 && method.arguments.back().IsResult()) {
        --takes;
    }
    values.assign(method.arguments.size(), nullptr);
    positions.assign(method.arguments.size(), 0);
    if (given.cNamedArgs > given.cArgs || given.cArgs > takes) {
        return DISP_E_BADPARAMCOUNT;
    }
    if ((given.cArgs > 0 && given.rgvarg == nullptr) ||
        (given.cNamedArgs > 0 && given.rgdispidNamedArgs == nullptr)) {
        return E_INVALIDARG;
    }
    const auto put = [&](std::size_t argument, std::uint32_t position) {
        if (argument >= takes || values[argument] != nullptr) {
            if (badArgument != nullptr) {
                *badArgument = position;
            }
            return DISP_E_PARAMNOTFOUND;
        }
        values[argument] = &given.rgvarg[position];
        positions[argument] = position;
        return S_OK;
    };
    for (std::uint32_t i = 0; i < given.cArgs - given.cNamedArgs; ++i) {
        put(i, given.cArgs - 1 - i);
    }
    for (std::uint32_t i = 0; i < given.cNamedArgs; ++i) {
        const DISPID id = given.rgdispidNamedArgs[i];
        const bool isValue = id == DISPID_PROPERTYPUT && method.kind == INVOKE_PROPERTYPUT;
        const std::size_t argument = isValue ? takes - 1 : static_cast<std::size_t>(id);
        if (const HRESULT status = put(argument, i); Failed(status)) {
            return status;
        }
    }
    return S_OK;
}

}  // namespace

HRESULT StoreDefault(const DefaultValue& value, VARIANT& variant) {
    if (const auto* number = std::get_if<std::int32_t>(&value)) {
        variant.vt = VT_I4;
        variant.lVal = *number;
    } else if (const auto* real = std::get_if<double>(&value)) {
        variant.vt = VT_R8;
        variant.dblVal = *real;
    } else if (const auto* flag = std::get_if<bool>(&value)) {
        variant.vt = VT_BOOL;
        variant.boolVal = *flag ? VARIANT_TRUE : VARIANT_FALSE;
    } else {
        return DISP_E_PARAMNOTOPTIONAL;
    }
    return S_OK;
}

HRESULT InvokeMember(const InterfaceDescription& interface, void* instance, DISPID member,
                     std::uint16_t flags, DISPPARAMS* arguments, VARIANT* result,
                     EXCEPINFO* exception, std::uint32_t* badArgument) {
    if (arguments == nullptr) {
        return E_INVALIDARG;
    }
    if ((flags & DISPATCH_PROPERTYPUTREF) != 0) {
        flags |= DISPATCH_PROPERTYPUT;
    }
    const Method* const method = FindMethod(interface, member, flags);
    if (method == nullptr || method->call == nullptr) {
        return DISP_E_MEMBERNOTFOUND;
    }
    return Guarded([&]() -> HRESULT {
        std::vector<VARIANT*> values;
        std::vector<std::uint32_t> positions;
        if (const HRESULT status =
                MatchArguments(*method, *arguments, values, positions, badArgument);
            Failed(status)) {
            return status;
        }
        const std::size_t count = method->arguments.size();
        const auto slots = std::make_unique<Slot[]>(count);
        std::vector<ArgumentBits> bits(count);
        for (std::size_t i = 0; i < count; ++i) {
            const HRESULT status = Prepare(method->arguments[i], values[i], slots[i]);
            if (Failed(status)) {
                if (badArgument != nullptr) {
                    *badArgument = positions[i];
                }
                return status;
            }
            bits[i] = slots[i].bits;
        }

        SetErrorInfo(0, nullptr);  // an earlier report must not be taken for this call's
        const HRESULT status = method->call(instance, bits.data());
        if (Failed(status)) {
            FillException(status, exception);
            return DISP_E_EXCEPTION;
        }
        for (std::size_t i = 0; i < count; ++i) {
            if (slots[i].writeBack != nullptr) {
                if (const HRESULT written = WriteBack(slots[i]); Failed(written)) {
                    if (badArgument != nullptr) {
                        *badArgument = positions[i];
                    }
                    return written;
                }
            }
        }
        if (result != nullptr) {
            *result = VARIANT{};
            if (count > 0 && method->arguments.back().IsResult()) {
                std::swap(*result, static_cast<VARIANT&>(slots[count - 1].own));
            }
        }
        return status;
    });
}

}  // namespace generalutilities
