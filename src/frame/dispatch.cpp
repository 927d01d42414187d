#include "frame/dispatch.h"

#include <generalutilities/automation/pointers.h>

#include "frame/invocation.h"
#include "platform/component_runtime/own_module.h"

namespace generalutilities {

HRESULT DispatchGetTypeInfo(REFIID iid, std::uint32_t index, ITypeInfo** info) noexcept {
    if (info == nullptr) {
        return E_POINTER;
    }
    *info = nullptr;
    if (index != 0) {
        return DISP_E_BADINDEX;
    }
    const OwnModule& own = GetOwnModule();
    ComPtr<ITypeLib> library;
    if (own.typeLibrary == nullptr || Failed(own.typeLibrary(library.Out()))) {
        return TYPE_E_CANTLOADLIBRARY;
    }
    return library->GetTypeInfoOfGuid(iid, info);
}

HRESULT DispatchGetIDsOfNames(const InterfaceDescription& interface, REFIID reserved,
                              char16_t** names, std::uint32_t count, DISPID* ids) noexcept {
    return reserved == GUID_NULL ? FindIds(interface, names, count, ids) : DISP_E_UNKNOWNINTERFACE;
}

HRESULT DispatchInvoke(const InterfaceDescription& interface, void* instance, DISPID member,
                       REFIID reserved, std::uint16_t flags, DISPPARAMS* arguments, VARIANT* result,
                       EXCEPINFO* exception, std::uint32_t* badArgument) noexcept {
    return reserved == GUID_NULL ? InvokeMember(interface, instance, member, flags, arguments,
                                                result, exception, badArgument)
                                 : DISP_E_UNKNOWNINTERFACE;
}

}  // namespace generalutilities
