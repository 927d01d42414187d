// Memory runs out at the n-th request, for every n: each public method answers E_OUTOFMEMORY or
// the failure that it documents, loses nothing, and works on.

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/automation/pointers.h>
#include <generalutilities/automation/project_database.h>
#include <generalutilities/extview/export_options.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/code_page_helper.h>
#include <generalutilities/interfaces/ext_view_helper.h>
#include <generalutilities/interfaces/itd.h>
#include <generalutilities/interfaces/string_utils.h>

#include "allocations.h"
#include "collection_lives.h"
#include "described_call.h"
#include "drawing_life.h"
#include "frame/interface_descriptions.h"
#include "frame/values.h"
#include "itd/sample_file.h"
#include "platform/files/utf8.h"
#include "project.h"
#include "rounds.h"

#include <algorithm>
#include <array>
#include <functional>

namespace generalutilities::fire {
namespace {

using Call = std::function<HRESULT()>;

/// Set up before SQLite is first used.
class Allocator : public ::testing::Environment {
    void SetUp() override {
        InstallFailingAllocator();
        InstallFaultyVfs();  // for its speed: it does not wait for the disk
    }
};
[[maybe_unused]] const auto* const environment = ::testing::AddGlobalTestEnvironment(new Allocator);

/// What surrounds each call of `FailEach`.
struct Around {
    std::function<void()> prepare = [] {};
    std::function<void(HRESULT)> check = [](HRESULT) {};
};

/// Runs `call` with the n-th allocation failing, once and from then on, for every n until it meets
/// none (the short rounds leave out more and more of them). Each time it answers as usual,
/// E_OUTOFMEMORY or `documented`, and as usual right afterwards.
void FailEach(const std::string& name, const Call& call, HRESULT documented = E_OUTOFMEMORY,
              const Around& around = {}) {
    around.prepare();
    const HRESULT usual = call();
    for (const bool fromThenOn : {false, true}) {
        long points = 0;
        long quiet = 0;
        bool met = true;
        for (long at = 1; met; at += LongRounds() ? 1 : 1 + at / 64) {
            const std::string where = name + (fromThenOn ? " from " : " at ") + std::to_string(at);
            around.prepare();
            FailAllocation(at, fromThenOn);
            const HRESULT status = call();
            met = AllowAllocations();
            points += met ? 1 : 0;
            quiet += met && status == usual ? 1 : 0;
            ASSERT_TRUE(status == usual ||
                        (met && (status == E_OUTOFMEMORY || status == documented)))
                << where << ": " << std::hex << status;
            around.check(status);
            ASSERT_EQ(call(), usual) << where << ", and then again";
            ASSERT_FALSE(::testing::Test::HasFailure()) << where;
        }
        if (points > 0) {
            std::printf("%s%s: %ld points, %ld of them without a failure\n", name.c_str(),
                        fromThenOn ? ", from then on" : "", points, quiet);
        }
    }
    SetErrorInfo(0, nullptr);
}

/// The same for a call that leaves nothing behind.
void FailEachInBalance(const std::string& name, const Call& call,
                       HRESULT documented = E_OUTOFMEMORY) {
    call();
    SetErrorInfo(0, nullptr);
    const long blocks = LiveBlocks();
    FailEach(name, call, documented);
    EXPECT_EQ(LiveBlocks(), blocks) << name;
}

template <class Interface>
void FailEachMethod(const InterfaceDescription& interface, Interface* object, const Bstr& text,
                    HRESULT documented = S_FALSE) {  // folding may give a part
    for (const Method& method : interface.methods) {
        for (const std::int32_t number : {1, 1036, 1252}) {  // a position, a language, a code page
            FailEachInBalance(
                files::ToUtf8Lossy(method.name) + " with " + std::to_string(number),
                [&] { return CallDescribed(method, object, text.Get(), number); }, documented);
            ASSERT_FALSE(::testing::Test::HasFailure());
        }
    }
}

/// The ways to an object and what every object can.
void FailObject(const CLSID& clsid, REFIID iid, char16_t* method) {
    const auto object = Create<IDispatch>(clsid, iid);
    FailEachInBalance("CoCreateInstance", [&] {
        ComPtr<IUnknown> another;
        return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, another.OutVoid());
    });
    FailEachInBalance(
        "GetTypeInfo",
        [&] {
            ComPtr<ITypeInfo> information;
            return object->GetTypeInfo(0, 0, information.Out());
        },
        TYPE_E_CANTLOADLIBRARY);
    DISPID id = 0;
    FailEachInBalance("GetIDsOfNames",
                      [&] { return object->GetIDsOfNames(GUID_NULL, &method, 1, 0, &id); });
    const Bstr text(u"/nowhere/at/all");
    FailEachInBalance("Invoke", [&] {
        VARIANT argument = Borrowed(text), result{};
        DISPPARAMS parameters{&argument, nullptr, 1, 0};
        EXCEPINFO exception{};
        const HRESULT status = object->Invoke(id, GUID_NULL, 0, DISPATCH_METHOD, &parameters,
                                              &result, &exception, nullptr);
        VariantClear(&result);
        for (const BSTR words :
             {exception.bstrSource, exception.bstrDescription, exception.bstrHelpFile}) {
            SysFreeString(words);
        }
        return status == DISP_E_EXCEPTION ? exception.scode : status;
    });
}

TEST(Allocations, StringUtils) {
    char16_t method[] = u"DeAccentString";
    FailObject(CLSID_StringUtils, IID_IStringUtils, method);
    const auto utils = Create<IStringUtils>(CLSID_StringUtils, IID_IStringUtils);
    FailEachMethod(DescribeStringUtils(), utils.Get(),
                   Bstr(u"\u00C9l\u00E8ve {12} stra\u00DFe\uFDFA \u4E2D\u6587, 3.5 %"));
}

TEST(Allocations, SerializeCodes) {
    const auto utils = Create<IStringUtils>(CLSID_StringUtils, IID_IStringUtils);
    const auto dictionary = Create<IDictionary>(CLSID_Dictionary, IID_IDictionary);
    const Bstr target(u"<a><b>x<c>"), sourceText(u"<a><b>x<c>y<c><a>");
    VARIANT keys[] = {Long(0), Long(1)}, item = Borrowed(target);
    Bstr source;
    std::int32_t last = 0;
    SAFEARRAY* arrays[2] = {};
    const auto destroyArrays = [&arrays] {
        for (SAFEARRAY*& array : arrays) {
            SafeArrayDestroy(std::exchange(array, nullptr));
        }
    };
    FailEach("SerializeCodes",
             [&] {
                 return utils->SerializeCodes(source.InOut(), dictionary.Get(), &last, &arrays[0],
                                              &arrays[1]);
             },
             E_FAIL,  // what the dictionary says of its own memory is lost
             {[&] {
                  destroyArrays();
                  source = sourceText;
                  last = 0;
                  dictionary->RemoveAll();
                  for (VARIANT& key : keys) {
                      ASSERT_EQ(dictionary->Add(&key, &item), S_OK);
                  }
              },
              [&](HRESULT status) {
                  Variant first;
                  ASSERT_EQ(dictionary->get_Item(&keys[0], first.Out()), S_OK);
                  const bool written = source.View() != sourceText.View();
                  EXPECT_EQ(written, arrays[0] != nullptr && arrays[1] != nullptr);
                  EXPECT_EQ(last != 0, status == S_OK);
                  EXPECT_TRUE(written || first.Get().bstrVal == target.Text());
                  destroyArrays();
              }});
    destroyArrays();
}

TEST(Allocations, CodePageHelper) {
    const auto helper = Create<ICodePageHelper>(CLSID_CodePageHelper, IID_ICodePageHelper);
    const Bstr text(u"<b><df font=\"A\" a=\"1\">x\u0434</df>"), font(u"font=\"B\"");
    FailEachInBalance("AddFonts", [&] {
        helper->ResetCodePages();
        HRESULT status = S_OK;
        for (const std::int32_t page : {1252, 1251}) {
            status = std::min(status, helper->AddCodePage(page, font.Get()));
        }
        Bstr out;
        return std::min(status, helper->AddFonts(text.Get(), out.Out()));
    });
}

TEST(Allocations, Collections) {
    const Bstr text(u"an item");
    const std::int32_t compare = HandleFromPointer(reinterpret_cast<void*>(&CompareLongs));
    FailEachInBalance("The life of a set, a stack, a dictionary and a sort",
                      [&] { return LiveWithCollections(text.Get(), compare); });
    ReleaseHandle(compare);
}

TEST(Allocations, Drawing) {
    const Bstr text(u"a text \u05D0\u05D1");
    FailEachInBalance("The life of a picture", [&] { return LiveWithDrawing(text.Get()); });
}

TEST(Allocations, ItdClasses) {
    char16_t open[] = u"OpenITDFile";
    FailObject(CLSID_ITDReader, IID_IITDReader, open);
    const TemporaryFolder folder;
    const Bstr reference(folder.Path(u"a.itd")), copy(folder.Path(u"b.itd"));
    WriteItdFile(reference.Text(), SampleTextPart());
    const std::string before = ReadFile(reference.Text());
    WriteFile(copy.Text(), before);
    const auto reader = Create<IITDReader>(CLSID_ITDReader, IID_IITDReader);
    const auto writer = Create<IITDWriter>(CLSID_ITDWriter, IID_IITDWriter);
    FailEach(
        "OpenITDFile", [&] { return reader->OpenITDFile(reference.Get()); },
        itderrUnableToAccessZip);
    const Bstr text(u"a{1}b");
    FailEachMethod(DescribeITDReader(), reader.Get(), reference, itderrUnableToAccessZip);
    FailEachMethod(DescribeITDWriter(), writer.Get(), reference, itderrUnableToAccessZip);
    FailEach(
        "OpenReferenceITD, Next and WriteToFile",
        [&] {
            HRESULT status = writer->OpenReferenceITD(reference.Get());
            for (int i = 0; i < 2 && status == S_OK; ++i) {
                status = std::min(status, writer->put_TargetText(text.Get()));
                status = std::min(status, writer->AddTargetCode(1, text.Get()));
                status = std::min(status, writer->Next());
            }
            return status == S_OK ? writer->WriteToFile(copy.Get()) : status;
        },
        itderrUnableToAccessZip);
    EXPECT_EQ(ReadFile(reference.Text()), before);
}

class HelperUnderFire : public ::testing::Test {
  protected:
    HelperUnderFire() : project(LongRounds() ? 40 : 4, 20), path(project.Path()) { Open(); }
    void Open() {
        opened = {};
        project.Restore();
        ASSERT_EQ(OpenProjectDatabase(path.c_str(), opened.Out()), S_OK);
    }

    Project project;
    const std::u16string path;
    const ComPtr<IExtViewHelper> helper =
        Create<IExtViewHelper>(CLSID_ExtViewHelper, IID_IExtViewHelper);
    ComPtr<IUnknown> opened;
};

TEST_F(HelperUnderFire, SmallMethods) {
    char16_t method[] = u"IsFileRTF";
    FailObject(CLSID_ExtViewHelper, IID_IExtViewHelper, method);
    const Bstr file(project.Reviewed());
    FailEachMethod(DescribeExtViewHelper(), helper.Get(), file);
    const auto container = helper.As<IConnectionPointContainer>(IID_IConnectionPointContainer);
    ComPtr<IConnectionPoint> point;
    ASSERT_EQ(container->FindConnectionPoint(DIID__IExtViewHelperEvents, point.Out()), S_OK);
    FailEachInBalance("EnumConnectionPoints", [&] {
        ComPtr<IEnumConnectionPoints> points, clone;
        const HRESULT status = container->EnumConnectionPoints(points.Out());
        return Failed(status) ? status : points->Clone(clone.Out());
    });
    FailEachInBalance("Advise, EnumConnections and Unadvise", [&] {
        std::uint32_t cookie = 0;
        HRESULT status = point->Advise(helper.Get(), &cookie);  // any dispatch object will do
        if (Failed(status)) {
            return status;
        }
        ComPtr<IEnumConnections> connections;
        status = point->EnumConnections(connections.Out());
        return std::min(status, point->Unadvise(cookie));
    });
    FailEachInBalance("OpenProjectDatabase", [&] {
        ComPtr<IUnknown> another;
        return OpenProjectDatabase(path.c_str(), another.Out());
    });
}

TEST_F(HelperUnderFire, Import) {
    TemporaryFolder folder;
    const Bstr document(folder.Path(u"out.twb"));
    ASSERT_EQ(helper->ExportExternalView(opened.Get(), document.Get(), 0, 1036, FormatTwb, nullptr,
                                         1, 2, 3, 4, 5, 6, 7, 8, 9),
              S_OK);
    const Contents before = project.Look();
    const Bstr table(project.Reviewed());
    for (const auto& [file, format] :
         {std::pair(&table, 0), std::pair(&document, int{FormatTwb})}) {
        FailEach("ImportExternalView",
                 [&, from = file->Get(), format = format] {
                     return helper->ImportExternalView(opened.Get(), from, 1036, format, 0);
                 },
                 static_cast<HRESULT>(everrUnableToOpenFile),
                 {[&] { Open(); },
                  [&](HRESULT status) {
                      const Contents now = project.Look();
                      EXPECT_EQ(now.pairs, before.pairs);
                      EXPECT_EQ(now.damage, before.damage);
                      EXPECT_EQ(now.reimporting == before.reimporting, status != S_OK)
                          << now.reimporting;
                  }});
    }
}

TEST_F(HelperUnderFire, Export) {
    TemporaryFolder folder;
    const Bstr file(folder.Path(u"out.rtf"));
    for (const std::int32_t options :
         std::array<std::int32_t, 4>{0, UniquePairsOnly, FormatHtml, FormatTwb}) {
        const auto run = [&] {
            return helper->ExportExternalView(opened.Get(), file.Get(), 0, 1036,
                                              ShowIdColumn | ShowStatusColumn | options, nullptr, 1,
                                              2, 3, 4, 5, 6, 7, 8, 9);
        };
        ASSERT_EQ(run(), S_OK);
        const std::string whole = ReadFile(file.Text());
        FailEach("ExportExternalView with " + std::to_string(options), run,
                 static_cast<HRESULT>(everrUnableToOpenFile),
                 {[] {},
                  [&](HRESULT status) {
                      EXPECT_TRUE(status != S_OK || ReadFile(file.Text()) == whole);
                  }});
    }
}

}  // namespace
}  // namespace generalutilities::fire
