// The exports, the class table, and what the module counts.

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/automation/project_database.h>
#include <generalutilities/automation/text_file.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/code_page_helper.h>
#include <generalutilities/interfaces/collections.h>
#include <generalutilities/interfaces/draw_text.h>
#include <generalutilities/interfaces/ext_view_helper.h>
#include <generalutilities/interfaces/itd.h>
#include <generalutilities/interfaces/string_utils.h>

#include "case_table.h"
#include "values.h"

#include <cstdio>
#include <set>
#include <sstream>

namespace generalutilities {
namespace {

TEST(ExportsTest, AreExactlyThoseOfTheList) {
    std::set<std::string> listed, exported;
    for (const auto& row : CaseTable("exported_names.tsv")) {
        listed.insert(Bytes(row[0]));
    }
    FILE* const symbols = popen("nm -D --defined-only " MODULE_PATH, "r");
    for (char line[4096]; fgets(line, sizeof line, symbols) != nullptr;) {
        std::string address, type, name;
        std::istringstream(line) >> address >> type >> name;
        if (type != "A") {  // the name of the version itself
            exported.insert(name.substr(0, name.find('@')));
        }
    }
    pclose(symbols);
    EXPECT_EQ(exported, listed);
}

TEST(ClassObjectTest, AnswersByTheClassTable) {
    ASSERT_EQ(DllCanUnloadNow(), S_OK);
    ComPtr<IClassFactory> first, second;
    ASSERT_EQ(DllGetClassObject(CLSID_StringUtils, IID_IClassFactory, first.OutVoid()), S_OK);
    ASSERT_EQ(DllGetClassObject(CLSID_StringUtils, IID_IClassFactory, second.OutVoid()), S_OK);
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    first = second = {};
    EXPECT_EQ(DllCanUnloadNow(), S_OK);

    EXPECT_EQ(DllGetClassObject(CLSID_StringUtils, IID_IClassFactory, nullptr), E_POINTER);
    void* object = &first;
    EXPECT_EQ(DllGetClassObject(CLSID_StringUtils, IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    // The writer of export files and the dictionary are services of the library, not its classes.
    for (const CLSID* clsid : {&CLSID_Dictionary, &IID_IUnknown, &CLSID_TextFileFactory}) {
        object = &first;
        EXPECT_EQ(DllGetClassObject(*clsid, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
        EXPECT_EQ(object, nullptr);
    }
}

TEST(ClassObjectTest, ObjectsOfferTheirInterfacesAndNoOther) {
    enum { Errors = 1, Events = 2, Inner = 4 };
    const struct {
        const CLSID& clsid;
        const IID& standard;
        int others;
    } table[] = {{CLSID_StringUtils, IID_IStringUtils, Errors},
                 {CLSID_ExtViewHelper, IID_IExtViewHelper, Errors | Events},
                 {CLSID_LongSet, IID_ILongSet, Inner},
                 {CLSID_LongStack, IID_ILongStack, 0},
                 {CLSID_qlnDictionary, IID_IQLNDictionary, 0},
                 {CLSID_QLNSort, IID_IQLNSort, Errors},
                 {CLSID_CodePageHelper, IID_ICodePageHelper, Errors},
                 {CLSID_Dictionary, IID_IDictionary, 0},
                 {CLSID_ITDReader, IID_IITDReader, Errors},
                 {CLSID_ITDWriter, IID_IITDWriter, Errors | Inner},
                 {CLSID_UDrawText, IID_IUDrawText, 0}};
    for (const auto& row : table) {
        const auto object = Create<IUnknown>(row.clsid, IID_IUnknown);
        const auto offers = [&](REFIID iid) { return static_cast<bool>(object.As<IUnknown>(iid)); };
        for (const auto& other : table) {
            EXPECT_EQ(offers(other.standard), &other == &row);
        }
        EXPECT_TRUE(offers(IID_IUnknown) && offers(IID_IDispatch));
        EXPECT_EQ(offers(IID_ISupportErrorInfo), (row.others & Errors) != 0);
        EXPECT_EQ(offers(IID_IConnectionPointContainer), (row.others & Events) != 0);
        EXPECT_FALSE(offers(IID_IClassFactory) || offers(DIID__IExtViewHelperEvents));
        Local<IUnknown> outer;
        ComPtr<IUnknown> inner;
        EXPECT_EQ(CoCreateInstance(row.clsid, &outer, 1, IID_IUnknown, inner.OutVoid()),
                  (row.others & Inner) != 0 ? S_OK : CLASS_E_NOAGGREGATION);
        if (const auto errors = object.As<ISupportErrorInfo>(IID_ISupportErrorInfo)) {
            EXPECT_EQ(errors->InterfaceSupportsErrorInfo(row.standard), S_OK);
            EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
        }
    }
    EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

/// A class object whose instances cannot be made.
struct NoFactory : Local<IClassFactory> {
    HRESULT CreateInstance(IUnknown*, REFIID, void**) noexcept override { return E_NOTIMPL; }
    HRESULT LockServer(std::int32_t) noexcept override { return S_OK; }
};

TEST(ClassObjectTest, AHostPutsItsOwnInThePlaceOfAClassUntilItRevokes) {
    NoFactory early, late;
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
    Create<ITextFileFactory>(CLSID_TextFileFactory, IID_ITextFileFactory);  // the built-in one
}

TEST(OpenProjectDatabaseTest, SaysWhyAFileIsNoProject) {
    IUnknown* project = nullptr;
    EXPECT_EQ(OpenProjectDatabase(nullptr, &project), E_INVALIDARG);
    EXPECT_EQ(OpenProjectDatabase(u"x", nullptr), E_INVALIDARG);
    for (const char16_t* path : {u"/nowhere/project.db", u"/", u""}) {
        EXPECT_TRUE(Failed(OpenProjectDatabase(path, &project)));
        EXPECT_EQ(project, nullptr);
        EXPECT_NE(Report().find(path), std::u16string::npos);
    }
}

}  // namespace
}  // namespace generalutilities
