// Strings, variants and arrays as they cross the border.

#include "case_table.h"
#include "values.h"

#include <limits>
#include <map>

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

TEST(VariantTest, ConvertsOrSaysWhyNot) {
    const std::map<std::u16string, HRESULT> failures = {{u"overflow", DISP_E_OVERFLOW},
                                                        {u"mismatch", DISP_E_TYPEMISMATCH},
                                                        {u"no type", DISP_E_BADVARTYPE}};
    for (const auto& row : CaseTable("conversions.tsv")) {
        SCOPED_TRACE(testing::PrintToString(row));
        const Bstr text(row[1]);
        VARIANT from = Of(Number(row[0])), to = Long(4711);
        from.wReserved1 = from.vt == VT_DECIMAL ? 2 : 0;  // digits behind the point
        if (from.vt == VT_BSTR) {
            from.bstrVal = text.Get();
        } else if (from.vt == VT_R8) {
            from.dblVal = std::stod(Bytes(row[1]));
        } else {
            from.llVal = std::stoll(Bytes(row[1]));
        }
        const HRESULT status =
            VariantChangeType(&to, &from, 0, static_cast<VARTYPE>(Number(row[2])));
        if (const auto failure = failures.find(row[3]); failure != failures.end()) {
            EXPECT_EQ(status, failure->second);
            EXPECT_EQ(to.lVal, 4711) << "a failure leaves the target alone";
        } else {
            EXPECT_EQ(status, S_OK);
            EXPECT_EQ(Text(to), row[3]);
        }
        VariantClear(&to);
    }
    VARIANT object = Of(VT_UNKNOWN), decimal = Of(VT_DECIMAL);
    EXPECT_EQ(VariantChangeType(&object, &object, 0, VT_DISPATCH), S_OK);
    decimal.wReserved1 = 0x8000;
    decimal.wReserved2 = 1;
    EXPECT_EQ(Text(decimal), u"-18446744073709551616");
}

TEST(VariantTest, FollowsReferencesAndCopiesWhatItOwns) {
    VARIANT text = Of(VT_BSTR), copy{};
    text.bstrVal = SysAllocString(u"kept");
    const VARIANT reference = Ref(VT_VARIANT, &text);
    ASSERT_EQ(VariantCopyInd(&copy, &reference), S_OK);
    EXPECT_EQ(copy.vt, VT_BSTR);
    EXPECT_NE(copy.bstrVal, text.bstrVal);
    EXPECT_EQ(VariantChangeType(&copy, &copy, 0, VT_BSTR), S_OK) << "in place";
    VariantClear(&copy);
    VariantClear(&text);

    VARIANT loop = Ref(VT_VARIANT, &loop);
    EXPECT_EQ(VariantCopyInd(&copy, &loop), E_INVALIDARG);
    VARIANT unknown = Of(77);
    EXPECT_EQ(VariantClear(&unknown), DISP_E_BADVARTYPE);
}

TEST(SafeArrayTest, KeepsBoundsAndOwnsItsElements) {
    SAFEARRAYBOUND bounds[2] = {{2, -1}, {3, 10}};
    SAFEARRAY* const array = SafeArrayCreate(VT_BSTR, 2, bounds);
    std::int32_t lower = 0, upper = 7;
    EXPECT_EQ(SafeArrayGetLBound(array, 2, &lower), S_OK);
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), S_OK);
    EXPECT_EQ(std::pair(lower, upper), std::pair(10, 0));
    EXPECT_EQ(SafeArrayGetUBound(array, 3, &upper), DISP_E_BADINDEX);

    const Bstr k(u"k"), m(u"m");
    std::int32_t second[2] = {0, 10}, last[2] = {0, 12}, outside[2] = {1, 10};
    EXPECT_EQ(SafeArrayPutElement(array, second, k.Get()), S_OK);
    EXPECT_EQ(SafeArrayPutElement(array, last, m.Get()), S_OK);
    Bstr element;
    EXPECT_EQ(SafeArrayGetElement(array, outside, element.Out()), DISP_E_BADINDEX);

    SAFEARRAY* copy = nullptr;
    ASSERT_EQ(SafeArrayCopy(array, &copy), S_OK);
    ASSERT_EQ(SafeArrayLock(array), S_OK);
    EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(SafeArrayUnlock(array), S_OK);
    EXPECT_EQ(SafeArrayUnlock(array), E_UNEXPECTED);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);

    ASSERT_EQ(SafeArrayGetElement(copy, last, element.Out()), S_OK);
    EXPECT_EQ(element.View(), u"m");
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
    // A descriptor of a client's own has no type in front of it.
    BSTR texts[] = {nullptr};
    SAFEARRAY own{1, FADF_BSTR, sizeof(BSTR), 0, texts, {{1, 0}}};
    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(SafeArrayGetVartype(&own, &type), S_OK);
    EXPECT_EQ(type, VT_BSTR);
    own.fFeatures = 0;
    EXPECT_EQ(SafeArrayGetVartype(&own, &type), E_INVALIDARG);
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
