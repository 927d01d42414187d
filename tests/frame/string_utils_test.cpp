// `StringUtils` as a client sees it: directly and through `Invoke`.

#include <generalutilities/automation/string_table.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>

#include "values.h"

#include <dlfcn.h>

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

TEST_F(StringUtilsTest, GeneratesTextOfAScript) {
    Bstr text;
    ASSERT_EQ(utils->GenerateString(33, 1000, text.Out()), S_OK);
    EXPECT_EQ(text.View().size(), 1000u);
    for (const char16_t unit : text.View()) {
        ASSERT_TRUE(unit >= 0x1680 && unit <= 0x169F) << static_cast<int>(unit);
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
}

}  // namespace
}  // namespace generalutilities
