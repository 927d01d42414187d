// `StringUtils` as a client sees it: directly and through `Invoke`.

#include <generalutilities/automation/string_table.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>

#include "values.h"

#include <dlfcn.h>
#include <functional>
#include <limits>

/// The string table of the test program, which is a module as well.
constexpr generalutilities::StringTableEntry OwnTexts[] = {
    {40, u"forty"}, {33, u""}, {35, nullptr}};
extern "C" __attribute__((visibility("default")))
const generalutilities::StringTable GeneralUtilitiesStringTable = {OwnTexts, 3};

namespace generalutilities {
namespace {

class StringUtilsTest : public testing::Test {
  protected:
    ComPtr<IStringUtils> utils = Create<IStringUtils>(CLSID_StringUtils, IID_IStringUtils);
    Bstr out;
};

TEST_F(StringUtilsTest, FoldsWithoutLookingAtNullTerminators) {
    const Bstr text(std::u16string_view(u"\u00E9\0\xDBFF\u00DF", 4));
    ASSERT_EQ(utils->ToUpper(text.Get(), out.Out()), S_OK);
    EXPECT_EQ(out.View(), std::u16string_view(u"\u00C9\0\xDBFFSS", 5));
    ASSERT_EQ(utils->DeAccentString(text.Get(), out.Out()), S_OK);
    EXPECT_EQ(out.View(), std::u16string_view(u"e\0\xDBFF\u00DF", 4));
    BSTR input = text.Get();
    ASSERT_EQ(utils->DeAccentUpperCaseString(&input, out.Out()), S_OK);
    EXPECT_EQ(out.View(), std::u16string_view(u"E\0\xDBFFSS", 5));
    ASSERT_EQ(utils->ToLower(nullptr, out.Out()), S_OK);
    EXPECT_NE(out.Get(), nullptr) << "an empty string, not a null one";
    EXPECT_EQ(out.View(), u"");
    EXPECT_EQ(utils->ToLower(text.Get(), nullptr), E_POINTER);
    EXPECT_EQ(utils->DeAccentUpperCaseString(nullptr, out.Out()), E_POINTER);
}

TEST_F(StringUtilsTest, ParsesTokenByToken) {
    const Bstr text(u"R&D {12}x");
    std::int32_t position = 0;  // counts as 1
    WordTypeEnum type = qlnwtDigit;
    std::u16string tokens;
    while (utils->ParseString(&position, text.Get(), 1033, &type, out.Out()) == S_OK &&
           out.Get() != nullptr) {
        tokens += out.Text() + static_cast<char16_t>(u'0' + type);
    }
    EXPECT_EQ(tokens, u"R&D0 2{12}4x0");
    EXPECT_EQ(position, 0);
    EXPECT_EQ(type, qlnwtWord) << "the end leaves the type alone";

    position = 1;
    EXPECT_EQ(utils->ParseString(&position, nullptr, 1033, &type, out.Out()), S_OK);
    EXPECT_EQ(position, 0);
    position = -1;
    EXPECT_EQ(utils->ParseString(&position, text.Get(), 1033, &type, out.Out()), E_INVALIDARG);
}

TEST_F(StringUtilsTest, KeysRefuseNullAndZero) {
    const Bstr text(u"1 000 francs");
    EXPECT_EQ(utils->ToIndex(nullptr, 1033, 50, out.Out()), E_INVALIDARG);
    EXPECT_EQ(utils->ToIndex(text.Get(), 1033, 0, out.Out()), E_INVALIDARG);
    EXPECT_EQ(utils->ToIndex(text.Get(), 1033, 50, nullptr), E_INVALIDARG);
    for (const auto& [size, key] : {std::pair{-5, u""}, {50, u"francs"}}) {
        EXPECT_EQ(utils->ToIndex(text.Get(), 1036, size, out.Out()), S_OK);
        EXPECT_EQ(out.View(), key);
    }
}

TEST_F(StringUtilsTest, FindsFromAnyStart) {
    const Bstr text(u"the cat");
    const Bstr cat(u"CAT");
    std::int32_t length = -1;
    std::int32_t position = -1;
    const auto find = [&](std::int32_t start, BSTR s, BSTR sought, VARIANT_BOOL exact = 0,
                          VARIANT_BOOL word = 0) {
        length = -1;
        EXPECT_EQ(utils->Instr(start, s, sought, &length, exact, word, &position), S_OK);
        return position;
    };
    for (const std::int32_t start : {1, 0, -1, 5, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(find(start, text.Get(), cat.Get()), 5) << start;
        EXPECT_EQ(length, 3);
    }
    for (const std::int32_t start : {6, 8, 9, std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(find(start, text.Get(), cat.Get()), 0) << start;
    }
    EXPECT_EQ(length, -1);
    EXPECT_EQ(find(1, text.Get(), cat.Get(), 1), 0);
    EXPECT_EQ(find(1, Bstr(u"cats").Get(), cat.Get(), 0, 2), 0) << "any value turns a flag on";
    EXPECT_EQ(find(1, text.Get(), nullptr), 0);
    EXPECT_EQ(find(1, nullptr, cat.Get()), 0);
    EXPECT_EQ(find(1, text.Get(), Bstr(u"").Get()), 1);
    EXPECT_EQ(utils->Instr(1, text.Get(), cat.Get(), nullptr, 0, 0, &position), S_OK);
    EXPECT_EQ(position, 0);
    EXPECT_EQ(utils->Instr(1, text.Get(), cat.Get(), &length, 0, 0, nullptr), E_POINTER);
}

TEST_F(StringUtilsTest, MeasuresNullAsEmptyAndFoldsDigitsUpToZero) {
    double distance = -1;
    EXPECT_EQ(
        utils->EditDistance(nullptr, Bstr(std::u16string_view(u"a\0b", 3)).Get(), 1, &distance),
        S_OK);
    EXPECT_EQ(distance, 3.0);
    EXPECT_EQ(utils->EditDistance(nullptr, nullptr, 1, &distance), S_OK);
    EXPECT_EQ(distance, 0.0);
    EXPECT_EQ(utils->EditDistance(nullptr, nullptr, 1, nullptr), E_POINTER);

    const Bstr numbers(std::u16string_view(u"\u0663\u2169\0\u0663", 4));
    EXPECT_EQ(utils->FoldDigits(numbers.Get(), 0, out.Out()), S_OK);
    EXPECT_EQ(out.View(), u"3\u2169");
    EXPECT_EQ(utils->FoldDigits(numbers.Get(), 1, out.Out()), S_OK);
    EXPECT_EQ(out.View(), u"30");
    EXPECT_EQ(utils->TranslateDigits(numbers.Get(), 1025, out.Out()), S_OK);
    EXPECT_EQ(utils->TranslateDigits(nullptr, 0, nullptr), S_OK);
    BSTR kept = numbers.Get();
    EXPECT_EQ(utils->TranslateDigits(nullptr, 0, &kept), S_OK);
    EXPECT_EQ(kept, numbers.Get());
    EXPECT_EQ(utils->FoldDigits(nullptr, 1, nullptr), E_POINTER);
}

TEST_F(StringUtilsTest, CopiesNothingAsNothing) {
    const std::function<HRESULT(BSTR, BSTR*)> copies[] = {
        [&](BSTR in, BSTR* copy) { return utils->SimplifyString(in, 1033, copy); },
        [&](BSTR in, BSTR* copy) { return utils->FoldDigits(in, 1, copy); },
        [&](BSTR in, BSTR* copy) { return utils->ConvertStringToUnicode(0, in, 0, 0, copy); },
        [&](BSTR in, BSTR* copy) { return utils->ConvertStringFromUnicode(1200, in, 0, 0, copy); }};
    for (const auto& copy : copies) {
        EXPECT_EQ(copy(Bstr(u"").Get(), out.Out()), S_OK);
        EXPECT_NE(out.Get(), nullptr) << "empty is not null";
        EXPECT_EQ(copy(nullptr, out.Out()), S_OK);
        EXPECT_EQ(out.Get(), nullptr);
        EXPECT_EQ(copy(Bstr(std::u16string_view(u"a\0b", 3)).Get(), out.Out()), S_OK);
        EXPECT_EQ(out.View(), u"a");
    }
}

TEST_F(StringUtilsTest, GeneratesTextOfAScript) {
    Bstr text;
    ASSERT_EQ(utils->GenerateString(33, 1000, text.Out()), S_OK);
    EXPECT_EQ(text.View().size(), 1000u);
    for (const char16_t unit : text.View()) {
        ASSERT_TRUE(unit >= 0x1680 && unit <= 0x169F) << static_cast<int>(unit);
    }
    BSTR kept = text.Get();
    for (const std::int32_t key : {3, 40, 127, 136, 1252, -4, 40}) {
        EXPECT_EQ(utils->GenerateString(key, 5, &kept), S_FALSE) << key;
        EXPECT_EQ(kept, text.Get());
    }
    EXPECT_EQ(utils->GenerateString(128, -1, &kept), S_OK);
    EXPECT_EQ(kept, nullptr);
    ASSERT_EQ(utils->GenerateString(23, 0, text.Out()), S_OK);
    EXPECT_NE(text.Get(), nullptr);
    EXPECT_EQ(text.View(), u"");
    EXPECT_EQ(utils->GenerateString(128, 1, nullptr), E_POINTER);
}

TEST_F(StringUtilsTest, IgnoreFontsIsTrueForTheExactValueOnly) {
    for (const auto& [put, got] : {std::pair<VARIANT_BOOL, VARIANT_BOOL>{1, 0}, {-1, -1}, {2, 0}}) {
        VARIANT_BOOL value = 5;
        EXPECT_EQ(utils->put_TTXIgnoreFonts(put), S_OK);
        EXPECT_EQ(utils->get_TTXIgnoreFonts(&value), S_OK);
        EXPECT_EQ(value, got);
    }
}

/// Late-bound ParseString: by-reference long and enumeration, defaults, named arguments.
TEST_F(StringUtilsTest, AnswersTheSameThroughInvoke) {
    const Bstr text(u"one two");
    std::int32_t position = 1;
    VARIANT type = Of(VT_BSTR);  // of another type than the argument: converted there and back
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

TEST_F(StringUtilsTest, TellsAMissingTextFromAMissingBlock) {
    constexpr const char16_t* None = nullptr;  // stands for a null string
    const auto expect = [&](const char16_t* expected, std::int32_t id) {
        EXPECT_EQ(out.Get() == nullptr, expected == None) << id;
        EXPECT_EQ(out.View(), expected == None ? u"" : expected) << id;
    };
    const std::pair<std::int32_t, const char16_t*> names[] = {{1041, u"日本語"},
                                                              {4105, u"English"},
                                                              {1068, u"Azərbaycan\u00ADılı"},
                                                              {58380, u"Français"},
                                                              {100, u"GeneralUtilities"},
                                                              {1025 + 0x100000, u"العربية"},
                                                              {1147, u""},
                                                              {1171, u""},
                                                              {96, u""},
                                                              {111, u""},
                                                              {9, None},
                                                              {95, None},
                                                              {112, None},
                                                              {1000, None},
                                                              {1184, None},
                                                              {-1, None},
                                                              {INT32_MIN, None},
                                                              {INT32_MAX, None}};
    for (const auto& [id, expected] : names) {
        ASSERT_EQ(utils->GetLangNativeName(id, out.Out()), S_OK);
        expect(expected, id);
    }

    void* program = dlopen(nullptr, RTLD_NOW);
    void* runtime = dlopen("libc.so.6", RTLD_NOW);
    int noModule = 0;
    const std::tuple<void*, std::int32_t, const char16_t*> texts[] = {
        {program, 40, u"forty"}, {program, 33, u""},    {program, 35, u""},  {program, 47, u""},
        {program, 48, None},     {program, 1041, None}, {runtime, 40, None}, {&noModule, 40, None}};
    for (const auto& [module, id, expected] : texts) {
        const std::int32_t handle = HandleFromPointer(module);
        ASSERT_EQ(utils->LoadUnicodeResString(handle, id, out.Out()), S_OK);
        expect(expected, id);
        ReleaseHandle(handle);
        ASSERT_EQ(utils->LoadUnicodeResString(handle, 40, out.Out()), S_OK);
        EXPECT_EQ(out.Get(), nullptr) << "the handle has ended";
    }
    dlclose(runtime);
    dlclose(program);
    EXPECT_EQ(utils->GetLangNativeName(1041, nullptr), E_POINTER);
    EXPECT_EQ(utils->LoadUnicodeResString(0, 40, nullptr), E_POINTER);
}

}  // namespace
}  // namespace generalutilities
