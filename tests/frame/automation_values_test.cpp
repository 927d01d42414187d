// Strings, variants and arrays as they cross the border.

#include <generalutilities/automation/pointers.h>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <vector>

namespace generalutilities {
namespace {

TEST(BstrTest, LengthStandsBeforeAZeroTerminatedText) {
    const Bstr text(std::u16string_view(u"a\0\xD800z", 4));
    EXPECT_EQ(reinterpret_cast<const std::uint32_t*>(text.Get())[-1], 8u);
    EXPECT_EQ(SysStringLen(text.Get()), 4u);
    EXPECT_EQ(text.Get()[4], u'\0');

    BSTR odd = SysAllocStringByteLen("abc", 3);
    EXPECT_EQ(SysStringByteLen(odd), 3u);
    EXPECT_EQ(SysStringLen(odd), 1u);
    EXPECT_EQ(reinterpret_cast<const char*>(odd)[3], 0);
    SysFreeString(odd);

    EXPECT_EQ(SysStringLen(nullptr), 0u);
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysAllocStringLen(nullptr, 0xFFFFFFFF), nullptr) << "no wrap-around of the size";
}

TEST(BstrTest, ReallocatesFromInsideItself) {
    BSTR text = SysAllocString(u"0123456789");
    ASSERT_EQ(SysReAllocStringLen(&text, text + 2, 3), 1);
    EXPECT_EQ(std::u16string(text), u"234");
    ASSERT_EQ(SysReAllocStringLen(&text, nullptr, 2), 1);
    EXPECT_EQ(std::u16string(text), u"23");
    EXPECT_EQ(SysStringLen(text), 2u);
    SysFreeString(text);
}

VARIANT Number(double value) {
    VARIANT v{};
    v.vt = VT_R8;
    v.dblVal = value;
    return v;
}
VARIANT Long(std::int32_t value) {
    VARIANT v{};
    v.vt = VT_I4;
    v.lVal = value;
    return v;
}
VARIANT Of(VARTYPE type, std::int64_t value) {
    VARIANT v{};
    v.vt = type;
    v.llVal = value;
    return v;
}
VARIANT Text(const char16_t* text) {
    VARIANT v{};
    v.vt = VT_BSTR;
    v.bstrVal = SysAllocString(text);
    return v;
}

struct Conversion {
    VARIANT from;
    VARTYPE type;
    HRESULT status;
    std::u16string result;  ///< the result, itself converted to a text
};

TEST(VariantTest, ConvertsOrSaysWhyNot) {
    const double inf = std::numeric_limits<double>::infinity();
    std::vector<Conversion> table = {
        {Text(u" 12 "), VT_I4, S_OK, u"12"},
        {Text(u"-2147483648"), VT_I4, S_OK, u"-2147483648"},
        {Text(u"2147483648"), VT_I4, DISP_E_OVERFLOW, u""},
        {Text(u"1e3"), VT_I4, S_OK, u"1000"},
        {Text(u"2.5"), VT_I4, S_OK, u"2"},
        {Text(u"3.5"), VT_I4, S_OK, u"4"},
        {Text(u"1,000"), VT_I4, DISP_E_TYPEMISMATCH, u""},
        {Text(u""), VT_I4, DISP_E_TYPEMISMATCH, u""},
        {Text(u"+-1"), VT_I4, DISP_E_TYPEMISMATCH, u""},
        {Text(u"nan"), VT_R8, DISP_E_TYPEMISMATCH, u""},
        {Text(u"TRUE"), VT_BOOL, S_OK, u"True"},
        {Text(u"0"), VT_BOOL, S_OK, u"False"},
        {Text(u"yes"), VT_BOOL, DISP_E_TYPEMISMATCH, u""},
        {Number(0.1), VT_BSTR, S_OK, u"0.1"},
        {Number(-1.5e300), VT_I8, DISP_E_OVERFLOW, u""},
        {Number(std::nan("")), VT_I4, DISP_E_OVERFLOW, u""},
        {Number(inf), VT_R4, S_OK, u"inf"},
        {Number(1e300), VT_R4, DISP_E_OVERFLOW, u""},
        {Number(-0.4), VT_UI1, S_OK, u"0"},
        {Number(-1), VT_UI1, DISP_E_OVERFLOW, u""},
        {Number(1.23456), VT_CY, S_OK, u"1.2346"},
        {Long(-1), VT_BOOL, S_OK, u"True"},
        {Long(-1), VT_UI4, DISP_E_OVERFLOW, u""},
        {Long(300), VT_UI1, DISP_E_OVERFLOW, u""},
        {Long(-128), VT_I1, S_OK, u"-128"},
        {Of(VT_BOOL, VARIANT_TRUE), VT_I4, S_OK, u"-1"},
        {Of(VT_UI8, -1), VT_BSTR, S_OK, u"18446744073709551615"},
        {Of(VT_UI8, -1), VT_I8, DISP_E_OVERFLOW, u""},
        {Of(VT_I8, std::numeric_limits<std::int64_t>::min()), VT_BSTR, S_OK,
         u"-9223372036854775808"},
        {VARIANT{}, VT_BSTR, S_OK, u""},
        {VARIANT{}, VT_I4, S_OK, u"0"},
        {Of(VT_NULL, 0), VT_I4, DISP_E_TYPEMISMATCH, u""},
        {Of(VT_ERROR, DISP_E_PARAMNOTFOUND), VT_BSTR, DISP_E_TYPEMISMATCH, u""},
        {Of(VT_UNKNOWN, 0), VT_DISPATCH, S_OK, u"?"},
        {Long(1), VT_DISPATCH, DISP_E_TYPEMISMATCH, u""},
        {Long(1), VARTYPE{99}, DISP_E_BADVARTYPE, u""},
    };
    for (std::size_t i = 0; i < table.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "row " << i);
        Conversion& row = table[i];
        VARIANT to = Long(4711);
        EXPECT_EQ(VariantChangeType(&to, &row.from, 0, row.type), row.status);
        if (Failed(row.status)) {
            EXPECT_EQ(to.lVal, 4711) << "a failure leaves the target alone";
        } else if (row.result != u"?") {
            VARIANT text{};
            ASSERT_EQ(VariantChangeType(&text, &to, 0, VT_BSTR), S_OK);
            EXPECT_EQ(std::u16string(text.bstrVal), row.result);
            VariantClear(&text);
        }
        VariantClear(&to);
        VariantClear(&row.from);
    }
}

TEST(VariantTest, FollowsReferencesAndCopiesWhatItOwns) {
    VARIANT text = Text(u"kept");
    VARIANT reference{};
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = &text;
    VARIANT copy{};
    ASSERT_EQ(VariantCopyInd(&copy, &reference), S_OK);
    EXPECT_EQ(copy.vt, VT_BSTR);
    EXPECT_NE(copy.bstrVal, text.bstrVal);
    EXPECT_EQ(VariantChangeType(&copy, &copy, 0, VT_BSTR), S_OK) << "in place";
    VariantClear(&copy);
    VariantClear(&text);

    VARIANT loop{};
    loop.vt = VT_BYREF | VT_VARIANT;
    loop.pvarVal = &loop;
    EXPECT_EQ(VariantCopyInd(&copy, &loop), E_INVALIDARG);
    VARIANT unknown = Of(VARTYPE{77}, 0);
    EXPECT_EQ(VariantClear(&unknown), DISP_E_BADVARTYPE);
}

TEST(SafeArrayTest, KeepsBoundsAndOwnsItsElements) {
    SAFEARRAYBOUND bounds[2] = {{2, -1}, {3, 10}};
    SAFEARRAY* const array = SafeArrayCreate(VT_BSTR, 2, bounds);
    ASSERT_NE(array, nullptr);
    std::int32_t bound = 0;
    EXPECT_EQ(SafeArrayGetLBound(array, 2, &bound), S_OK);
    EXPECT_EQ(bound, 10);
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &bound), S_OK);
    EXPECT_EQ(bound, 0);
    EXPECT_EQ(SafeArrayGetUBound(array, 3, &bound), DISP_E_BADINDEX);

    for (std::int32_t i = -1; i <= 0; ++i) {
        for (std::int32_t j = 10; j <= 12; ++j) {
            std::int32_t indices[2] = {i, j};
            const Bstr element(std::u16string(1, static_cast<char16_t>(u'a' + j)));
            EXPECT_EQ(SafeArrayPutElement(array, indices, element.Get()), S_OK);
        }
    }
    std::int32_t outside[2] = {1, 10};
    BSTR element = nullptr;
    EXPECT_EQ(SafeArrayGetElement(array, outside, &element), DISP_E_BADINDEX);

    SAFEARRAY* copy = nullptr;
    ASSERT_EQ(SafeArrayCopy(array, &copy), S_OK);
    ASSERT_EQ(SafeArrayLock(array), S_OK);
    EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(SafeArrayUnlock(array), S_OK);
    EXPECT_EQ(SafeArrayUnlock(array), E_UNEXPECTED);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);

    std::int32_t last[2] = {0, 12};
    ASSERT_EQ(SafeArrayGetElement(copy, last, &element), S_OK);
    EXPECT_EQ(std::u16string(element), u"m");
    SysFreeString(element);
    void* data = nullptr;
    ASSERT_EQ(SafeArrayAccessData(copy, &data), S_OK);
    EXPECT_EQ(std::u16string(static_cast<BSTR*>(data)[1]), u"k")
        << "the first dimension is fastest";
    SafeArrayUnaccessData(copy);
    EXPECT_EQ(SafeArrayDestroy(copy), S_OK);
}

TEST(SafeArrayTest, RefusesWhatCannotBe) {
    SAFEARRAYBOUND huge[2] = {{0xFFFFFFFF, 0}, {0xFFFFFFFF, 0}};
    EXPECT_EQ(SafeArrayCreate(VT_I4, 2, huge), nullptr);
    EXPECT_EQ(SafeArrayCreate(VT_I4, 0, huge), nullptr);
    EXPECT_EQ(SafeArrayCreateVector(VT_EMPTY, 0, 1), nullptr);
    SAFEARRAY* const empty = SafeArrayCreateVector(VT_VARIANT, 1, 0);
    std::int32_t bound = 7;
    EXPECT_EQ(SafeArrayGetUBound(empty, 1, &bound), S_OK);
    EXPECT_EQ(bound, 0) << "one below the lower bound";
    EXPECT_EQ(SafeArrayDestroy(empty), S_OK);
    EXPECT_EQ(SafeArrayDestroy(nullptr), S_OK);
}

TEST(HandleTest, StandsForAnAddressUntilReleased) {
    int first = 0, second = 0;
    const std::int32_t a = HandleFromPointer(&first);
    const std::int32_t b = HandleFromPointer(&second);
    EXPECT_GT(a, 0);
    EXPECT_NE(a, b);
    EXPECT_EQ(PointerFromHandle(b), &second);
    ReleaseHandle(a);
    ReleaseHandle(a);
    EXPECT_EQ(PointerFromHandle(a), nullptr);
    for (const std::int32_t wrong : {0, -1, std::numeric_limits<std::int32_t>::min(),
                                     std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(PointerFromHandle(wrong), nullptr);
    }
    EXPECT_EQ(HandleFromPointer(nullptr), 0);
    ReleaseHandle(b);
}

}  // namespace
}  // namespace generalutilities
