#pragma once

#include <generalutilities/automation/pointers.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <vector>

/// Values and calls as tests write them down.
namespace generalutilities {

inline VARIANT Of(int type, std::int64_t value = 0) {
    VARIANT v{};
    v.vt = static_cast<VARTYPE>(type);
    v.llVal = value;
    return v;
}
inline VARIANT Long(std::int32_t value) {
    return Of(VT_I4, static_cast<std::uint32_t>(value));
}
/// A value by reference, of the given type.
inline VARIANT Ref(int type, void* place) {
    VARIANT v = Of(VT_BYREF | type);
    v.byref = place;
    return v;
}
/// A text that the caller of the test owns.
inline VARIANT Borrowed(const Bstr& text) {
    VARIANT v = Of(VT_BSTR);
    v.bstrVal = text.Get();
    return v;
}

/// `IUnknown` of an object that lives as long as a test wants: it answers to everything.
template <class Interface>
struct Local : Interface {
    HRESULT QueryInterface(REFIID, void** object) noexcept override {
        *object = this;
        ++references;
        return S_OK;
    }
    std::uint32_t AddRef() noexcept override { return ++references; }
    std::uint32_t Release() noexcept override { return --references; }

    std::uint32_t references = 0;
};

/// Puts another function in the place of an operation of one object, until this goes.
class Replaced {
  public:
    Replaced(IUnknown* object, std::size_t place, void* function)
        : table(reinterpret_cast<void***>(object)), sound(*table) {
        std::copy_n(sound - 2, std::size(faulty), faulty);  // with what C++ has in front
        faulty[2 + place] = function;
        *table = faulty + 2;
    }
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;
    ~Replaced() { *table = sound; }

  private:
    void*** table;
    void** sound;
    void* faulty[2 + 22];
};
template <class... Arguments>
void* Operation(HRESULT (*function)(Arguments...)) {
    return reinterpret_cast<void*>(function);
}

struct Answer {
    HRESULT status = S_OK;
    VARIANT result{};
    EXCEPINFO exception{};
    std::uint32_t badArgument = 777;
};

/// Invokes with the arguments in their own order, the last `ids.size()` of them named.
inline Answer Call(IDispatch* object, DISPID member, std::uint16_t flags,
                   std::vector<VARIANT> arguments = {}, std::vector<DISPID> ids = {}) {
    std::reverse(arguments.begin(), arguments.end());
    std::reverse(ids.begin(), ids.end());
    DISPPARAMS parameters{arguments.data(), ids.data(),
                          static_cast<std::uint32_t>(arguments.size()),
                          static_cast<std::uint32_t>(ids.size())};
    Answer answer;
    answer.status = object->Invoke(member, GUID_NULL, 0, flags, &parameters, &answer.result,
                                   &answer.exception, &answer.badArgument);
    return answer;
}

/// A value converted to a text.
inline std::u16string Text(const VARIANT& value) {
    Variant text;
    EXPECT_EQ(VariantChangeType(text.InOut(), &value, 0, VT_BSTR), S_OK);
    return {text.Get().bstrVal, SysStringLen(text.Get().bstrVal)};
}

/// The text of a result, which is freed.
inline std::u16string TakeText(VARIANT& value) {
    EXPECT_EQ(value.vt, VT_BSTR);
    const std::u16string text = value.vt == VT_BSTR ? value.bstrVal : u"";
    VariantClear(&value);
    return text;
}

template <class Interface>
ComPtr<Interface> Create(REFCLSID clsid, REFIID iid) {
    ComPtr<Interface> object;
    EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, object.OutVoid()), S_OK);
    return object;
}

/// The report that the latest failure left on this thread: "source: words", or nothing.
inline std::u16string Report(IID* interface = nullptr) {
    ComPtr<IErrorInfo> error;
    if (GetErrorInfo(0, error.Out()) != S_OK) {
        return u"nothing";
    }
    Bstr text, source;
    IID iid{};
    error->GetDescription(text.Out());
    error->GetSource(source.Out());
    error->GetGUID(interface == nullptr ? &iid : interface);
    return source.Text() + u": " + text.Text();
}

}  // namespace generalutilities
