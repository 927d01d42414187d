// `SerializeCodes` and the dictionary it takes, through the exports.

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>

#include "case_table.h"
#include "values.h"

#include <map>
#include <optional>

namespace generalutilities {
namespace {

template <VARTYPE Type, VARTYPE Element, std::uint32_t Dimensions = 1, std::int32_t Lower = 0>
HRESULT GiveKeys(IDictionary*, VARIANT* keys) {
    SAFEARRAYBOUND bounds[] = {{2, Lower}, {2, 0}};
    *keys = Of(Type);
    keys->parray = Type == VT_BSTR ? nullptr : SafeArrayCreate(Element, Dimensions, bounds);
    return S_OK;
}
HRESULT GiveLong(IDictionary*, VARIANT*, VARIANT* item) {
    *item = Long(1);
    return S_OK;
}
HRESULT Refuse(IDictionary*) {
    return E_FAIL;
}
constexpr std::size_t Put = 8, Get = 9, Keys = 15;
constexpr VARTYPE Array = VT_ARRAY | VT_VARIANT;
const std::map<std::u16string, std::pair<std::size_t, void*>> Faults = {
    {u"keys fail", {Keys, Operation(Refuse)}},
    {u"keys are a text", {Keys, Operation(GiveKeys<VT_BSTR, VT_EMPTY>)}},
    {u"two dimensions", {Keys, Operation(GiveKeys<Array, VT_VARIANT, 2>)}},
    {u"keys are longs", {Keys, Operation(GiveKeys<Array, VT_I4>)}},
    {u"too high an index", {Keys, Operation(GiveKeys<Array, VT_VARIANT, 1, 0x7FFFFFFF>)}},
    {u"items fail", {Get, Operation(Refuse)}},
    {u"items are longs", {Get, Operation(GiveLong)}},
    {u"nothing is taken", {Put, Operation(Refuse)}}};

std::u16string TextOf(IDictionary* dictionary, VARIANT key) {
    Variant item;
    EXPECT_EQ(dictionary->get_Item(&key, item.Out()), S_OK);
    return item.Get().vt == VT_BSTR ? item.Get().bstrVal : u"no text";
}

TEST(SerializeCodesTest, AnswersAsListed) {
    const auto utils = Create<IStringUtils>(CLSID_StringUtils, IID_IStringUtils);
    for (const auto& row : CaseTable("segments.tsv")) {
        SCOPED_TRACE(testing::PrintToString(row));
        const auto dictionary = Create<IDictionary>(CLSID_Dictionary, IID_IDictionary);
        for (std::size_t i = 5; i < row.size(); ++i) {
            const Bstr text(row[i]);
            VARIANT key = Long(static_cast<std::int32_t>(i)), item = Borrowed(text);
            ASSERT_EQ(dictionary->Add(&key, &item), S_OK);
        }
        EXPECT_EQ(utils->put_TTXIgnoreFonts(static_cast<VARIANT_BOOL>(Number(row[3]))), S_OK);
        Bstr source(row[4]);
        std::int32_t last = 10;
        SAFEARRAY *numbers = nullptr, *contents = nullptr;
        IUnknown* const targets = row[2] == u"none"      ? nullptr
                                  : row[2] == u"another" ? static_cast<IUnknown*>(utils.Get())
                                                         : dictionary.Get();
        const auto fault = Faults.find(row[2]);
        std::optional<Replaced> replaced;
        if (fault != Faults.end()) {
            replaced.emplace(targets, fault->second.first, fault->second.second);
        }
        SetErrorInfo(0, nullptr);
        const HRESULT status =
            utils->SerializeCodes(source.InOut(), targets, &last, &numbers, &contents);
        replaced.reset();
        const ArrayPtr ownedNumbers(numbers), ownedContents(contents);
        const std::u16string report = Report();
        EXPECT_EQ(report,
                  row[1].empty() ? u"nothing" : u"GeneralUtilities.StringUtils.1: " + row[1]);
        EXPECT_EQ(status, row[1].empty() ? S_OK : E_FAIL);

        std::u16string line = Text(Long(last)) + u" " + source.Text();
        for (std::size_t i = 5; i < row.size(); ++i) {
            line += u" | " + TextOf(dictionary.Get(), Long(static_cast<std::int32_t>(i)));
        }
        for (std::uint32_t i = 0; numbers != nullptr && i < numbers->rgsabound[0].cElements; ++i) {
            line += u" " + Text(Long(static_cast<std::int32_t*>(numbers->pvData)[i])) + u"=" +
                    static_cast<BSTR*>(contents->pvData)[i];
        }
        std::ranges::replace(line, u'\x11', u'(');
        std::ranges::replace(line, u'\x12', u')');
        EXPECT_EQ(line, row[0]);
    }
}

TEST(DictionaryTest, KeepsKeysOfEveryKindInTheirOrder) {
    CLSID clsid{};
    ASSERT_EQ(CLSIDFromProgID(u"scripting.dictionary", &clsid), S_OK);
    const auto dictionary = Create<IDictionary>(clsid, IID_IDictionary);
    const Bstr small(u"a"), capital(u"A");
    VARIANT number = Long(1), real = Of(VT_R8), text = Borrowed(small), other = Borrowed(capital);
    VARIANT object = Of(VT_DISPATCH), array = Of(VT_ARRAY | VT_I4), nothing = Of(VT_EMPTY);
    real.dblVal = 1;
    object.pdispVal = dictionary.Get();
    for (VARIANT* key : {&number, &text, &object, &nothing}) {
        EXPECT_EQ(dictionary->put_Item(key, &text), S_OK);
    }
    EXPECT_EQ(dictionary->Add(&real, &text), DictionaryKeyExists);
    EXPECT_EQ(dictionary->Remove(&other), DictionaryKeyMissing);
    EXPECT_EQ(dictionary->Add(&array, &text), DictionaryInvalidCall);
    EXPECT_EQ(dictionary->put_CompareMode(TextCompare), DictionaryInvalidCall);
    EXPECT_EQ(dictionary->put_Key(&text, &number), DictionaryKeyExists);
    EXPECT_EQ(dictionary->put_Key(&text, &other), S_OK);
    EXPECT_EQ(TextOf(dictionary.Get(), other), u"a");
    EXPECT_EQ(dictionary->Remove(&object), S_OK);  // which held a reference to its dictionary
    EXPECT_EQ(TextOf(dictionary.Get(), text), u"no text") << "asking adds the key";

    ComPtr<IUnknown> unknown;
    ASSERT_EQ(dictionary->get__NewEnum(unknown.Out()), S_OK);
    const auto keys = unknown.As<IEnumVARIANT>(IID_IEnumVARIANT);
    ComPtr<IEnumVARIANT> clone;
    ASSERT_EQ(keys->Skip(1), S_OK);
    ASSERT_EQ(keys->Clone(clone.Out()), S_OK);
    dictionary->RemoveAll();
    VARIANT found[4];
    std::uint32_t count = 0;
    EXPECT_EQ(clone->Next(4, found, &count), S_FALSE);
    ASSERT_EQ(count, 3u);
    EXPECT_EQ(TakeText(found[0]) + TakeText(found[2]), u"Aa");
    EXPECT_EQ(found[1].vt, VT_EMPTY);

    // Late binding, as scripts do it.
    EXPECT_EQ(
        Call(dictionary.Get(), 9, DISPATCH_PROPERTYPUT, {Long(TextCompare)}, {DISPID_PROPERTYPUT})
            .status,
        S_OK);
    EXPECT_EQ(Call(dictionary.Get(), DISPID_VALUE, DISPATCH_PROPERTYPUT, {text, text},
                   {DISPID_PROPERTYPUT})
                  .status,
              S_OK);
    EXPECT_EQ(Call(dictionary.Get(), 3, DISPATCH_METHOD, {other}).result.boolVal, VARIANT_TRUE);
    Answer item = Call(dictionary.Get(), DISPID_VALUE, DISPATCH_PROPERTYGET, {other});
    EXPECT_EQ(TakeText(item.result), u"a");
}

}  // namespace
}  // namespace generalutilities
