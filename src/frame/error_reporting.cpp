#include "frame/error_reporting.h"

#include <generalutilities/automation/pointers.h>

#include "frame/object.h"
#include "platform/code_pages/code_pages.h"

#include <string>

namespace generalutilities {

HRESULT ReportFailure(const char16_t* source, const char16_t* text, REFIID iid, HRESULT status) {
    ComPtr<ICreateErrorInfo> created;
    if (Succeeded(CreateErrorInfo(created.Out()))) {
        created->SetGUID(iid);
        created->SetSource(const_cast<char16_t*>(source));
        created->SetDescription(const_cast<char16_t*>(text));
        if (const auto error = created.As<IErrorInfo>(IID_IErrorInfo)) {
            SetErrorInfo(0, error.Get());
        }
    }
    return status;
}

HRESULT ReportError(REFCLSID clsid, const char16_t* text, REFIID iid, HRESULT status) {
    char16_t* source = nullptr;
    ProgIDFromCLSID(clsid, &source);
    ReportFailure(source, text, iid, status);
    CoTaskMemFree(source);
    return status == S_OK ? DISP_E_EXCEPTION : status;
}

HRESULT ReportError(REFCLSID clsid, const char* text, REFIID iid, HRESULT status) {
    if (text == nullptr) {
        return E_POINTER;
    }
    return Guarded([&] {
        std::u16string wide;
        if (!code_pages::AppendDecoded(SystemAnsiCodePage, text, wide)) {
            return E_OUTOFMEMORY;
        }
        return ReportError(clsid, wide.c_str(), iid, status);
    });
}

}  // namespace generalutilities
