#pragma once

#include <generalutilities/automation/functions.h>

#include "frame/interface_descriptions.h"

#include <array>
#include <string>

namespace generalutilities::fire {

/// Calls a method as its description has it, with `text` for each text and `number` for each
/// number, and takes back what it gives; `answer`, if there is one, gets it.
inline HRESULT CallDescribed(const Method& method, void* object, BSTR text, std::int32_t number,
                             std::u16string* answer = nullptr) {
    std::array<ArgumentBits, 16> values;  // behind the pointers
    std::array<ArgumentBits, 16> arguments;
    for (std::size_t i = 0; i < method.arguments.size(); ++i) {
        const Argument& argument = method.arguments[i];
        ArgumentBits& value = argument.type.pointers > 0 ? values[i] : arguments[i];
        if (argument.IsIn() && argument.type.transport == VT_BSTR) {
            value = ArgumentBits::Of(argument.type.pointers > 0 ? SysAllocString(text) : text);
        } else if (argument.IsIn() && argument.type.transport == VT_R8) {
            value = ArgumentBits::Of(0.5);
        } else if (argument.IsIn() && argument.type.interfaceId == nullptr) {
            value = ArgumentBits::Of(number);
        }
        if (argument.type.pointers > 0) {
            arguments[i] = ArgumentBits::Of(&values[i]);
        }
    }
    const HRESULT status = method.call(object, arguments.data());
    for (std::size_t i = 0; i < method.arguments.size(); ++i) {
        const ArgumentType& type = method.arguments[i].type;
        std::u16string given;
        if (type.pointers > 0 && type.transport == VT_BSTR) {
            const auto string = values[i].As<BSTR>();
            if (answer != nullptr && string != nullptr) {
                given.assign(string, SysStringLen(string));
            }
            SysFreeString(string);
        } else if (type.pointers > 0 && (type.transport & VT_ARRAY) != 0) {
            const auto array = values[i].As<SAFEARRAY*>();
            given = {SafeArrayGetDim(array) == 0 ? u'-' : u'a'};
            SafeArrayDestroy(array);
        } else if (type.pointers > 0) {
            for (std::uint64_t bits = values[i].bits; bits != 0; bits >>= 16) {
                given += static_cast<char16_t>(bits);
            }
        }
        if (answer != nullptr) {
            *answer += given + u'\n';
        }
    }
    return status;
}

}  // namespace generalutilities::fire
