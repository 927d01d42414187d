// What `StringUtils` draws lots for, and what it finds in other modules.

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
