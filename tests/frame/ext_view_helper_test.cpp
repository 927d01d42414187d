// `ExtViewHelper` as a host sees it: out and home over a project file made by somebody else.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/extview/export_options.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/ext_view_helper.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sqlite3.h>
#include <vector>

namespace generalutilities {
namespace {

constexpr std::int32_t AllColumns = ShowIdColumn | ShowStatusColumn | ShowStatusValue;

/// Records the events that reach it; may disconnect itself while it is called.
class Sink final : public IDispatch {
  public:
    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        *object = iid == IID_IUnknown || iid == answers ? this : nullptr;
        if (*object == nullptr) {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    std::uint32_t AddRef() noexcept override { return ++references; }
    std::uint32_t Release() noexcept override { return --references; }
    HRESULT GetTypeInfoCount(std::uint32_t*) noexcept override { return E_NOTIMPL; }
    HRESULT GetTypeInfo(std::uint32_t, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, char16_t**, std::uint32_t, LCID, DISPID*) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT Invoke(DISPID member, REFIID, LCID, std::uint16_t flags, DISPPARAMS* arguments,
                   VARIANT*, EXCEPINFO*, std::uint32_t*) noexcept override {
        EXPECT_EQ(flags, DISPATCH_METHOD);
        EXPECT_EQ(arguments->cArgs, 2u);
        EXPECT_EQ(arguments->cNamedArgs, 0u);
        EXPECT_EQ(arguments->rgvarg[0].lVal, 1036) << "the language";
        events.emplace_back(member, arguments->rgvarg[1].lVal);
        if (leave) {
            leave->Unadvise(cookie);
        }
        return E_FAIL;  // which nobody looks at
    }

    IID answers = DIID__IExtViewHelperEvents;
    std::vector<std::pair<DISPID, std::int32_t>> events;
    ComPtr<IConnectionPoint> leave;
    std::uint32_t cookie = 0;
    std::uint32_t references = 0;
};

class ExtViewHelperTest : public testing::Test {
  protected:
    void SetUp() override {
        char name[] = "/tmp/generalutilities-extview-XXXXXX";
        folder = mkdtemp(name);
        ASSERT_EQ(sqlite3_open((folder / "project.db").c_str(), &db), SQLITE_OK);
        Sql("CREATE TABLE Pairs(ID TEXT, Source TEXT, Source2Index TEXT, Target_1036 TEXT, "
            "Status_1036 INTEGER, Comments_1036 TEXT, Percentage_1036 INTEGER, Done YESNO, "
            "FileID INTEGER, Selected BOOLEAN)");
        Sql("CREATE INDEX iID ON Pairs(ID); CREATE TABLE Files(ID INTEGER, FileName TEXT, FileSpec "
            "TEXT);"
            "CREATE TABLE Stamp(sLang INTEGER, sSubLang INTEGER); INSERT INTO Stamp VALUES(9, 1)");
        Sql("INSERT INTO Pairs VALUES('1','One {1}','One','Un {1}',1,'c',100,0,1,-1),"
            "('2','Two','Two',NULL,512,NULL,0,0,1,-1),('3','Three','Three','Trois',0,NULL,0,0,1,"
            "0)");
        ASSERT_EQ(OpenProjectDatabase((folder / "project.db").u16string().c_str(), project.Out()),
                  S_OK);
        ASSERT_EQ(
            CoCreateInstance(CLSID_ExtViewHelper, nullptr, 1, IID_IExtViewHelper, helper.OutVoid()),
            S_OK);
    }
    void TearDown() override {
        project = {};
        helper = {};
        sqlite3_close(db);
        std::filesystem::remove_all(folder);
        EXPECT_EQ(DllCanUnloadNow(), S_OK);
    }

    void Sql(const std::string& text) {
        ASSERT_EQ(sqlite3_exec(db, text.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(db);
    }
    /// All values of a query, row by row, separated by bars.
    std::string Query(const std::string& text) {
        std::string all;
        const auto row = [](void* out, int count, char** values, char**) {
            for (int i = 0; i < count; ++i) {
                *static_cast<std::string*>(out) +=
                    std::string(values[i] ? values[i] : "NULL") + "|";
            }
            return 0;
        };
        return sqlite3_exec(db, text.c_str(), row, &all, nullptr) == SQLITE_OK ? all
                                                                               : sqlite3_errmsg(db);
    }
    Bstr Path(const char* name) { return Bstr((folder / name).u16string()); }
    HRESULT Export(IUnknown* from, BSTR to, std::int32_t options, std::int32_t language = 1036) {
        return helper->ExportExternalView(from, to, 0, language, options, nullptr, 0x0000FF,
                                          0x00FF00, 0xFF0000, 4, 5, 6, 7, 8, 9);
    }
    HRESULT Import(BSTR from, std::int32_t options = 0) {
        return helper->ImportExternalView(project.Get(), from, 1036, options, VARIANT_FALSE);
    }
    std::string Read(const char* name) {
        std::ifstream file(folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    /// The words and the source that the latest failure left, or nothing.
    std::u16string Report() {
        ComPtr<IErrorInfo> error;
        if (GetErrorInfo(0, error.Out()) != S_OK) {
            return u"nothing";
        }
        Bstr text, source;
        error->GetDescription(text.Out());
        error->GetSource(source.Out());
        GUID guid{};
        error->GetGUID(&guid);
        EXPECT_EQ(guid, IID_IExtViewHelper);
        return source.Text() + u": " + text.Text();
    }

    std::filesystem::path folder;
    sqlite3* db = nullptr;
    ComPtr<IUnknown> project;
    ComPtr<IExtViewHelper> helper;
};

TEST_F(ExtViewHelperTest, RowsGoOutAndComeHomeUnchanged) {
    ASSERT_EQ(helper->put_SourceFont(Bstr(u"Source Font").Get()), S_OK);
    const Bstr file = Path("out.rtf");
    ASSERT_EQ(Export(project.Get(), file.Get(), AllColumns), S_OK);
    const std::string rtf = Read("out.rtf");
    EXPECT_NE(rtf.find("{\\f1\\froman\\fcharset0\\fprq0 Source Font;}"), std::string::npos);
    EXPECT_NE(rtf.find("\\red0\\green255\\blue0;\\red0\\green0\\blue255;"), std::string::npos)
        << "exact, then fuzzy, turned from blue first to red first";
    EXPECT_NE(rtf.find("One \\{1\\}"), std::string::npos);
    EXPECT_EQ(rtf.find("Trois"), std::string::npos) << "not selected";

    VARIANT_BOOL isRtf = 7;
    EXPECT_EQ(helper->IsFileRTF(file.Get(), &isRtf), S_OK);
    EXPECT_EQ(isRtf, VARIANT_TRUE);
    ASSERT_EQ(Import(file.Get()), S_OK);
    EXPECT_EQ(Query("SELECT ID, ExistingSource, Source, SourceHasChanged, ExistingTarget, Target, "
                    "TargetHasChanged, Comments, Accept, Status FROM Reimporting ORDER BY ID"),
              "1|One {1}|One {1}|0|Un {1}|Un {1}|0|c|-1|1|2|Two|Two|0|||0||0|512|");
}

TEST_F(ExtViewHelperTest, FailuresHaveTheirStatusAndWords) {
    const Bstr file = Path("out.rtf");
    const Bstr nowhere = Path("no/such/folder.rtf");
    const ComPtr<IUnknown> noDatabase = helper.As<IUnknown>(IID_IUnknown);
    const std::u16string source = u"GeneralUtilities.ExtViewHelper.1: ";
    VARIANT_BOOL answer = 7;
    std::ofstream(folder / "short") << "{\\rt";
    std::ofstream(folder / "plain.txt") << "no table at all";

    const auto check = [&](const char* what, HRESULT status, HRESULT expected,
                           std::u16string words) {
        EXPECT_EQ(Report(), words == u"nothing" ? words : source + words) << what;
        EXPECT_EQ(status, expected) << what;
    };
    SetErrorInfo(0, nullptr);
    check("no project", Export(nullptr, file.Get(), 0), E_INVALIDARG, u"nothing");
    check("no path", Export(project.Get(), nullptr, 0), E_INVALIDARG, u"nothing");
    check("no database", Export(noDatabase.Get(), file.Get(), 0), E_INVALIDARG, u"nothing");
    check("no folder", Export(project.Get(), nowhere.Get(), 0), everrUnableToOpenFile,
          u"Unable to open Output File");
    check("no such language", Export(project.Get(), file.Get(), 0, 1031), everrInvalidQuery,
          u"Invalid Query");
    check("import no file", Import(nowhere.Get()), everrUnableToOpenFile,
          u"Unable to open Output File");
    check("import folder", Import(Bstr(folder.u16string()).Get()), everrUnableToOpenFile,
          u"Unable to open Output File");
    check("import no table", Import(Path("plain.txt").Get()), everrNotEnoughFieldsPresent,
          u"Unable to reimport since not enough fields are present");
    check("import a page", Import(file.Get(), FormatHtml), E_INVALIDARG, u"nothing");
    check("test no file", helper->IsFileRTF(nowhere.Get(), &answer), everrUnableToOpenFile,
          u"Unable to open File");
    EXPECT_EQ(answer, 7) << "no answer";
    EXPECT_EQ(helper->IsFileRTF(Path("short").Get(), &answer), S_OK);
    EXPECT_EQ(answer, VARIANT_FALSE);
    EXPECT_EQ(helper->IsFileRTF(Path("short").Get(), nullptr), E_POINTER);

    ASSERT_EQ(Export(project.Get(), file.Get(), AllColumns), S_OK);
    EXPECT_EQ(Import(file.Get()), S_OK) << "works after every failure";
}

TEST_F(ExtViewHelperTest, ProgressBecomesEvents) {
    const auto container = helper.As<IConnectionPointContainer>(IID_IConnectionPointContainer);
    ComPtr<IConnectionPoint> point;
    EXPECT_EQ(container->FindConnectionPoint(IID_IExtViewHelper, point.Out()),
              CONNECT_E_NOCONNECTION);
    ASSERT_EQ(container->FindConnectionPoint(DIID__IExtViewHelperEvents, point.Out()), S_OK);

    Sink plain, leaving, wrong;
    wrong.answers = IID_IClassFactory;
    std::uint32_t cookie = 0, unused = 7;
    ASSERT_EQ(point->Advise(&leaving, &leaving.cookie), S_OK);
    ASSERT_EQ(point->Advise(&plain, &cookie), S_OK);
    EXPECT_EQ(point->Advise(&wrong, &unused), CONNECT_E_CANNOTCONNECT);
    EXPECT_EQ(unused, 0u);
    leaving.leave = point;

    ComPtr<IEnumConnections> connections;
    ASSERT_EQ(point->EnumConnections(connections.Out()), S_OK);
    CONNECTDATA data[3]{};
    std::uint32_t fetched = 0;
    EXPECT_EQ(connections->Next(3, data, &fetched), S_FALSE);
    ASSERT_EQ(fetched, 2u);
    EXPECT_EQ(data[1].dwCookie, cookie);
    data[0].pUnk->Release();
    data[1].pUnk->Release();
    connections = {};

    const Bstr file = Path("out.rtf");
    ASSERT_EQ(Export(project.Get(), file.Get(), AllColumns), S_OK);
    ASSERT_EQ(Import(file.Get()), S_OK);
    ASSERT_GE(plain.events.size(), 3u);
    EXPECT_EQ(plain.events[0], (std::pair<DISPID, std::int32_t>(DISPID_ExportProgress, 50)));
    EXPECT_EQ(plain.events[1], (std::pair<DISPID, std::int32_t>(DISPID_ExportProgress, 100)));
    EXPECT_EQ(plain.events.back(), (std::pair<DISPID, std::int32_t>(DISPID_ImportProgress, 100)));
    EXPECT_EQ(leaving.events.size(), 1u) << "left inside its first event";
    leaving.leave = {};

    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    EXPECT_EQ(point->Unadvise(cookie), CONNECT_E_NOCONNECTION);
    EXPECT_EQ(plain.references, 0u);
    EXPECT_EQ(leaving.references, 0u);
}

TEST_F(ExtViewHelperTest, ARefusedFileLeavesTheOldTable) {
    const Bstr file = Path("out.rtf");
    ASSERT_EQ(Export(project.Get(), file.Get(), AllColumns), S_OK);
    ASSERT_EQ(Import(file.Get()), S_OK);
    std::string cut = Read("out.rtf");
    std::ofstream(folder / "cut.rtf", std::ios::binary) << cut.substr(0, cut.find("stylesheet"));
    EXPECT_EQ(Import(Path("cut.rtf").Get()), everrNotEnoughFieldsPresent);
    EXPECT_EQ(Query("SELECT count(*) FROM Reimporting"), "2|") << "a refused file leaves it alone";
    EXPECT_EQ(Query("SELECT Target_1036 FROM Pairs WHERE ID='1'"), "Un {1}|");
}

}  // namespace
}  // namespace generalutilities
