// Late binding, on objects of the test's own that record what reaches them.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/ext_view_helper.h>

#include "frame/dispatch.h"
#include "frame/error_reporting.h"
#include "frame/interface_descriptions.h"

#include <gtest/gtest.h>
#include <map>

namespace generalutilities {
namespace {

/// A dictionary whose keys and items are long integers.
class Dictionary : public Dual<IQLNDictionary, DescribeQLNDictionary> {
  public:
    void* FindInterface(REFIID iid) noexcept {
        IQLNDictionary* const self = this;
        return FindInTable(
            iid, {{IID_IUnknown, self}, {IID_IDispatch, self}, {IID_IQLNDictionary, self}});
    }
    HRESULT Start() noexcept { return S_OK; }
    HRESULT Add(VARIANT* key, VARIANT* item) noexcept override { return put_Item(key, item); }
    HRESULT get_CompareMode(qlnCompareMethod* value) noexcept override {
        *value = mode;
        return S_OK;
    }
    HRESULT put_CompareMode(qlnCompareMethod value) noexcept override {
        mode = value;
        return S_OK;
    }
    HRESULT get_Count(std::int32_t* count) noexcept override {
        *count = static_cast<std::int32_t>(items.size());
        return S_OK;
    }
    HRESULT Exists(VARIANT* key, VARIANT_BOOL* exists) noexcept override {
        *exists = items.contains(key->lVal) ? VARIANT_TRUE : VARIANT_FALSE;
        return items.empty() ? S_FALSE : S_OK;
    }
    HRESULT get_Item(VARIANT* key, VARIANT* value) noexcept override {
        value->vt = VT_I4;
        value->lVal = items[key->lVal];
        return S_OK;
    }
    HRESULT put_Item(VARIANT* key, VARIANT* value) noexcept override {
        lastType = key->vt;
        items[key->lVal] = value->lVal;
        return S_OK;
    }
    HRESULT Items(VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT get_Key(VARIANT*, VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT put_Key(VARIANT*, VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT Keys(VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT Remove(VARIANT*) noexcept override {
        return ReportError(GUID_NULL, u"cannot remove", IID_IQLNDictionary, E_FAIL);
    }
    HRESULT RemoveAll() noexcept override {
        items.clear();
        return E_OUTOFMEMORY;
    }

    static inline VARTYPE lastType = VT_EMPTY;

  private:
    std::map<std::int32_t, std::int32_t> items;
    qlnCompareMethod mode = dctmBinaryCompare;
};

class Sorter : public Dual<IQLNSort, DescribeQLNSort> {
  public:
    void* FindInterface(REFIID iid) noexcept {
        IQLNSort* const self = this;
        return FindInTable(iid,
                           {{IID_IUnknown, self}, {IID_IDispatch, self}, {IID_IQLNSort, self}});
    }
    HRESULT Start() noexcept { return S_OK; }
    HRESULT Sort(void* data, std::int32_t, std::int32_t, std::int32_t) noexcept override {
        *static_cast<std::int32_t*>(data) = 99;
        return S_OK;
    }
    /// Replaces the array by one with the old length as its only text.
    HRESULT StringSort(SAFEARRAY** array, std::int32_t handle) noexcept override {
        std::int32_t upper = -1;
        if (*array != nullptr) {
            SafeArrayGetUBound(*array, 1, &upper);
            SafeArrayDestroy(*array);
        }
        *array = SafeArrayCreateVector(VT_BSTR, 0, 1);
        std::int32_t zero = 0;
        const Bstr text(std::u16string(static_cast<std::size_t>(upper + 1), u'x'));
        SafeArrayPutElement(*array, &zero, text.Get());
        return handle == 0 ? S_FALSE : S_OK;
    }
};

template <class Class>
ComPtr<IDispatch> Make() {
    ComPtr<IDispatch> object;
    EXPECT_EQ(CreateStandalone<Class>(nullptr, IID_IDispatch, object.OutVoid()), S_OK);
    return object;
}

VARIANT Long(std::int32_t value) {
    VARIANT v{};
    v.vt = VT_I4;
    v.lVal = value;
    return v;
}

VARIANT Missing() {
    VARIANT v{};
    v.vt = VT_ERROR;
    v.scode = DISP_E_PARAMNOTFOUND;
    return v;
}

struct Answer {
    HRESULT status;
    VARIANT result{};
    EXCEPINFO exception{};
    std::uint32_t badArgument = 777;
};

/// Invokes with the arguments in their own order, the last `ids.size()` of them named.
Answer Call(IDispatch* object, DISPID member, std::uint16_t flags, std::vector<VARIANT> arguments,
            std::vector<DISPID> ids = {}) {
    std::reverse(arguments.begin(), arguments.end());
    std::reverse(ids.begin(), ids.end());
    DISPPARAMS parameters{arguments.data(), ids.data(),
                          static_cast<std::uint32_t>(arguments.size()),
                          static_cast<std::uint32_t>(ids.size())};
    Answer answer{};
    answer.status = object->Invoke(member, GUID_NULL, 0, flags, &parameters, &answer.result,
                                   &answer.exception, &answer.badArgument);
    return answer;
}

TEST(InvokeTest, PropertiesAreToldApartByTheFlagsAndPutThroughTheNamedValue) {
    const auto dictionary = Make<Dictionary>();
    EXPECT_EQ(
        Call(dictionary.Get(), 5, DISPATCH_PROPERTYPUT, {Long(7), Long(70)}, {DISPID_PROPERTYPUT})
            .status,
        S_OK);
    EXPECT_EQ(Call(dictionary.Get(), 5, DISPATCH_PROPERTYGET, {Long(7)}).result.lVal, 70);
    EXPECT_EQ(
        Call(dictionary.Get(), 5, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {Long(7)}).result.lVal,
        70);
    EXPECT_EQ(Call(dictionary.Get(), 5, DISPATCH_METHOD, {Long(7)}).status, DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(Call(dictionary.Get(), 99, DISPATCH_METHOD, {}).status, DISP_E_MEMBERNOTFOUND);

    EXPECT_EQ(
        Call(dictionary.Get(), 2, DISPATCH_PROPERTYPUTREF, {Long(2)}, {DISPID_PROPERTYPUT}).status,
        S_OK);
    const Answer mode = Call(dictionary.Get(), 2, DISPATCH_PROPERTYGET, {});
    EXPECT_EQ(mode.result.vt, VT_I4) << "an enumeration travels as a long";
    EXPECT_EQ(mode.result.lVal, dctmDatabaseCompare);
}

TEST(InvokeTest, CountsAndNamesArguments) {
    const auto dictionary = Make<Dictionary>();
    IDispatch* const object = dictionary.Get();
    EXPECT_EQ(Call(object, 1, DISPATCH_METHOD, {Long(1), Long(2), Long(3)}).status,
              DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(Call(object, 1, DISPATCH_METHOD, {Long(1)}).status, DISP_E_PARAMNOTOPTIONAL);
    const Answer omitted = Call(object, 1, DISPATCH_METHOD, {Missing(), Long(1)});
    EXPECT_EQ(omitted.status, DISP_E_PARAMNOTOPTIONAL);
    EXPECT_EQ(omitted.badArgument, 1u) << "counted from the last argument";

    // Named: item first, key second.
    EXPECT_EQ(Call(object, 1, DISPATCH_METHOD, {Long(60), Long(6)}, {1, 0}).status, S_OK);
    EXPECT_EQ(Call(object, 5, DISPATCH_PROPERTYGET, {Long(6)}).result.lVal, 60);
    const Answer unknown = Call(object, 1, DISPATCH_METHOD, {Long(1), Long(2)}, {5});
    EXPECT_EQ(unknown.status, DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(unknown.badArgument, 0u);
    EXPECT_EQ(Call(object, 1, DISPATCH_METHOD, {Long(1), Long(2)}, {0}).status,
              DISP_E_PARAMNOTFOUND)
        << "the key twice";

    DISPPARAMS none{nullptr, nullptr, 0, 0};
    EXPECT_EQ(
        object->Invoke(3, IID_IUnknown, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr),
        DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(
        object->Invoke(3, GUID_NULL, 0, DISPATCH_PROPERTYGET, nullptr, nullptr, nullptr, nullptr),
        E_INVALIDARG);
    EXPECT_EQ(
        object->Invoke(3, GUID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr),
        S_OK)
        << "no place for a result is fine";
    DISPPARAMS lying{nullptr, nullptr, 1, 0};
    EXPECT_EQ(object->Invoke(9, GUID_NULL, 0, DISPATCH_METHOD, &lying, nullptr, nullptr, nullptr),
              E_INVALIDARG);
}

TEST(InvokeTest, StatusAndReportReachTheCaller) {
    const auto dictionary = Make<Dictionary>();
    EXPECT_EQ(Call(dictionary.Get(), 4, DISPATCH_METHOD, {Long(1)}).status, S_FALSE);

    Answer reported = Call(dictionary.Get(), 9, DISPATCH_METHOD, {Long(1)});
    EXPECT_EQ(reported.status, DISP_E_EXCEPTION);
    EXPECT_EQ(reported.exception.scode, E_FAIL);
    EXPECT_EQ(std::u16string(reported.exception.bstrDescription), u"cannot remove");
    SysFreeString(reported.exception.bstrDescription);

    ReportError(GUID_NULL, u"stale", IID_IQLNDictionary, E_FAIL);
    const Answer silent = Call(dictionary.Get(), 10, DISPATCH_METHOD, {});
    EXPECT_EQ(silent.exception.scode, E_OUTOFMEMORY);
    EXPECT_EQ(silent.exception.bstrDescription, nullptr) << "an earlier report is not this call's";
}

TEST(InvokeTest, VariantsReachTheMethodAsTheyAre) {
    const auto dictionary = Make<Dictionary>();
    VARIANT key = Long(3), item = Long(30);
    key.vt = VT_UI4;
    VARIANT reference{};
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = &key;
    EXPECT_EQ(Call(dictionary.Get(), 1, DISPATCH_METHOD, {reference, item}).status, S_OK);
    EXPECT_EQ(Dictionary::lastType, VT_UI4);
    EXPECT_EQ(Call(dictionary.Get(), 5, DISPATCH_PROPERTYGET, {Long(3)}).result.lVal, 30);
}

TEST(InvokeTest, ArraysAndAddressesGoByReference) {
    const auto sorter = Make<Sorter>();
    SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, 3);
    VARIANT direct{};
    direct.vt = VT_BYREF | VT_ARRAY | VT_BSTR;
    direct.pparray = &array;
    EXPECT_EQ(Call(sorter.Get(), 2, DISPATCH_METHOD, {direct, Long(0)}).status, S_FALSE);
    EXPECT_EQ(std::u16string(*static_cast<BSTR*>(array->pvData)), u"xxx");

    VARIANT holder{};
    holder.vt = VT_ARRAY | VT_BSTR;
    holder.parray = array;
    VARIANT indirect{};
    indirect.vt = VT_BYREF | VT_VARIANT;
    indirect.pvarVal = &holder;
    EXPECT_EQ(Call(sorter.Get(), 2, DISPATCH_METHOD, {indirect, Long(1)}).status, S_OK);
    ASSERT_EQ(holder.vt, VT_ARRAY | VT_BSTR);
    EXPECT_EQ(std::u16string(*static_cast<BSTR*>(holder.parray->pvData)), u"x");
    VariantClear(&holder);

    SAFEARRAY* numbers = SafeArrayCreateVector(VT_I4, 0, 1);
    VARIANT wrong{};
    wrong.vt = VT_BYREF | VT_ARRAY | VT_I4;
    wrong.pparray = &numbers;
    const Answer mismatch = Call(sorter.Get(), 2, DISPATCH_METHOD, {wrong, Long(0)});
    EXPECT_EQ(mismatch.status, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(mismatch.badArgument, 1u);
    SafeArrayDestroy(numbers);

    std::int32_t data = 0;
    VARIANT address{};
    address.vt = VT_BYREF | VT_I4;
    address.plVal = &data;
    EXPECT_EQ(Call(sorter.Get(), 1, DISPATCH_METHOD, {address, Long(4), Long(1), Long(0)}).status,
              S_OK);
    EXPECT_EQ(data, 99);
    EXPECT_EQ(Call(sorter.Get(), 1, DISPATCH_METHOD, {Long(5), Long(4), Long(1), Long(0)}).status,
              DISP_E_TYPEMISMATCH);
}

TEST(DescriptionTest, TablesAreCompleteAndInOrder) {
    for (const auto describe :
         {DescribeStringUtils, DescribeITDReader, DescribeITDWriter, DescribeQLNSort,
          DescribeExtViewHelper, DescribeLongSet, DescribeUDrawText, DescribeLongStack,
          DescribeQLNDictionary, DescribeCodePageHelper}) {
        const InterfaceDescription& interface = describe();
        std::int16_t offset = 7 * sizeof(void*);
        for (const Method& method : interface.methods) {
            EXPECT_EQ(method.tableOffset, offset)
                << testing::PrintToString(std::u16string(interface.name)) << " "
                << testing::PrintToString(std::u16string(method.name));
            offset = static_cast<std::int16_t>(offset + sizeof(void*));
        }
    }
}

TEST(DescriptionTest, NamesAreFoundInAnyCase) {
    const auto ids = [](std::vector<std::u16string> names) {
        std::vector<char16_t*> pointers;
        for (std::u16string& name : names) {
            pointers.push_back(name.data());
        }
        std::vector<DISPID> found(names.size(), 4711);
        const HRESULT status = FindIds(DescribeExtViewHelper(), pointers.data(),
                                       static_cast<std::uint32_t>(names.size()), found.data());
        return std::pair(status, found);
    };
    EXPECT_EQ(ids({u"SOURCEfont"}), std::pair(S_OK, std::vector<DISPID>{2}));
    EXPECT_EQ(ids({u"IsFileRTF", u"sourcefile"}), std::pair(S_OK, std::vector<DISPID>{5, 0}));
    EXPECT_EQ(ids({u"IsFileRTF", u"pVal"}),
              std::pair(DISP_E_UNKNOWNNAME, std::vector<DISPID>{5, DISPID_UNKNOWN}))
        << "a result has no name";
    EXPECT_EQ(ids({u"None", u"pVal"}),
              std::pair(DISP_E_UNKNOWNNAME, std::vector<DISPID>{DISPID_UNKNOWN, DISPID_UNKNOWN}));
}

}  // namespace
}  // namespace generalutilities
