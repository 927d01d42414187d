// Error objects, and the one slot per thread that holds the latest.

#include <generalutilities/automation/pointers.h>

#include <atomic>
#include <new>

namespace generalutilities {

namespace {

/// One object under two interfaces: written through `ICreateErrorInfo`, read through `IErrorInfo`.
class ErrorObject final : public ICreateErrorInfo, public IErrorInfo {
  public:
    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) {
            return E_POINTER;
        }
        if (iid == IID_IUnknown || iid == IID_ICreateErrorInfo) {
            *object = static_cast<ICreateErrorInfo*>(this);
        } else if (iid == IID_IErrorInfo) {
            *object = static_cast<IErrorInfo*>(this);
        } else {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    std::uint32_t AddRef() noexcept override { return ++references; }
    std::uint32_t Release() noexcept override {
        const std::uint32_t left = --references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

    HRESULT SetGUID(REFGUID value) noexcept override {
        guid = value;
        return S_OK;
    }
    HRESULT SetSource(char16_t* text) noexcept override { return Store(source, text); }
    HRESULT SetDescription(char16_t* text) noexcept override { return Store(description, text); }
    HRESULT SetHelpFile(char16_t* text) noexcept override { return Store(helpFile, text); }
    HRESULT SetHelpContext(std::uint32_t value) noexcept override {
        helpContext = value;
        return S_OK;
    }

    HRESULT GetGUID(GUID* value) noexcept override {
        if (value == nullptr) {
            return E_POINTER;
        }
        *value = guid;
        return S_OK;
    }
    HRESULT GetSource(BSTR* text) noexcept override { return Give(source, text); }
    HRESULT GetDescription(BSTR* text) noexcept override { return Give(description, text); }
    HRESULT GetHelpFile(BSTR* text) noexcept override { return Give(helpFile, text); }
    HRESULT GetHelpContext(std::uint32_t* value) noexcept override {
        if (value == nullptr) {
            return E_POINTER;
        }
        *value = helpContext;
        return S_OK;
    }

  private:
    static HRESULT Store(Bstr& place, const char16_t* text) {
        BSTR* const string = place.Out();
        *string = SysAllocString(text);
        return text != nullptr && *string == nullptr ? E_OUTOFMEMORY : S_OK;
    }
    static HRESULT Give(const Bstr& text, BSTR* copy) {
        if (copy == nullptr) {
            return E_POINTER;
        }
        *copy = nullptr;
        if (text.Get() == nullptr) {
            return S_OK;
        }
        *copy = SysAllocStringLen(text.Get(), SysStringLen(text.Get()));
        return *copy == nullptr ? E_OUTOFMEMORY : S_OK;
    }

    std::atomic<std::uint32_t> references{0};
    GUID guid{};
    Bstr source, description, helpFile;
    std::uint32_t helpContext = 0;
};

ComPtr<IErrorInfo>& SlotOfThread() {
    thread_local ComPtr<IErrorInfo> slot;
    return slot;
}

}  // namespace

extern "C" {

HRESULT CreateErrorInfo(ICreateErrorInfo** error) noexcept {
    if (error == nullptr) {
        return E_POINTER;
    }
    *error = new (std::nothrow) ErrorObject;
    if (*error == nullptr) {
        return E_OUTOFMEMORY;
    }
    (*error)->AddRef();
    return S_OK;
}

HRESULT SetErrorInfo(std::uint32_t reserved, IErrorInfo* error) noexcept {
    if (reserved != 0) {
        return E_INVALIDARG;
    }
    SlotOfThread() = ComPtr<IErrorInfo>::Share(error);
    return S_OK;
}

HRESULT GetErrorInfo(std::uint32_t reserved, IErrorInfo** error) noexcept {
    if (error == nullptr) {
        return E_POINTER;
    }
    *error = nullptr;
    if (reserved != 0) {
        return E_INVALIDARG;
    }
    *error = SlotOfThread().Release();
    return *error == nullptr ? S_FALSE : S_OK;
}

}  // extern "C"
}  // namespace generalutilities
