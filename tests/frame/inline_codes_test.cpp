// `SerializeCodes`, the dictionary it takes, and `CodePageHelper`, through the exports.

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/code_page_helper.h>
#include <generalutilities/interfaces/string_utils.h>

#include "values.h"

namespace generalutilities {
namespace {

std::u16string TextOf(IDictionary* dictionary, VARIANT key) {
    Variant item;
    EXPECT_EQ(dictionary->get_Item(&key, item.Out()), S_OK);
    return item.Get().vt == VT_BSTR ? item.Get().bstrVal : u"no text";
}

/// The built-in dictionary with faults.
class FaultyDictionary final : public IDictionary {
  public:
    enum Fault {
        None,
        KeysFail,
        KeysAreText,
        TwoDimensions,
        KeysOfLongs,
        IndexTooHigh,
        GetFails,
        ItemIsLong,
        PutFails
    };

    FaultyDictionary(IDictionary* good, Fault kind) : inner(good), fault(kind) {}

    HRESULT QueryInterface(REFIID, void** object) noexcept override {
        *object = this;
        return S_OK;
    }
    std::uint32_t AddRef() noexcept override { return 2; }
    std::uint32_t Release() noexcept override { return 1; }
    HRESULT GetTypeInfoCount(std::uint32_t*) noexcept override { return E_NOTIMPL; }
    HRESULT GetTypeInfo(std::uint32_t, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, char16_t**, std::uint32_t, LCID, DISPID*) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT Invoke(DISPID, REFIID, LCID, std::uint16_t, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                   std::uint32_t*) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT putref_Item(VARIANT*, VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT put_Item(VARIANT* key, VARIANT* item) noexcept override {
        return fault == PutFails && key->lVal == 2 ? E_FAIL : inner->put_Item(key, item);
    }
    HRESULT get_Item(VARIANT* key, VARIANT* item) noexcept override {
        if (fault == GetFails && key->lVal == 2) {
            return E_FAIL;
        }
        if (fault == ItemIsLong && key->lVal == 2) {
            *item = Long(1);
            return S_OK;
        }
        return inner->get_Item(key, item);
    }
    HRESULT Add(VARIANT*, VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT get_Count(std::int32_t*) noexcept override { return E_NOTIMPL; }
    HRESULT Exists(VARIANT*, VARIANT_BOOL*) noexcept override { return E_NOTIMPL; }
    HRESULT Items(VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT put_Key(VARIANT*, VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT Keys(VARIANT* keys) noexcept override {
        SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
        switch (fault) {
            case KeysFail:
                return E_FAIL;
            case KeysAreText:
                *keys = Of(VT_BSTR);
                return S_OK;
            case TwoDimensions:
                *keys = Of(VT_ARRAY | VT_VARIANT);
                keys->parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
                return S_OK;
            case KeysOfLongs:
                *keys = Of(VT_ARRAY | VT_VARIANT);
                keys->parray = SafeArrayCreateVector(VT_I4, 0, 2);
                return S_OK;
            case IndexTooHigh:
                *keys = Of(VT_ARRAY | VT_VARIANT);
                keys->parray = SafeArrayCreateVector(VT_VARIANT, 0x7FFFFFFF, 2);
                return S_OK;
            default:
                return inner->Keys(keys);
        }
    }
    HRESULT Remove(VARIANT*) noexcept override { return E_NOTIMPL; }
    HRESULT RemoveAll() noexcept override { return E_NOTIMPL; }
    HRESULT put_CompareMode(std::int32_t) noexcept override { return E_NOTIMPL; }
    HRESULT get_CompareMode(std::int32_t*) noexcept override { return E_NOTIMPL; }
    HRESULT get__NewEnum(IUnknown**) noexcept override { return E_NOTIMPL; }
    HRESULT get_HashVal(VARIANT*, VARIANT*) noexcept override { return E_NOTIMPL; }

  private:
    IDictionary* inner;
    Fault fault;
};

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
    std::u16string Run(std::u16string_view sourceText, IUnknown* targets) {
        *source.Out() =
            SysAllocStringLen(sourceText.data(), static_cast<std::uint32_t>(sourceText.size()));
        SAFEARRAY* numbers = nullptr;
        SAFEARRAY* contents = nullptr;
        last = 10;
        const HRESULT status =
            utils->SerializeCodes(source.InOut(), targets, &last, &numbers, &contents);
        const ArrayPtr ownedNumbers(numbers), ownedContents(contents);
        std::u16string line = status == S_OK ? u"ok " : u"failed ";
        line += Ascii(std::to_string(last)) + u" " + source.Text();
        std::int32_t count = 0;
        dictionary->get_Count(&count);
        for (std::int32_t i = 1; i <= count; ++i) {
            line += u" | " + TextOf(dictionary.Get(), Long(i));
        }
        for (std::int32_t i = 0; numbers != nullptr && i < Length(numbers); ++i) {
            std::int32_t number = 0;
            Bstr code;
            SafeArrayGetElement(numbers, &i, &number);
            SafeArrayGetElement(contents, &i, code.Out());
            line += u" " + Ascii(std::to_string(number)) + u"=" + code.Text();
        }
        std::ranges::replace(line, u'\x11', u'(');
        std::ranges::replace(line, u'\x12', u')');
        return line;
    }
    static std::int32_t Length(SAFEARRAY* array) {
        std::int32_t last = -1;
        SafeArrayGetUBound(array, 1, &last);
        return last + 1;
    }
    static std::u16string Ascii(const std::string& text) { return {text.begin(), text.end()}; }

    ComPtr<IStringUtils> utils = Create<IStringUtils>(CLSID_StringUtils, IID_IStringUtils);
    ComPtr<IDictionary> dictionary = Create<IDictionary>(CLSID_Dictionary, IID_IDictionary);
    Bstr source;
    std::int32_t last = 0;
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
    SAFEARRAY* array = nullptr;
    EXPECT_EQ(utils->SerializeCodes(nullptr, dictionary.Get(), &last, &array, &array), E_POINTER);
}

TEST_F(SerializeCodesTest, FailsWithWordsAndChangesNothing) {
    const std::u16string reporter = u"GeneralUtilities.StringUtils.1: ";
    const std::u16string unchanged = u"failed 10 <p>x | <p> | <q>y";
    const struct {
        FaultyDictionary::Fault fault;
        const char16_t* words;
    } cases[] = {
        {FaultyDictionary::KeysFail, u"Dictionary object has changed, it's unusable"},
        {FaultyDictionary::KeysAreText, u"Dictionary object has changed, it's unusable"},
        {FaultyDictionary::TwoDimensions, u"Dictionary object has changed, it's unusable"},
        {FaultyDictionary::KeysOfLongs, u"Dictionary object has changed, it's unusable"},
        {FaultyDictionary::IndexTooHigh, u"Dictionary object has changed, it's unusable"},
        {FaultyDictionary::GetFails, u"The dictionary gives no item for one of its keys"},
        {FaultyDictionary::ItemIsLong, u"An item of the dictionary is not a string"},
    };
    for (const auto& row : cases) {
        Fill({u"<p>", u"<q>y"});
        FaultyDictionary faulty(dictionary.Get(), row.fault);
        EXPECT_EQ(Run(u"<p>x", &faulty), unchanged);
        EXPECT_EQ(Report(), reporter + row.words);
    }
    // What fails on the way out leaves what is not yet written.
    FaultyDictionary faulty(dictionary.Get(), FaultyDictionary::PutFails);
    EXPECT_EQ(Run(u"<p>x", &faulty), u"failed 10 (11)x | (11) | <q>y 11=<p> 12=<q>");
    EXPECT_EQ(Report(), reporter + u"The dictionary does not take an item for one of its keys");

    Fill({u"<p>", u"<q>y"});
    for (IUnknown* const noDictionary :
         {static_cast<IUnknown*>(nullptr), static_cast<IUnknown*>(utils.Get())}) {
        EXPECT_EQ(Run(u"<p>x", noDictionary), unchanged);
        EXPECT_EQ(Report(), reporter + u"No dictionary passed");
    }
    Fill({u"<p>", u"<ut>"});
    EXPECT_EQ(Run(u"<p>x", dictionary.Get()), u"failed 10 <p>x | <p> | <ut>");
    EXPECT_EQ(Report(), reporter + u"<ut> tag opened that is never closed");
    Fill({u"<p>", u"a < b"});
    EXPECT_EQ(Run(u"<p>x", dictionary.Get()), u"failed 10 <p>x | <p> | a < b");
    EXPECT_EQ(Report(), reporter + u"tag opened, but never closed");
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

TEST(CodePageHelperTest, WrapsRunsByRealCodePages) {
    const auto helper = Create<ICodePageHelper>(CLSID_CodePageHelper, IID_ICodePageHelper);
    Bstr out;
    const Bstr text(u"na\u00EFve <b>\u0434\u0430 \u4E2D</b> \U0001F600 na\u00EFve");
    ASSERT_EQ(helper->AddFonts(text.Get(), out.Out()), S_OK);
    EXPECT_EQ(out.View(), text.View());
    const std::pair<std::int32_t, const char16_t*> pages[] = {
        {1252, u"W"}, {1251, u"C"}, {932, u"J"}, {54936, u"G"}};
    for (const auto& [page, font] : pages) {
        ASSERT_EQ(helper->AddCodePage(page, Bstr(font).Get()), S_OK);
    }
    ASSERT_EQ(helper->AddFonts(text.Get(), out.Out()), S_OK);
    EXPECT_EQ(out.View(),
              u"na\u00EFve <b><df C>\u0434\u0430 </df><df J>\u4E2D</b> </df>"
              u"<df G>\U0001F600 na\u00EFve</df>");
    ASSERT_EQ(helper->ResetCodePages(), S_OK);
    ASSERT_EQ(helper->AddCodePage(9, nullptr), S_OK);  // not served: carries everything
    ASSERT_EQ(helper->AddCodePage(1252, nullptr), S_OK);
    ASSERT_EQ(helper->AddFonts(text.Get(), out.Out()), S_OK);
    EXPECT_EQ(out.View(), text.View());
    ASSERT_EQ(helper->AddFonts(nullptr, out.Out()), S_OK);
    EXPECT_NE(out.Get(), nullptr);
    EXPECT_EQ(helper->AddFonts(text.Get(), nullptr), E_POINTER);
}

}  // namespace
}  // namespace generalutilities
