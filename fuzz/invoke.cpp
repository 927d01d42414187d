// Late binding with arbitrary members, flags and arguments: every type by value and by reference,
// null references, named arguments, counts that lie.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/ext_view_helper.h>

#include "frame/object.h"
#include "text/string_utils_component.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <vector>

namespace generalutilities {
namespace {

class Input {
  public:
    Input(const std::uint8_t* bytes, std::size_t size) : data(bytes), left(size) {}
    template <class Number>
    Number Take() {
        Number value{};
        const std::size_t count = left < sizeof value ? left : sizeof value;
        std::memcpy(&value, data, count);
        data += count;
        left -= count;
        return value;
    }
    bool IsEmpty() const { return left == 0; }

  private:
    const std::uint8_t* data;
    std::size_t left;
};

/// Values that own what they hold, and that references may point to.
class Values {
  public:
    ~Values() {
        for (VARIANT& value : owned) {
            VariantClear(&value);
        }
    }

    /// A new value, owned here and at an address that stays.
    VARIANT& Make(Input& input, int depth = 0) {
        constexpr VARTYPE ListOfLongs = VT_ARRAY | VT_I4, ListOfTexts = VT_ARRAY | VT_BSTR;
        static constexpr VARTYPE Types[] = {
            VT_EMPTY, VT_NULL, VT_I2,       VT_I4,    VT_R4,   VT_R8,       VT_CY,
            VT_DATE,  VT_BSTR, VT_DISPATCH, VT_ERROR, VT_BOOL, VT_UNKNOWN,  VT_I1,
            VT_UI1,   VT_UI4,  VT_I8,       VT_UI8,   VT_INT,  ListOfLongs, ListOfTexts};
        const auto choice = input.Take<std::uint8_t>();
        VARIANT value{};
        if (choice == 255) {
            value.vt = VT_ERROR;
            value.scode = DISP_E_PARAMNOTFOUND;
            return owned.emplace_back(value);
        }
        value.vt = Types[choice % std::size(Types)];
        if (value.vt == VT_BSTR) {
            const auto length = static_cast<std::uint32_t>(input.Take<std::uint8_t>() % 24);
            value.bstrVal = SysAllocStringLen(nullptr, length);
            for (std::uint32_t i = 0; i < length; ++i) {
                value.bstrVal[i] = input.Take<char16_t>();
            }
        } else if (value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN) {
            value.punkVal = nullptr;
        } else if ((value.vt & VT_ARRAY) != 0) {
            value.parray = SafeArrayCreateVector(static_cast<VARTYPE>(value.vt & VT_TYPEMASK), 0,
                                                 input.Take<std::uint8_t>() % 4);
        } else {
            value.llVal = input.Take<std::int64_t>();
        }
        VARIANT& kept = owned.emplace_back(value);
        const auto reference = input.Take<std::uint8_t>() % 4;
        if (reference == 1) {
            VARIANT byReference{};
            byReference.vt = static_cast<VARTYPE>(kept.vt | VT_BYREF);
            byReference.byref = choice % 16 == 0 ? nullptr : &kept.llVal;
            return owned.emplace_back(byReference);
        }
        if (reference == 2 && depth == 0) {
            VARIANT byReference{};
            byReference.vt = VT_BYREF | VT_VARIANT;
            byReference.pvarVal = &Make(input, 1);
            return owned.emplace_back(byReference);
        }
        return kept;
    }

  private:
    std::deque<VARIANT> owned;  // addresses stay
};

}  // namespace
}  // namespace generalutilities

using namespace generalutilities;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    ComPtr<IDispatch> object;
    if (Failed(CreateStandalone<CStringUtils>(nullptr, IID_IDispatch, object.OutVoid()))) {
        std::abort();
    }
    while (!input.IsEmpty()) {
        Values values;
        const DISPID member = input.Take<std::int8_t>();
        const auto flags = input.Take<std::uint8_t>();
        const std::uint32_t count = input.Take<std::uint8_t>() % 8;
        std::vector<VARIANT> arguments;
        std::vector<DISPID> names;
        for (std::uint32_t i = 0; i < count; ++i) {
            arguments.push_back(values.Make(input));
            names.push_back(input.Take<std::int8_t>());
        }
        const std::uint32_t named = count == 0 ? 0 : input.Take<std::uint8_t>() % (count + 2);
        DISPPARAMS parameters{arguments.data(), names.data(), count,
                              named > count ? count + 1 : named};
        VARIANT result{};
        EXCEPINFO exception{};
        std::uint32_t bad = 0;
        object->Invoke(member, GUID_NULL, 0, flags, &parameters, &result, &exception, &bad);
        VariantClear(&result);
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrHelpFile);
    }
    return 0;
}
