// Late binding, on the objects of the library.

#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/collections.h>
#include <generalutilities/interfaces/ext_view_helper.h>
#include <generalutilities/interfaces/string_utils.h>

#include "values.h"

namespace generalutilities {
namespace {

class InvokeTest : public testing::Test {
  protected:
    ComPtr<IDispatch> dictionary = Create<IDispatch>(CLSID_qlnDictionary, IID_IDispatch);
    ComPtr<IDispatch> sort = Create<IDispatch>(CLSID_QLNSort, IID_IDispatch);
    ComPtr<IDispatch> utils = Create<IDispatch>(CLSID_StringUtils, IID_IDispatch);
    ComPtr<IDispatch> stack = Create<IDispatch>(CLSID_LongStack, IID_IDispatch);
};

TEST_F(InvokeTest, CountsAndNamesArgumentsAndTellsPropertiesApart) {
    constexpr std::uint16_t Method = DISPATCH_METHOD, Get = DISPATCH_PROPERTYGET;
    const VARIANT missing = Of(VT_ERROR, DISP_E_PARAMNOTFOUND);
    const struct {
        DISPID member;
        int flags;
        std::vector<VARIANT> arguments;
        std::vector<DISPID> names;
        HRESULT status;
        std::int32_t result = -1;         ///< of a call that gives one
        std::uint32_t badArgument = 777;  ///< counted from the last argument
    } calls[] = {
        {5, DISPATCH_PROPERTYPUT, {Long(7), Long(70)}, {DISPID_PROPERTYPUT}, S_OK},
        {5, Get, {Long(7)}, {}, S_OK, 70},
        {5, Method | Get, {Long(7)}, {}, S_OK, 70},
        {5, Method, {Long(7)}, {}, DISP_E_MEMBERNOTFOUND},
        {99, Method, {}, {}, DISP_E_MEMBERNOTFOUND},
        {2, DISPATCH_PROPERTYPUTREF, {Long(2)}, {DISPID_PROPERTYPUT}, S_OK},
        {2, Get, {}, {}, S_OK, dctmBinaryCompare},  // an enumeration travels as a long
        {1, Method, {Long(1), Long(2), Long(3)}, {}, DISP_E_BADPARAMCOUNT},
        {1, Method, {Long(1)}, {}, DISP_E_PARAMNOTOPTIONAL, -1, 0},
        {1, Method, {missing, Long(1)}, {}, DISP_E_PARAMNOTOPTIONAL, -1, 1},
        {1, Method, {Long(60), Long(6)}, {1, 0}, S_OK},  // item first, key second
        {5, Get, {Long(6)}, {}, S_OK, 60},
        {1, Method, {Long(1), Long(2)}, {5}, DISP_E_PARAMNOTFOUND, -1, 0},
        {1, Method, {Long(1), Long(2)}, {0}, DISP_E_PARAMNOTFOUND, -1, 0},  // the key twice
        {3, Get, {}, {}, S_OK, 2},
    };
    for (const auto& call : calls) {
        SCOPED_TRACE(&call - calls);
        const Answer answer =
            Call(dictionary.Get(), call.member, static_cast<std::uint16_t>(call.flags),
                 call.arguments, call.names);
        EXPECT_EQ(answer.status, call.status);
        EXPECT_EQ(answer.badArgument, call.badArgument);
        EXPECT_EQ(answer.result.vt, call.result < 0 ? VT_EMPTY : VT_I4);
        EXPECT_EQ(answer.result.lVal, std::max(call.result, 0));
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

TEST_F(InvokeTest, ReportsReachTheCaller) {
    const Bstr text(u"x");
    BSTR source = text.Get();
    std::int32_t last = 0;
    SAFEARRAY *numbers = nullptr, *contents = nullptr;
    const Answer reported =
        Call(utils.Get(), 14, DISPATCH_METHOD,
             {Ref(VT_BSTR, &source), Of(VT_NULL), Ref(VT_I4, &last),
              Ref(VT_ARRAY | VT_I4, &numbers), Ref(VT_ARRAY | VT_BSTR, &contents)});
    EXPECT_EQ(reported.status, DISP_E_EXCEPTION);
    EXPECT_EQ(reported.exception.scode, E_FAIL);
    EXPECT_EQ(std::u16string(reported.exception.bstrDescription), u"No dictionary passed");
    SysFreeString(reported.exception.bstrDescription);
    EXPECT_EQ(std::u16string(reported.exception.bstrSource), u"GeneralUtilities.StringUtils.1");
    SysFreeString(reported.exception.bstrSource);

    static_cast<IStringUtils*>(utils.Get())
        ->SerializeCodes(&source, nullptr, &last, &numbers, &contents);
    const Answer silent = Call(stack.Get(), 2, DISPATCH_METHOD);
    EXPECT_EQ(silent.status, DISP_E_EXCEPTION);
    EXPECT_EQ(silent.exception.scode, E_FAIL);
    EXPECT_EQ(silent.exception.bstrDescription, nullptr) << "an earlier report is not this call's";
}

std::int32_t CompareBackwards(const void* left, const void* right) {
    return **static_cast<const BSTR*>(right) - **static_cast<const BSTR*>(left);
}
std::int32_t Compare(const void* left, const void* right) {
    return *static_cast<const std::int32_t*>(left) - *static_cast<const std::int32_t*>(right);
}

TEST_F(InvokeTest, ReferencesReachWhatTheyReferTo) {
    VARIANT key = Of(VT_UI4, 3);
    EXPECT_EQ(Call(dictionary.Get(), 1, DISPATCH_METHOD, {Ref(VT_VARIANT, &key), Long(30)}).status,
              S_OK);
    Answer keys = Call(dictionary.Get(), 8, DISPATCH_METHOD);
    EXPECT_EQ(static_cast<VARIANT*>(keys.result.parray->pvData)->vt, VT_UI4)
        << "handed on as it is";
    VariantClear(&keys.result);

    const std::int32_t texts = HandleFromPointer(reinterpret_cast<void*>(CompareBackwards));
    const std::int32_t numbers = HandleFromPointer(reinterpret_cast<void*>(Compare));
    const auto sorted = [&](VARIANT array, std::int32_t handle) {
        return Call(sort.Get(), 2, DISPATCH_METHOD, {array, Long(handle)}).status;
    };
    VARIANT holder = Of(VT_ARRAY | VT_BSTR);
    holder.parray = SafeArrayCreateVector(VT_BSTR, 0, 2);
    const auto first = [&]() -> BSTR& { return *static_cast<BSTR*>(holder.parray->pvData); };
    *(&first() + 1) = SysAllocString(u"b");
    first() = SysAllocString(u"a");
    const VARIANT direct = Ref(VT_ARRAY | VT_BSTR, &holder.parray);
    const std::tuple<VARIANT, std::int32_t, HRESULT, char16_t> sorts[] = {
        {direct, 0, S_FALSE, u'a'},
        {holder, texts, S_OK, u'a'},  // a copy is sorted
        {Ref(VT_VARIANT, &holder), texts, S_OK, u'b'},
        {direct, texts, S_OK, u'b'}};
    for (const auto& [array, handle, status, now] : sorts) {
        EXPECT_EQ(sorted(array, handle), status);
        EXPECT_EQ(*first(), now);
        if (now == u'b') {
            std::swap(first(), *(&first() + 1));
        }
    }
    VariantClear(&holder);

    std::int32_t data[] = {2, 1};
    SAFEARRAY* wrong = SafeArrayCreateVector(VT_I4, 0, 1);
    EXPECT_EQ(sorted(Ref(VT_ARRAY | VT_I4, &wrong), texts), DISP_E_TYPEMISMATCH);
    SafeArrayDestroy(wrong);
    for (const auto& [place, status] :
         {std::pair{Long(5), HRESULT{DISP_E_TYPEMISMATCH}}, {Ref(VT_I4, &data), S_OK}}) {
        EXPECT_EQ(data[0], 2);
        const Answer answer =
            Call(sort.Get(), 1, DISPATCH_METHOD, {place, Long(4), Long(2), Long(numbers)});
        EXPECT_EQ(answer.status, status);
        EXPECT_EQ(answer.badArgument, status == S_OK ? 777u : 3u);
    }
    EXPECT_EQ(data[0], 1);
    ReleaseHandle(texts);
    ReleaseHandle(numbers);
}

/// By-reference long and enumeration, defaults, named arguments.
TEST_F(InvokeTest, ConvertsThereAndBack) {
    const Bstr text(u"one two");
    std::int32_t position = 1;
    VARIANT type = Of(VT_BSTR);  // of another type than the argument
    type.bstrVal = SysAllocString(u"2");
    Answer answer =
        Call(utils.Get(), 19, DISPATCH_METHOD,
             {Ref(VT_I4, &position), Borrowed(text), Of(VT_I2, 1033), Ref(VT_VARIANT, &type)});
    ASSERT_EQ(answer.status, S_OK);
    EXPECT_EQ(TakeText(answer.result), u"one");
    EXPECT_EQ(position, 4);
    EXPECT_EQ(type.vt, VT_I4);
    EXPECT_EQ(type.lVal, qlnwtWord);

    // The language by name; the size takes its default.
    answer = Call(utils.Get(), 21, DISPATCH_METHOD, {Borrowed(text), Long(1033)}, {1});
    EXPECT_EQ(TakeText(answer.result), u"one two");
    answer = Call(utils.Get(), 21, DISPATCH_METHOD, {Borrowed(text), Long(1033), Borrowed(text)});
    EXPECT_EQ(answer.status, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(answer.badArgument, 0u);
}

TEST_F(InvokeTest, FindsNamesInAnyCase) {
    const auto helper = Create<IDispatch>(CLSID_ExtViewHelper, IID_IDispatch);
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
        EXPECT_EQ(helper->GetIDsOfNames(GUID_NULL, pointers.data(),
                                        static_cast<std::uint32_t>(found.size()), 0, found.data()),
                  test.status);
        EXPECT_EQ(found, test.ids);
    }
}

}  // namespace
}  // namespace generalutilities
