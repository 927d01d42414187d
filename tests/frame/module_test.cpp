// The exports, the class table, and what the module counts.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/automation/project_database.h>
#include <generalutilities/automation/text_file.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/ext_view_helper.h>
#include <generalutilities/interfaces/string_utils.h>

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <thread>

namespace generalutilities {
namespace {

std::string Output(const std::string& command) {
    std::string output;
    FILE* const pipe = popen(command.c_str(), "r");
    char buffer[4096];
    while (std::size_t count = fread(buffer, 1, sizeof buffer, pipe)) {
        output.append(buffer, count);
    }
    pclose(pipe);
    return output;
}

TEST(ExportsTest, AreExactlyThoseOfTheList) {
    std::set<std::string> listed;
    std::ifstream map(EXPORTS_MAP);
    for (std::string word; map >> word;) {
        if (word.ends_with(';') && word != "*;" && word != "};") {
            listed.insert(word.substr(0, word.size() - 1));
        }
    }
    EXPECT_EQ(listed.size(), 47u);
    std::set<std::string> exported;
    std::istringstream symbols(Output("nm -D --defined-only " MODULE_PATH));
    for (std::string line; std::getline(symbols, line);) {
        std::string name = line.substr(line.rfind(' ') + 1);
        name = name.substr(0, name.find('@'));
        if (line.find(" A ") == std::string::npos) {  // the name of the version itself
            exported.insert(name);
        }
    }
    EXPECT_EQ(exported, listed);
}

TEST(ClassObjectTest, AnswersByTheClassTable) {
    ASSERT_EQ(DllCanUnloadNow(), S_OK);
    ComPtr<IClassFactory> first, second;
    ASSERT_EQ(DllGetClassObject(CLSID_StringUtils, IID_IClassFactory, first.OutVoid()), S_OK);
    ASSERT_EQ(DllGetClassObject(CLSID_StringUtils, IID_IClassFactory, second.OutVoid()), S_OK);
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);

    void* object = &first;
    EXPECT_EQ(DllGetClassObject(CLSID_StringUtils, IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    object = &first;
    EXPECT_EQ(DllGetClassObject(IID_IUnknown, IID_IClassFactory, &object),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(DllGetClassObject(CLSID_StringUtils, IID_IClassFactory, nullptr), E_POINTER);
    for (const CLSID* clsid :
         {&CLSID_UDrawText, &CLSID_LongSet, &CLSID_LongStack, &CLSID_qlnDictionary,
          &CLSID_CodePageHelper, &CLSID_QLNSort, &CLSID_ITDReader, &CLSID_ITDWriter}) {
        EXPECT_EQ(CoCreateInstance(*clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object),
                  CLASS_E_CLASSNOTAVAILABLE);
    }
    // The writer of export files is a service of the library, not one of its classes.
    EXPECT_EQ(DllGetClassObject(CLSID_TextFileFactory, IID_IClassFactory, &object),
              CLASS_E_CLASSNOTAVAILABLE);
    first = second = {};
    EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

TEST(ClassObjectTest, ObjectsOfferTheirInterfacesAndNoOther) {
    struct Row {
        const CLSID& clsid;
        std::vector<const IID*> offered;
    };
    const IID* const all[] = {&IID_IUnknown,          &IID_IDispatch,
                              &IID_IStringUtils,      &IID_IExtViewHelper,
                              &IID_ISupportErrorInfo, &IID_IConnectionPointContainer,
                              &IID_IClassFactory,     &DIID__IExtViewHelperEvents};
    const Row table[] = {
        {CLSID_StringUtils, {all[0], all[1], all[2], all[4]}},
        {CLSID_ExtViewHelper, {all[0], all[1], all[3], all[4], all[5]}},
    };
    for (const Row& row : table) {
        ComPtr<IUnknown> object;
        ASSERT_EQ(CoCreateInstance(row.clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                   object.OutVoid()),
                  S_OK);
        for (const IID* iid : all) {
            const bool offered = std::count(row.offered.begin(), row.offered.end(), iid) != 0;
            EXPECT_EQ(static_cast<bool>(object.As<IUnknown>(*iid)), offered);
        }
        const auto errors = object.As<ISupportErrorInfo>(IID_ISupportErrorInfo);
        EXPECT_EQ(errors->InterfaceSupportsErrorInfo(*row.offered[2]), S_OK);
        EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
    }
    EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

/// A class object of a host's own.
class HostFactory final : public IClassFactory {
  public:
    HRESULT QueryInterface(REFIID, void** object) noexcept override {
        *object = this;
        AddRef();
        return S_OK;
    }
    std::uint32_t AddRef() noexcept override { return ++references; }
    std::uint32_t Release() noexcept override { return --references; }
    HRESULT CreateInstance(IUnknown*, REFIID, void** object) noexcept override {
        *object = nullptr;
        return E_NOTIMPL;
    }
    HRESULT LockServer(std::int32_t) noexcept override { return S_OK; }

    std::uint32_t references = 0;
};

TEST(ClassObjectTest, AHostPutsItsOwnInThePlaceOfAClassUntilItRevokes) {
    HostFactory early, late;
    std::uint32_t first = 0, second = 0;
    ASSERT_EQ(CoRegisterClassObject(CLSID_TextFileFactory, &early, 1, 1, &first), S_OK);
    ASSERT_EQ(CoRegisterClassObject(CLSID_TextFileFactory, &late, 1, 1, &second), S_OK);
    void* object = nullptr;
    ASSERT_EQ(CoGetClassObject(CLSID_TextFileFactory, 1, nullptr, IID_IClassFactory, &object),
              S_OK);
    EXPECT_EQ(object, &late);
    late.Release();
    EXPECT_EQ(CoRevokeClassObject(second), S_OK);
    EXPECT_EQ(late.references, 0u);
    EXPECT_EQ(CoCreateInstance(CLSID_TextFileFactory, nullptr, 1, IID_ITextFileFactory, &object),
              E_NOTIMPL);
    EXPECT_EQ(CoRevokeClassObject(first), S_OK);
    EXPECT_EQ(CoRevokeClassObject(first), CO_E_OBJNOTREG);

    ComPtr<ITextFileFactory> builtIn;
    EXPECT_EQ(CoCreateInstance(CLSID_TextFileFactory, nullptr, 1, IID_ITextFileFactory,
                               builtIn.OutVoid()),
              S_OK);
}

TEST(ClassObjectTest, FactoriesComeFromManyThreadsAtOnce) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([] {
            for (int n = 0; n < 200; ++n) {
                ComPtr<IStringUtils> utils;
                ASSERT_EQ(CoCreateInstance(CLSID_StringUtils, nullptr, 1, IID_IStringUtils,
                                           utils.OutVoid()),
                          S_OK);
                Bstr upper;
                ASSERT_EQ(utils->ToUpper(Bstr(u"stra\u00DFe").Get(), upper.Out()), S_OK);
                ASSERT_EQ(upper.View(), u"STRASSE");
                ComPtr<ITypeInfo> info;
                ASSERT_EQ(utils->GetTypeInfo(0, 0, info.Out()), S_OK);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

TEST(OpenProjectDatabaseTest, SaysWhyAFileIsNoProject) {
    IUnknown* project = nullptr;
    EXPECT_EQ(OpenProjectDatabase(nullptr, &project), E_INVALIDARG);
    EXPECT_EQ(OpenProjectDatabase(u"x", nullptr), E_INVALIDARG);
    for (const char16_t* path : {u"/nowhere/project.db", u"/", u""}) {
        EXPECT_TRUE(Failed(OpenProjectDatabase(path, &project)));
        EXPECT_EQ(project, nullptr);
        ComPtr<IErrorInfo> error;
        ASSERT_EQ(GetErrorInfo(0, error.Out()), S_OK);
        Bstr text;
        error->GetDescription(text.Out());
        EXPECT_NE(text.View().find(path), std::u16string_view::npos);
    }
}

}  // namespace
}  // namespace generalutilities
