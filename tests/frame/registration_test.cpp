// Registration, seen in the file and by who looks for a class.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>

#include "case_table.h"

#include <cstdlib>

namespace generalutilities {
namespace {

class RegistrationTest : public testing::Test {
  protected:
    RegistrationTest() { setenv("XDG_DATA_HOME", home.Path().c_str(), 1); }
    ~RegistrationTest() override { unsetenv("XDG_DATA_HOME"); }

    std::filesystem::path File() const { return home.Path() / "generalutilities/registry.reg"; }
    void WriteRegistry(const std::string& content) {
        std::filesystem::create_directories(File().parent_path());
        WriteFile(File(), content);
    }

    const TemporaryFolder home;
};

TEST_F(RegistrationTest, WritesTheKeysOfAllClassesAndTakesThemAway) {
    EXPECT_EQ(DllUnregisterServer(), S_OK);
    EXPECT_EQ(home.FileCount(), 0U) << "nothing is written before a registration";

    ASSERT_EQ(DllRegisterServer(), S_OK);
    const std::string registered = ReadFile(File());
    std::string found = registered, listed;
    const auto replace = [&found](const std::string& what, const std::string& by) {
        for (std::size_t at; (at = found.find(what)) != found.npos;) {
            found.replace(at, what.size(), by);
        }
    };
    const std::filesystem::path module = std::filesystem::canonical(MODULE_PATH);
    replace(module, "{module}");
    replace(module.parent_path(), "{folder}");
    replace("\n\n", "\n");
    for (const auto& row : CaseTable("registered_keys.tsv")) {
        listed += Bytes(row[0]) + "\n";
    }
    EXPECT_EQ(found, listed);
    EXPECT_EQ(DllRegisterServer(), S_OK);
    EXPECT_EQ(ReadFile(File()), registered) << "a second registration changes nothing";

    ComPtr<ITypeLib> library;
    EXPECT_EQ(LoadRegTypeLib(LIBID_GeneralUtilities, 1, 0, 0, library.Out()), S_OK);
    EXPECT_EQ(LoadRegTypeLib(LIBID_GeneralUtilities, 2, 0, 0, library.Out()),
              TYPE_E_LIBNOTREGISTERED);

    ASSERT_EQ(DllUnregisterServer(), S_OK);
    const std::string left = ReadFile(File());
    EXPECT_NE(left.find("[HKEY_CLASSES_ROOT\\CLSID]\n"), std::string::npos);
    EXPECT_EQ(left.find("GeneralUtilities"), std::string::npos) << left;
    EXPECT_EQ(left.find("{E394A5B6"), std::string::npos) << left;
    EXPECT_EQ(LoadRegTypeLib(LIBID_GeneralUtilities, 1, 0, 0, library.Out()),
              TYPE_E_LIBNOTREGISTERED);
}

TEST_F(RegistrationTest, ADamagedFileIsReportedAndLeftAlone) {
    WriteRegistry("not a registry");
    EXPECT_TRUE(Failed(DllRegisterServer()));
    EXPECT_TRUE(Failed(DllUnregisterServer()));
    EXPECT_EQ(ReadFile(File()), "not a registry");
}

TEST_F(RegistrationTest, OthersKeysSurvive) {
    const std::string keys =
        "[HKEY_CLASSES_ROOT\\Other]\n\"n\"=dword:00000005\n\n[HKEY_CLASSES_ROOT\\TypeLib]\n\n"
        "[HKEY_CLASSES_ROOT\\TypeLib\\{E394A5B6-1C33-45E9-B842-CE7289EFD9D5}]\n\n"
        "[HKEY_CLASSES_ROOT\\TypeLib\\{E394A5B6-1C33-45E9-B842-CE7289EFD9D5}\\2.0]\n";
    WriteRegistry("Windows Registry Editor Version 5.00\n\n" + keys);
    ASSERT_EQ(DllRegisterServer(), S_OK);
    ASSERT_EQ(DllUnregisterServer(), S_OK);
    EXPECT_TRUE(ReadFile(File()).ends_with(keys)) << ReadFile(File());
}

TEST_F(RegistrationTest, ProgIdsOfOurClassesNeedNoRegistration) {
    char16_t* progId = nullptr;
    ASSERT_EQ(ProgIDFromCLSID(CLSID_qlnDictionary, &progId), S_OK);
    EXPECT_EQ(std::u16string(progId), u"GeneralUtilities.qlnDictionary.1");
    CoTaskMemFree(progId);
    EXPECT_EQ(ProgIDFromCLSID(IID_IUnknown, &progId), REGDB_E_CLASSNOTREG);
    const auto clsidOf = [](const char16_t* name) {
        CLSID clsid;
        EXPECT_TRUE(CLSIDFromProgID(name, &clsid) == S_OK || clsid == GUID_NULL);
        return clsid;
    };
    EXPECT_EQ(clsidOf(u"GeneralUtilities.StringUtils.1"), GUID_NULL) << "but their way back does";
    ASSERT_EQ(DllRegisterServer(), S_OK);
    EXPECT_EQ(clsidOf(u"GeneralUtilities.StringUtils.1"), CLSID_StringUtils);
    EXPECT_EQ(clsidOf(u"generalutilities.STRINGUTILS"), CLSID_StringUtils);
    EXPECT_EQ(clsidOf(u"GeneralUtilities.StringUtils.2"), GUID_NULL);
    EXPECT_EQ(clsidOf(u"CLSID\\x"), GUID_NULL);
}

}  // namespace
}  // namespace generalutilities
