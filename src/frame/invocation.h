#pragma once

#include "frame/interface_description.h"

namespace generalutilities {

/// `Invoke`, driven by the description: finds the member, converts and defaults the arguments,
/// calls through the table of operations, writes by-reference values back and hands the result
/// over.
///
/// `instance` is the object's pointer to this very interface.
HRESULT InvokeMember(const InterfaceDescription& interface, void* instance, DISPID member,
                     std::uint16_t flags, DISPPARAMS* arguments, VARIANT* result,
                     EXCEPINFO* exception, std::uint32_t* badArgument);

/// Stores the declared default of an argument; DISP_E_PARAMNOTOPTIONAL where none is declared.
HRESULT StoreDefault(const DefaultValue& value, VARIANT& variant);

}  // namespace generalutilities
