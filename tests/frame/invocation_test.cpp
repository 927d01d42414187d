// Late binding, on objects of the test's own that record what reaches them.

#include <generalutilities/interfaces/ext_view_helper.h>

#include "frame/error_reporting.h"
#include "test_class.h"
#include "values.h"

#include <map>

namespace generalutilities {
namespace {

VARTYPE lastType = VT_EMPTY;

/// A dictionary whose keys and items are long integers.
class Dictionary : public TestClass<IQLNDictionary, DescribeQLNDictionary> {
  public:
    HRESULT Add(VARIANT* key, VARIANT* item) noexcept override { return put_Item(key, item); }
    HRESULT get_CompareMode(qlnCompareMethod* m) noexcept override { return Give(m, mode); }
    HRESULT put_CompareMode(qlnCompareMethod value) noexcept override { return Give(&mode, value); }
    HRESULT get_Count(std::int32_t* count) noexcept override { return Give(count, 0); }
    HRESULT Exists(VARIANT*, VARIANT_BOOL*) noexcept override { return S_FALSE; }
    HRESULT get_Item(VARIANT* key, VARIANT* value) noexcept override {
        return Give(value, Long(items[key->lVal]));
    }
    HRESULT put_Item(VARIANT* key, VARIANT* value) noexcept override {
        lastType = key->vt;
        return Give(&items[key->lVal], value->lVal);
    }
    HRESULT Items(VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT get_Key(VARIANT*, VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT put_Key(VARIANT*, VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT Keys(VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT Remove(VARIANT*) noexcept override {
        return ReportError(GUID_NULL, u"cannot remove", IID_IQLNDictionary, E_FAIL);
    }
    HRESULT RemoveAll() noexcept override { return E_OUTOFMEMORY; }

  private:
    std::map<std::int32_t, std::int32_t> items;
    qlnCompareMethod mode = dctmBinaryCompare;
};

class Sorter : public TestClass<IQLNSort, DescribeQLNSort> {
  public:
    HRESULT Sort(void* data, std::int32_t, std::int32_t, std::int32_t) noexcept override {
        return Give(static_cast<std::int32_t*>(data), 99);
    }
    /// Replaces the array by one whose only text is as long as the array was.
    HRESULT StringSort(SAFEARRAY** array, std::int32_t handle) noexcept override {
        std::int32_t upper = -1, zero = 0;
        SafeArrayGetUBound(*array, 1, &upper);
        SafeArrayDestroy(*array);
        *array = SafeArrayCreateVector(VT_BSTR, 0, 1);
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

TEST(InvokeTest, CountsAndNamesArgumentsAndTellsPropertiesApart) {
    constexpr std::uint16_t Method = DISPATCH_METHOD, Get = DISPATCH_PROPERTYGET;
    const VARIANT missing = Of(VT_ERROR, DISP_E_PARAMNOTFOUND);
    const struct {
        DISPID member;
        int flags;
        std::vector<VARIANT> arguments;
        std::vector<DISPID> names;
        HRESULT status;
        std::int32_t result = 0;          ///< of a call that gives one
        std::uint32_t badArgument = 777;  ///< counted from the last argument
    } calls[] = {
        {5, DISPATCH_PROPERTYPUT, {Long(7), Long(70)}, {DISPID_PROPERTYPUT}, S_OK},
        {5, Get, {Long(7)}, {}, S_OK, 70},
        {5, Method | Get, {Long(7)}, {}, S_OK, 70},
        {5, Method, {Long(7)}, {}, DISP_E_MEMBERNOTFOUND},
        {99, Method, {}, {}, DISP_E_MEMBERNOTFOUND},
        {2, DISPATCH_PROPERTYPUTREF, {Long(2)}, {DISPID_PROPERTYPUT}, S_OK},
        {2, Get, {}, {}, S_OK, dctmDatabaseCompare},  // an enumeration travels as a long
        {1, Method, {Long(1), Long(2), Long(3)}, {}, DISP_E_BADPARAMCOUNT},
        {1, Method, {Long(1)}, {}, DISP_E_PARAMNOTOPTIONAL, 0, 0},
        {1, Method, {missing, Long(1)}, {}, DISP_E_PARAMNOTOPTIONAL, 0, 1},
        {1, Method, {Long(60), Long(6)}, {1, 0}, S_OK},  // item first, key second
        {5, Get, {Long(6)}, {}, S_OK, 60},
        {1, Method, {Long(1), Long(2)}, {5}, DISP_E_PARAMNOTFOUND, 0, 0},
        {1, Method, {Long(1), Long(2)}, {0}, DISP_E_PARAMNOTFOUND, 0, 0},  // the key twice
        {4, Method, {Long(1)}, {}, S_FALSE},
    };
    const auto dictionary = Make<Dictionary>();
    for (const auto& call : calls) {
        SCOPED_TRACE(&call - calls);
        const Answer answer =
            Call(dictionary.Get(), call.member, static_cast<std::uint16_t>(call.flags),
                 call.arguments, call.names);
        EXPECT_EQ(answer.status, call.status);
        EXPECT_EQ(answer.badArgument, call.badArgument);
        if (call.result != 0) {
            EXPECT_EQ(answer.result.vt, VT_I4);
            EXPECT_EQ(answer.result.lVal, call.result);
        }
    }
    DISPPARAMS none{nullptr, nullptr, 0, 0}, lying{nullptr, nullptr, 1, 0};
    const auto plain = [&](DISPID member, std::uint16_t flags, REFIID iid, DISPPARAMS* arguments) {
        return dictionary->Invoke(member, iid, 0, flags, arguments, nullptr, nullptr, nullptr);
    };
    EXPECT_EQ(plain(3, Get, IID_IUnknown, &none), DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(plain(3, Get, GUID_NULL, nullptr), E_INVALIDARG);
    EXPECT_EQ(plain(3, Get, GUID_NULL, &none), S_OK) << "no place for a result is fine";
    EXPECT_EQ(plain(9, Method, GUID_NULL, &lying), E_INVALIDARG);
}

TEST(InvokeTest, ReportsReachTheCaller) {
    const auto dictionary = Make<Dictionary>();
    const Answer reported = Call(dictionary.Get(), 9, DISPATCH_METHOD, {Long(1)});
    EXPECT_EQ(reported.status, DISP_E_EXCEPTION);
    EXPECT_EQ(reported.exception.scode, E_FAIL);
    EXPECT_EQ(std::u16string(reported.exception.bstrDescription), u"cannot remove");
    SysFreeString(reported.exception.bstrDescription);

    ReportError(GUID_NULL, u"stale", IID_IQLNDictionary, E_FAIL);
    const Answer silent = Call(dictionary.Get(), 10, DISPATCH_METHOD);
    EXPECT_EQ(silent.exception.scode, E_OUTOFMEMORY);
    EXPECT_EQ(silent.exception.bstrDescription, nullptr) << "an earlier report is not this call's";
}

TEST(InvokeTest, ReferencesReachWhatTheyReferTo) {
    const auto dictionary = Make<Dictionary>();
    VARIANT key = Of(VT_UI4, 3);
    EXPECT_EQ(Call(dictionary.Get(), 1, DISPATCH_METHOD, {Ref(VT_VARIANT, &key), Long(30)}).status,
              S_OK);
    EXPECT_EQ(lastType, VT_UI4) << "a variant argument is handed on as it is";

    const auto sorter = Make<Sorter>();
    const auto sort = [&](VARIANT array, std::int32_t handle) {
        return Call(sorter.Get(), 2, DISPATCH_METHOD, {array, Long(handle)});
    };
    VARIANT holder = Of(VT_ARRAY | VT_BSTR);
    holder.parray = SafeArrayCreateVector(VT_BSTR, 0, 3);
    const auto text = [&] { return std::u16string(*static_cast<BSTR*>(holder.parray->pvData)); };
    EXPECT_EQ(sort(Ref(VT_ARRAY | VT_BSTR, &holder.parray), 0).status, S_FALSE);
    EXPECT_EQ(text(), u"xxx");
    EXPECT_EQ(sort(Ref(VT_VARIANT, &holder), 1).status, S_OK);
    EXPECT_EQ(text(), u"x");
    VariantClear(&holder);

    SAFEARRAY* numbers = SafeArrayCreateVector(VT_I4, 0, 1);
    const Answer mismatch = sort(Ref(VT_ARRAY | VT_I4, &numbers), 0);
    EXPECT_EQ(mismatch.status, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(mismatch.badArgument, 1u);
    SafeArrayDestroy(numbers);

    std::int32_t data = 0;
    for (const auto& [place, status] :
         {std::pair{Ref(VT_I4, &data), S_OK}, {Long(5), HRESULT{DISP_E_TYPEMISMATCH}}}) {
        EXPECT_EQ(Call(sorter.Get(), 1, DISPATCH_METHOD, {place, Long(4), Long(1), Long(0)}).status,
                  status);
    }
    EXPECT_EQ(data, 99);
}

TEST(DescriptionTest, NamesAreFoundInAnyCase) {
    const struct {
        std::vector<std::u16string> names;
        HRESULT status;
        std::vector<DISPID> ids;
    } cases[] = {
        {{u"SOURCEfont"}, S_OK, {2}},
        {{u"IsFileRTF", u"sourcefile"}, S_OK, {5, 0}},
        {{u"IsFileRTF", u"pVal"}, DISP_E_UNKNOWNNAME, {5, DISPID_UNKNOWN}},  // a result has no name
        {{u"None", u"pVal"}, DISP_E_UNKNOWNNAME, {DISPID_UNKNOWN, DISPID_UNKNOWN}},
    };
    for (auto test : cases) {
        std::vector<char16_t*> pointers;
        for (std::u16string& name : test.names) {
            pointers.push_back(name.data());
        }
        std::vector<DISPID> found(pointers.size(), 4711);
        EXPECT_EQ(FindIds(DescribeExtViewHelper(), pointers.data(),
                          static_cast<std::uint32_t>(found.size()), found.data()),
                  test.status);
        EXPECT_EQ(found, test.ids);
    }
}

}  // namespace
}  // namespace generalutilities
