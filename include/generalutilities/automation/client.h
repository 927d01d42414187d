#pragma once

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/automation/pointers.h>
#include <generalutilities/automation/project_database.h>
#include <generalutilities/automation/text_file.h>
#include <generalutilities/error.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/code_page_helper.h>
#include <generalutilities/interfaces/collections.h>
#include <generalutilities/interfaces/draw_text.h>
#include <generalutilities/interfaces/ext_view_helper.h>
#include <generalutilities/interfaces/itd.h>
#include <generalutilities/interfaces/string_utils.h>
#include <generalutilities/utf8.h>

#include <cstddef>
#include <new>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

/// The components as a C++ program likes to call them: created by name of their interface, texts in
/// and out as strings, failures as exceptions with words. All of it is inline and stands on the
/// exported functions alone.
///
///     const auto utils = Create<IStringUtils>(CLSID_StringUtils);
///     const std::u16string upper = Call(utils, &IStringUtils::ToUpper, u"straße");
namespace generalutilities {

/// A component's failure. `what()` is its description, `Status()` the status that it returned.
class ComponentError : public Error {
  public:
    ComponentError(HRESULT failedStatus, const std::string& description, std::string reportedBy)
        : Error(failedStatus, description), source(std::move(reportedBy)) {}

    /// Who reported it: a ProgID such as "GeneralUtilities.ExtViewHelper.1", or an engine's name.
    const std::string& Source() const { return source; }

  private:
    std::string source;
};

/// What a status means, in English, where nobody left better words about it.
inline std::string StatusText(HRESULT status) {
    switch (status) {
        case S_FALSE:
            return "there is no answer";
        case E_NOTIMPL:
            return "this is not implemented yet";
        case E_NOINTERFACE:
            return "the object does not have this interface";
        case E_POINTER:
        case E_INVALIDARG:
            return "an argument was refused";
        case E_OUTOFMEMORY:
            return "out of memory";
        case CLASS_E_CLASSNOTAVAILABLE:
            return "the library does not have this class yet";
        case REGDB_E_CLASSNOTREG:
            return "the class is unknown";
        default:
            return "the library gave no words for this failure";
    }
}

/// The failure of a call that gave `status`, with the words that it left for this thread. They are
/// taken out: the next failure cannot be told in them.
inline ComponentError TakeFailure(HRESULT status) {
    std::string description;
    std::string source = "GeneralUtilities";
    ComPtr<IErrorInfo> report;
    if (GetErrorInfo(0, report.Out()) == S_OK && report) {
        Bstr text;
        if (Succeeded(report->GetDescription(text.Out()))) {
            description = ToUtf8(text.View());
        }
        if (Succeeded(report->GetSource(text.Out())) && !text.View().empty()) {
            source = ToUtf8(text.View());
        }
    }
    return {status, description.empty() ? StatusText(status) : description, source};
}

/// Throws `ComponentError` for a status that is a failure.
inline void Check(HRESULT status) {
    if (Failed(status)) {
        throw TakeFailure(status);
    }
}

/// The identifier of an interface. That of no interface is told by its type: under the sanitizers
/// the compiler does not compare addresses in constants.
template <class Interface>
inline constexpr std::nullptr_t IdOf = nullptr;
#define GENERALUTILITIES_ID(Interface) \
    template <>                        \
    inline constexpr const IID* IdOf<Interface> = &IID_##Interface
GENERALUTILITIES_ID(IUnknown);
GENERALUTILITIES_ID(IDispatch);
GENERALUTILITIES_ID(IClassFactory);
GENERALUTILITIES_ID(ISupportErrorInfo);
GENERALUTILITIES_ID(IErrorInfo);
GENERALUTILITIES_ID(ICreateErrorInfo);
GENERALUTILITIES_ID(IEnumVARIANT);
GENERALUTILITIES_ID(IConnectionPointContainer);
GENERALUTILITIES_ID(IConnectionPoint);
GENERALUTILITIES_ID(ITypeInfo);
GENERALUTILITIES_ID(ITypeLib);
GENERALUTILITIES_ID(IDictionary);
GENERALUTILITIES_ID(IProjectDatabase);
GENERALUTILITIES_ID(ITextFileFactory);
GENERALUTILITIES_ID(ICodePageHelper);
GENERALUTILITIES_ID(IExtViewHelper);
GENERALUTILITIES_ID(IITDReader);
GENERALUTILITIES_ID(IITDWriter);
GENERALUTILITIES_ID(ILongSet);
GENERALUTILITIES_ID(ILongStack);
GENERALUTILITIES_ID(IQLNDictionary);
GENERALUTILITIES_ID(IQLNSort);
GENERALUTILITIES_ID(IStringUtils);
GENERALUTILITIES_ID(IUDrawText);
#undef GENERALUTILITIES_ID

/// Creates an object. Throws `ComponentError`.
template <class Interface>
ComPtr<Interface> Create(REFCLSID clsid) {
    static_assert(!std::is_null_pointer_v<decltype(IdOf<Interface>)>,
                  "an interface of the library");
    ComPtr<Interface> object;
    SetErrorInfo(0, nullptr);
    Check(
        CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, *IdOf<Interface>, object.OutVoid()));
    return object;
}

/// The same object under another interface. Throws `ComponentError` when it has none, and for no
/// object.
template <class Other, class Interface>
ComPtr<Other> Query(const ComPtr<Interface>& object) {
    static_assert(!std::is_null_pointer_v<decltype(IdOf<Other>)>, "an interface of the library");
    ComPtr<Other> other;
    SetErrorInfo(0, nullptr);
    Check(object ? object->QueryInterface(*IdOf<Other>, other.OutVoid()) : E_POINTER);
    return other;
}

/// Opens a project; a path in UTF-8 names an SQLite file. What comes back is for
/// `ExportExternalView` and `ImportExternalView`. Throws `ComponentError`.
inline ComPtr<IUnknown> OpenProject(std::string_view location) {
    ComPtr<IUnknown> project;
    SetErrorInfo(0, nullptr);
    Check(OpenProjectDatabase(FromUtf8(location).c_str(), project.Out()));
    return project;
}

namespace client {

/// Room for an out-argument of the type `Type*`, and the value in the form that a caller likes.
template <class Type>
struct OutArgument {
    Type value{};
    Type* Place() { return &value; }
    Type Take() { return value; }
};
template <>
struct OutArgument<BSTR> {
    Bstr value;
    BSTR* Place() { return value.Out(); }
    std::u16string Take() { return value.Text(); }
};
template <>
struct OutArgument<VARIANT_BOOL> {
    VARIANT_BOOL value = VARIANT_FALSE;
    VARIANT_BOOL* Place() { return &value; }
    bool Take() { return value != VARIANT_FALSE; }
};
template <>
struct OutArgument<VARIANT> {
    Variant value;
    VARIANT* Place() { return value.Out(); }
    Variant Take() { return std::move(value); }
};
template <>
struct OutArgument<SAFEARRAY*> {
    SAFEARRAY* value = nullptr;
    SAFEARRAY** Place() { return &value; }
    ArrayPtr Take() { return ArrayPtr(std::exchange(value, nullptr)); }
    ~OutArgument() { SafeArrayDestroy(value); }
};
template <class Interface>
requires std::is_base_of_v<IUnknown, Interface>
struct OutArgument<Interface*> {
    ComPtr<Interface> value;
    Interface** Place() { return value.Out(); }
    ComPtr<Interface> Take() { return std::move(value); }
};

/// An argument as the caller has it: strings, `bool` and owners are taken where an interface has
/// BSTR, VARIANT_BOOL and pointers.
template <class Type>
Type PassAs(Type value) {
    return value;
}
template <class Type>
requires std::is_same_v<Type, VARIANT_BOOL> Type PassAs(bool value) {
    return value ? VARIANT_TRUE : VARIANT_FALSE;
}
template <class Type, class Interface>
Type PassAs(const ComPtr<Interface>& object) {
    return object.Get();
}
/// Keeps a text allocated until the call is over.
struct PassedText {
    Bstr text;
    explicit PassedText(std::u16string_view units) : text(units) {
        if (text.Get() == nullptr) {
            throw std::bad_alloc();
        }
    }
    operator BSTR() const { return text.Get(); }
};
template <class Type>
requires std::is_same_v<Type, BSTR> PassedText PassAs(std::u16string_view text) {
    return PassedText(text);
}

template <class Result, class Interface, class... Parameters, std::size_t... Index,
          class... Arguments>
auto CallForResult(const ComPtr<Interface>& object,
                   HRESULT (Interface::*method)(Parameters...) noexcept,
                   std::index_sequence<Index...>, Arguments&&... arguments) {
    using Types = std::tuple<Parameters...>;
    OutArgument<Result> result;
    const HRESULT status = (object.Get()->*method)(
        PassAs<std::tuple_element_t<Index, Types>>(std::forward<Arguments>(arguments))...,
        result.Place());
    if (status != S_OK) {
        throw TakeFailure(status);
    }
    return result.Take();
}

}  // namespace client

/// Calls a method. When the last argument, a pointer to the result, is left out, the result comes
/// back: a BSTR as `std::u16string`, a VARIANT_BOOL as `bool`, references, variants and arrays in
/// their owners. Strings may be given for BSTR, `bool` for VARIANT_BOOL, owners for pointers.
///
/// Throws `ComponentError` for a failure, for an object that is not there, and where a result was
/// asked for and there is none (S_FALSE); `std::bad_alloc` when a string cannot be passed.
template <class Interface, class Declaring, class... Parameters, class... Arguments>
auto Call(const ComPtr<Interface>& object, HRESULT (Declaring::*method)(Parameters...) noexcept,
          Arguments&&... arguments) {
    if (!object) {
        throw ComponentError(E_POINTER, "there is no object to call", "client");
    }
    SetErrorInfo(0, nullptr);
    if constexpr (sizeof...(Arguments) == sizeof...(Parameters)) {
        Check((object.Get()->*method)(
            client::PassAs<Parameters>(std::forward<Arguments>(arguments))...));
    } else {
        static_assert(sizeof...(Arguments) + 1 == sizeof...(Parameters),
                      "all arguments, or all but the last one, which is the result");
        using Last = std::tuple_element_t<sizeof...(Arguments), std::tuple<Parameters...>>;
        return client::CallForResult<std::remove_pointer_t<Last>>(
            object, method, std::index_sequence_for<Arguments...>(),
            std::forward<Arguments>(arguments)...);
    }
}

}  // namespace generalutilities
