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

TEST(StringUtilsTest, GeneratesTextOfAScript) {
    Bstr text;
    ASSERT_EQ(Create<IStringUtils>(CLSID_StringUtils, IID_IStringUtils)
                  ->GenerateString(33, 1000, text.Out()),
              S_OK);
    EXPECT_EQ(text.View().size(), 1000u);
    EXPECT_TRUE(std::ranges::all_of(
        text.View(), [](char16_t unit) { return unit >= 0x1680 && unit <= 0x169F; }));
}

TEST(StringUtilsTest, TellsAMissingTextFromAMissingBlock) {
    const auto utils = Create<IStringUtils>(CLSID_StringUtils, IID_IStringUtils);
    void* program = dlopen(nullptr, RTLD_NOW);
    void* runtime = dlopen("libc.so.6", RTLD_NOW);
    int noModule = 0;
    const std::tuple<void*, std::int32_t, std::u16string> texts[] = {
        {program, 40, u"forty"}, {program, 33, u""},      {program, 35, u""},
        {program, 47, u""},      {program, 48, u"null"},  {program, 1041, u"null"},
        {runtime, 40, u"null"},  {&noModule, 40, u"null"}};
    for (const auto& [module, id, expected] : texts) {
        Bstr text, ended;
        const std::int32_t handle = HandleFromPointer(module);
        ASSERT_EQ(utils->LoadUnicodeResString(handle, id, text.Out()), S_OK);
        EXPECT_EQ(text.Get() == nullptr ? u"null" : text.Text(), expected) << id;
        ReleaseHandle(handle);
        ASSERT_EQ(utils->LoadUnicodeResString(handle, 40, ended.Out()), S_OK);
        EXPECT_EQ(ended.Get(), nullptr) << "the handle has ended";
    }
    dlclose(runtime);
    dlclose(program);
}

}  // namespace
}  // namespace generalutilities
