// A client in a process of its own: creates the class that a ProgID names and says "HELLO" through
// it.

#include <generalutilities/automation/pointers.h>

#include <cstdio>
#include <string>

using namespace generalutilities;

int main(int argc, char** argv) {
    const std::string narrow = argc > 1 ? argv[1] : "";
    const std::u16string progId(narrow.begin(), narrow.end());
    CLSID clsid;
    if (Failed(CLSIDFromProgID(progId.c_str(), &clsid))) {
        return 2;
    }
    ComPtr<IDispatch> object;
    if (Failed(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                object.OutVoid()))) {
        return 3;
    }
    char16_t name[] = u"toupper";
    char16_t* names[] = {name};
    DISPID id = 0;
    if (Failed(object->GetIDsOfNames(GUID_NULL, names, 1, 0, &id))) {
        return 4;
    }
    const Bstr text(u"hello");
    VARIANT argument{}, result{};
    argument.vt = VT_BSTR;
    argument.bstrVal = text.Get();
    DISPPARAMS arguments{&argument, nullptr, 1, 0};
    if (Failed(object->Invoke(id, GUID_NULL, 0, DISPATCH_METHOD, &arguments, &result, nullptr,
                              nullptr))) {
        return 5;
    }
    const std::u16string answer(result.bstrVal);
    std::puts(std::string(answer.begin(), answer.end()).c_str());
    VariantClear(&result);
    return 0;
}
