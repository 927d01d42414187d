// `SerializeCodes` and the dictionary it takes, through the exports.

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>

#include "values.h"

namespace generalutilities {
namespace {

std::u16string TextOf(IDictionary* dictionary, VARIANT key) {
    Variant item;
    EXPECT_EQ(dictionary->get_Item(&key, item.Out()), S_OK);
    return item.Get().vt == VT_BSTR ? item.Get().bstrVal : u"no text";
}

/// What a faulty dictionary does in the place of an operation.
struct Fault {
    std::size_t place;  ///< in the table
    void* operation;
    const char16_t* words;  ///< of the report
};
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
template <class... Arguments>
void* Operation(HRESULT (*function)(Arguments...)) {
    return reinterpret_cast<void*>(function);
}

class SerializeCodesTest : public testing::Test {
  protected:
    /// Targets under the keys 1, 2, ...
    void Fill(std::initializer_list<const char16_t*> targets) {
        dictionary->RemoveAll();
        std::int32_t number = 0;
        for (const char16_t* target : targets) {
            VARIANT key = Long(++number);
            const Bstr text(target);
            VARIANT item = Borrowed(text);
            ASSERT_EQ(dictionary->Add(&key, &item), S_OK);
        }
    }
    /// The status, the last number, the texts and the codes in one line.
    std::u16string Run(std::u16string_view sourceText, IUnknown* targets,
                       const Fault* fault = nullptr) {
        Bstr source(sourceText);
        SAFEARRAY* numbers = nullptr;
        SAFEARRAY* contents = nullptr;
        std::int32_t last = 10;
        // A faulty dictionary has a table of its own, with what C++ has in front of one.
        void*** const object = reinterpret_cast<void***>(dictionary.Get());
        void** const sound = *object;
        void* table[2 + 22];
        std::copy_n(sound - 2, std::size(table), table);
        if (fault != nullptr) {
            table[2 + fault->place] = fault->operation;
        }
        *object = table + 2;
        const HRESULT status =
            utils->SerializeCodes(source.InOut(), targets, &last, &numbers, &contents);
        *object = sound;
        const ArrayPtr ownedNumbers(numbers), ownedContents(contents);
        std::u16string line = status == S_OK ? u"ok " : u"failed ";
        line += Ascii(std::to_string(last)) + u" " + source.Text();
        std::int32_t count = 0;
        dictionary->get_Count(&count);
        for (std::int32_t i = 1; i <= count; ++i) {
            line += u" | " + TextOf(dictionary.Get(), Long(i));
        }
        for (std::uint32_t i = 0; numbers != nullptr && i < numbers->rgsabound[0].cElements; ++i) {
            line += u" " + Ascii(std::to_string(static_cast<std::int32_t*>(numbers->pvData)[i])) +
                    u"=" + static_cast<BSTR*>(contents->pvData)[i];
        }
        std::ranges::replace(line, u'\x11', u'(');
        std::ranges::replace(line, u'\x12', u')');
        return line;
    }
    static std::u16string Ascii(const std::string& text) { return {text.begin(), text.end()}; }

    ComPtr<IStringUtils> utils = Create<IStringUtils>(CLSID_StringUtils, IID_IStringUtils);
    ComPtr<IDictionary> dictionary = Create<IDictionary>(CLSID_Dictionary, IID_IDictionary);
};

TEST_F(SerializeCodesTest, NumbersCodesOfAllTexts) {
    Fill({u"<p>d", u"<q>"});
    EXPECT_EQ(Run(u"a<p>b<p>c", dictionary.Get()),
              u"ok 13 a(11)b(12)c | (11)d | (13) 11=<p> 12=<p> 13=<q>");
    Fill({});
    EXPECT_EQ(Run(std::u16string_view(u"a\0<p", 4), dictionary.Get()), u"ok 10 a");
    EXPECT_EQ(Run(u"<df font=\"A\">x</df>", dictionary.Get()),
              u"ok 12 (11)x(12) 11=<df font=\"A\"> 12=</df>");
    utils->put_TTXIgnoreFonts(1);
    EXPECT_EQ(Run(u"<df font=\"A\">", dictionary.Get()), u"ok 11 (11) 11=<df font=\"A\">");
    utils->put_TTXIgnoreFonts(VARIANT_TRUE);
    EXPECT_EQ(Run(u"<df font=\"A\">x</df>", dictionary.Get()), u"ok 10 x");
}

TEST_F(SerializeCodesTest, FailsWithWordsAndChangesNothing) {
    constexpr std::size_t Put = 8, Get = 9, Keys = 15;
    constexpr VARTYPE Array = VT_ARRAY | VT_VARIANT;
    const char16_t* const unusable = u"Dictionary object has changed, it's unusable";
    const Fault faults[] = {
        {Keys, Operation(Refuse), unusable},
        {Keys, Operation(GiveKeys<VT_BSTR, VT_EMPTY>), unusable},
        {Keys, Operation(GiveKeys<Array, VT_VARIANT, 2>), unusable},
        {Keys, Operation(GiveKeys<Array, VT_I4>), unusable},
        {Keys, Operation(GiveKeys<Array, VT_VARIANT, 1, 0x7FFFFFFF>), unusable},
        {Get, Operation(Refuse), u"The dictionary gives no item for one of its keys"},
        {Get, Operation(GiveLong), u"An item of the dictionary is not a string"},
        {Put, Operation(Refuse), u"The dictionary does not take an item for one of its keys"},
    };
    for (const Fault& fault : faults) {
        Fill({u"<p>", u"<q>y"});
        EXPECT_EQ(Run(u"<p>x", dictionary.Get(), &fault),
                  fault.place == Put ? u"failed 10 (11)x | <p> | <q>y 11=<p> 12=<q>"
                                     : u"failed 10 <p>x | <p> | <q>y");
        EXPECT_EQ(Report(), u"GeneralUtilities.StringUtils.1: " + std::u16string(fault.words));
    }
    const struct {
        const char16_t* target;
        IUnknown* dictionary;
        const char16_t* words;
    } calls[] = {{u"", nullptr, u"No dictionary passed"},
                 {u"", utils.Get(), u"No dictionary passed"},
                 {u"<ut>", dictionary.Get(), u"<ut> tag opened that is never closed"},
                 {u"a < b", dictionary.Get(), u"tag opened, but never closed"}};
    for (const auto& call : calls) {
        Fill({u"<p>", call.target});
        EXPECT_EQ(Run(u"<p>x", call.dictionary),
                  u"failed 10 <p>x | <p> | " + std::u16string(call.target));
        EXPECT_EQ(Report(), u"GeneralUtilities.StringUtils.1: " + std::u16string(call.words));
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
