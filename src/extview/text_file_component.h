#pragma once

#include <generalutilities/automation/text_file.h>
#include <generalutilities/text_file.h>

#include "frame/object.h"

#include <memory>

/// Both sides of the component through which export files are written: the built-in class, and the
/// view of whatever class stands in its place as the plain factory that the exporters take.
namespace generalutilities {

/// `IDispatch` of a component that is called through its table alone.
template <class Interface>
class WithoutLateBinding : public Interface {
  public:
    HRESULT GetTypeInfoCount(std::uint32_t* count) noexcept override {
        if (count == nullptr) {
            return E_POINTER;
        }
        *count = 0;
        return S_OK;
    }
    HRESULT GetTypeInfo(std::uint32_t, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, char16_t**, std::uint32_t, LCID, DISPID*) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT Invoke(DISPID, REFIID, LCID, std::uint16_t, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                   std::uint32_t*) noexcept override {
        return E_NOTIMPL;
    }
};

/// The built-in text file writer as a component.
class CTextFileFactory : public WithoutLateBinding<ITextFileFactory> {
  public:
    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }
    HRESULT OpenTextFile(BSTR path, std::int32_t mode, std::int32_t create, std::int32_t format,
                         ITextFileStream** stream) noexcept override;
};

/// Creates the component `CLSID_TextFileFactory`, a host's own where one is registered, and gives
/// it as a plain factory; null when it cannot be created.
std::unique_ptr<TextFileFactory> CreateComponentTextFileFactory();

}  // namespace generalutilities
