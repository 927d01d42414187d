// A client in a process of its own: creates the class that a ProgID names and calls it by name.

#include <generalutilities/automation/pointers.h>

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
    return Failed(object->GetIDsOfNames(GUID_NULL, names, 1, 0, &id)) ? 4 : 0;
}
