// `ExtViewHelper` as a host sees it: out and home over a project file made by somebody else.

#include <generalutilities/extview/export_options.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/ext_view_helper.h>

#include "database/temporary_folder.h"
#include "frame/without_late_binding.h"
#include "values.h"

#include <functional>
#include <sqlite3.h>

namespace generalutilities {
namespace {

constexpr std::int32_t AllColumns = ShowIdColumn | ShowStatusColumn | ShowStatusValue;

/// Records the events that reach it; may disconnect itself, and do more, while it is called.
struct Sink final : Local<WithoutLateBinding<IDispatch>> {
    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        return iid == answers ? Local::QueryInterface(iid, object) : E_NOINTERFACE;
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
            meanwhile();
        }
        return E_FAIL;  // which nobody looks at
    }

    IID answers = DIID__IExtViewHelperEvents;
    std::vector<std::pair<DISPID, std::int32_t>> events;
    ComPtr<IConnectionPoint> leave;
    std::function<void()> meanwhile;
    std::uint32_t cookie = 0;
};

class ExtViewHelperTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(sqlite3_open((folder / "project.db").c_str(), &db), SQLITE_OK);
        ASSERT_EQ(Query("CREATE TABLE Pairs(ID TEXT, Source TEXT, Source2Index TEXT, "
                        "Target_1036 TEXT, Status_1036 INTEGER, Comments_1036 TEXT, "
                        "Percentage_1036 INTEGER, Done YESNO, FileID INTEGER, Selected BOOLEAN);"
                        "CREATE INDEX iID ON Pairs(ID);"
                        "CREATE TABLE Files(ID INTEGER, FileName TEXT, FileSpec TEXT);"
                        "CREATE TABLE Stamp(sLang INTEGER, sSubLang INTEGER);"
                        "INSERT INTO Stamp VALUES(9, 1);"
                        "INSERT INTO Pairs VALUES"
                        "('1','One {1}','One','Un {1}',1,'c',100,0,1,-1),"
                        "('2','Two','Two',NULL,512,NULL,0,0,1,-1),"
                        "('3','Three','Three','Trois',0,NULL,0,0,1,0)"),
                  "");
        ASSERT_EQ(OpenProjectDatabase(folder.Path(u"project.db").c_str(), project.Out()), S_OK);
    }
    void TearDown() override {
        project = {};
        helper = {};
        sqlite3_close(db);
        EXPECT_EQ(DllCanUnloadNow(), S_OK);
    }

    /// All values of a query, row by row, each with a bar behind it.
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
    Bstr Path(const char16_t* name) { return Bstr(folder.Path(name)); }
    HRESULT Export(IUnknown* from, const Bstr& to, std::int32_t options,
                   std::int32_t language = 1036) {
        return helper->ExportExternalView(from, to.Get(), 0, language, options, nullptr, 0x0000FF,
                                          0x00FF00, 0xFF0000, 4, 5, 6, 7, 8, 9);
    }
    HRESULT Import(const Bstr& from, std::int32_t options = 0) {
        return helper->ImportExternalView(project.Get(), from.Get(), 1036, options, VARIANT_FALSE);
    }

    const TemporaryFolder folder;
    sqlite3* db = nullptr;
    ComPtr<IUnknown> project;
    ComPtr<IExtViewHelper> helper = Create<IExtViewHelper>(CLSID_ExtViewHelper, IID_IExtViewHelper);
    const Bstr file = Path(u"out.rtf");
};

// The object of a format lives while the format stays the same; the fonts survive every change.
TEST_F(ExtViewHelperTest, RowsGoOutAndComeHomeInFormatsInTurn) {
    ASSERT_EQ(helper->put_SourceFont(Bstr(u"Source Font").Get()), S_OK);
    ASSERT_EQ(helper->put_TargetFont(Bstr(u"Target Font").Get()), S_OK);
    const struct {
        std::int32_t options;
        std::vector<std::string> parts;  ///< what the file begins with, and what it has
    } cases[] = {
        {FormatTwb, {"{\\rtf1 \\ansi", "fcharset0 Target Font;}}\n"}},
        {FormatHtml | FormatTwb, {"<html>", "\"Source Font\";}", "\"Target Font\";}"}},
        // Exact, then fuzzy, turned from blue first to red first.
        {0,
         {"{\\rtf1\\adeflang", "{\\f1\\froman\\fcharset0\\fprq0 Source Font;}",
          "{\\f2\\froman\\fcharset0\\fprq0 Target Font;}",
          "\\red0\\green255\\blue0;\\red0\\green0\\blue255;"}},
        {FormatTwb, {"{\\rtf1 \\ansi", "fcharset0 Target Font;}}\n"}},
        {FormatTwb, {"{\\rtf1 \\ansi", "fcharset0 Target Font;}}\n"}},
    };
    for (const auto& one : cases) {
        ASSERT_EQ(Export(project.Get(), file, one.options | AllColumns), S_OK);
        const std::string bytes = ReadFile(folder / "out.rtf");
        EXPECT_TRUE(bytes.starts_with(one.parts[0])) << bytes;
        for (const std::string& part : one.parts) {
            EXPECT_NE(bytes.find(part), bytes.npos) << part << "\n" << bytes;
        }
        VARIANT_BOOL isTwb = 7, isRtf = 7;
        EXPECT_EQ(helper->IsFileTWB(file.Get(), &isTwb), S_OK);
        EXPECT_EQ(isTwb, one.options == FormatTwb ? VARIANT_TRUE : VARIANT_FALSE);
        EXPECT_EQ(helper->IsFileRTF(file.Get(), &isRtf), S_OK);
        EXPECT_EQ(isRtf, (one.options & FormatHtml) == 0 ? VARIANT_TRUE : VARIANT_FALSE);
        Query("DROP TABLE IF EXISTS Reimporting");
        EXPECT_EQ(Import(file, one.options), isRtf != VARIANT_FALSE ? S_OK : E_INVALIDARG);
        if (isRtf != VARIANT_FALSE) {
            EXPECT_EQ(Query("SELECT ID, ExistingSource, Source, SourceHasChanged, ExistingTarget, "
                            "Target, TargetHasChanged, Comments, Accept, Status FROM Reimporting "
                            "ORDER BY ID"),
                      "1|One {1}|One {1}|0|Un {1}|Un {1}|0|c|-1|1|2|Two|Two|0|||0||0|512|");
        }
    }
}

TEST_F(ExtViewHelperTest, FailuresHaveTheirStatusAndWords) {
    const Bstr nowhere = Path(u"no/such/folder.rtf");
    VARIANT_BOOL answer = 7;
    const Bstr shortFile(std::filesystem::path(folder.Write("short", "{\\rt")).u16string());
    folder.Write("plain.txt", "no table at all");

    const auto check = [&](HRESULT status, HRESULT expected, std::u16string words) {
        IID interface = IID_IExtViewHelper;
        const std::u16string source = u"GeneralUtilities.ExtViewHelper.1: ";
        EXPECT_EQ(Report(&interface), words.empty() ? u"nothing" : source + words);
        EXPECT_EQ(interface, IID_IExtViewHelper);
        EXPECT_EQ(status, expected) << testing::PrintToString(words);
    };
    SetErrorInfo(0, nullptr);
    check(Export(nullptr, file, 0), E_INVALIDARG, u"");
    check(Export(project.Get(), Bstr(), 0), E_INVALIDARG, u"");
    check(Export(helper.Get(), file, 0), E_INVALIDARG, u"");  // no database
    check(Export(project.Get(), nowhere, 0), everrUnableToOpenFile, u"Unable to open Output File");
    check(Export(project.Get(), file, 0, 1031), everrInvalidQuery, u"Invalid Query");
    check(Import(nowhere), everrUnableToOpenFile, u"Unable to open Output File");
    check(Import(Path(u"")), everrUnableToOpenFile, u"Unable to open Output File");
    check(Import(Path(u"plain.txt")), everrNotEnoughFieldsPresent,
          u"Unable to reimport since not enough fields are present");
    check(Import(file, FormatHtml), E_INVALIDARG, u"");
    check(helper->IsFileRTF(nowhere.Get(), &answer), everrUnableToOpenFile, u"Unable to open File");
    EXPECT_EQ(answer, 7) << "no answer";
    EXPECT_EQ(helper->IsFileRTF(shortFile.Get(), &answer), S_OK);
    EXPECT_EQ(answer, VARIANT_FALSE);

    ASSERT_EQ(Export(project.Get(), file, AllColumns), S_OK);
    EXPECT_EQ(Import(file), S_OK) << "works after every failure";
}

TEST_F(ExtViewHelperTest, ProgressBecomesEvents) {
    const auto container = helper.As<IConnectionPointContainer>(IID_IConnectionPointContainer);
    ComPtr<IConnectionPoint> point;
    EXPECT_EQ(container->FindConnectionPoint(IID_IExtViewHelper, point.Out()),
              CONNECT_E_NOCONNECTION);
    ASSERT_EQ(container->FindConnectionPoint(DIID__IExtViewHelperEvents, point.Out()), S_OK);
    ComPtr<IConnectionPointContainer> owner;
    EXPECT_EQ(point->GetConnectionPointContainer(owner.Out()), S_OK);
    EXPECT_EQ(owner.Get(), container.Get());
    owner = {};

    Sink plain, leaving, wrong;
    wrong.answers = IID_IClassFactory;
    std::uint32_t cookie = 0, unused = 7;
    ASSERT_EQ(point->Advise(&leaving, &leaving.cookie), S_OK);
    ASSERT_EQ(point->Advise(&plain, &cookie), S_OK);
    EXPECT_EQ(point->Advise(&wrong, &unused), CONNECT_E_CANNOTCONNECT);
    EXPECT_EQ(unused, 0u);
    leaving.leave = point;
    leaving.meanwhile = [this] {  // the same object, while it works
        EXPECT_EQ(Export(project.Get(), Path(u"other"), FormatHtml), S_OK);
        EXPECT_EQ(Export(project.Get(), Path(u"same"), AllColumns), S_OK);
    };

    ComPtr<IEnumConnections> connections;
    ASSERT_EQ(point->EnumConnections(connections.Out()), S_OK);
    CONNECTDATA data[3]{};
    std::uint32_t fetched = 0;
    EXPECT_EQ(connections->Next(3, data, &fetched), S_FALSE);
    ASSERT_EQ(fetched, 2u);
    EXPECT_EQ(data[1].dwCookie, cookie);
    data[0].pUnk->Release();
    data[1].pUnk->Release();
    const std::uint32_t held = helper->AddRef();
    connections = {};
    EXPECT_EQ(helper->Release(), held - 2) << "an enumerator holds its object";

    ASSERT_EQ(Export(project.Get(), file, AllColumns), S_OK);
    ASSERT_EQ(Import(file), S_OK);
    ASSERT_GE(plain.events.size(), 7u);
    using Event = std::pair<DISPID, std::int32_t>;
    EXPECT_EQ(plain.events[4], Event(DISPID_ExportProgress, 50));  // behind those of `meanwhile`
    EXPECT_EQ(plain.events[5], Event(DISPID_ExportProgress, 100));
    EXPECT_EQ(ReadFile(folder / "out.rtf"), ReadFile(folder / "same"));
    EXPECT_EQ(plain.events.back(), Event(DISPID_ImportProgress, 100));
    EXPECT_EQ(leaving.events.size(), 1u) << "left inside its first event";
    leaving.leave = {};

    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    EXPECT_EQ(point->Unadvise(cookie), CONNECT_E_NOCONNECTION);
    EXPECT_EQ(plain.references, 0u);
    EXPECT_EQ(leaving.references, 0u);
}

}  // namespace
}  // namespace generalutilities
