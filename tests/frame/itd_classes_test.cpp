// `ITDReader` and `ITDWriter` as a host sees them.

#include <generalutilities/automation/zip_manager.h>
#include <generalutilities/error.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/itd.h>

#include "frame/without_late_binding.h"
#include "itd/sample_file.h"
#include "values.h"

namespace generalutilities {
namespace {

template <class Interface, class Value>
Value Get(const ComPtr<Interface>& object, HRESULT (Interface::*getter)(Value*)) {
    Value value{};
    EXPECT_EQ((object.Get()->*getter)(&value), S_OK);
    return value;
}

class ItdClassesTest : public testing::Test {
  protected:
    void SetUp() override { WriteItdFile(path.Text(), SampleTextPart()); }
    void TearDown() override {
        reader = {};
        writer = {};
        EXPECT_EQ(DllCanUnloadNow(), S_OK);
    }

    TemporaryFolder folder;
    Bstr path{folder.Path(u"a.itd")};
    Bstr copy{folder.Path(u"b.itd")};
    ComPtr<IITDReader> reader = Create<IITDReader>(CLSID_ITDReader, IID_IITDReader);
    ComPtr<IITDWriter> writer = Create<IITDWriter>(CLSID_ITDWriter, IID_IITDWriter);
};

/// A host's own archive manager, which answers with a status of its choice and stores nothing. Of
/// `IUnknown` it may only be asked to go.
class HostsManager final : public WithoutLateBinding<IZipManager> {
  public:
    HRESULT QueryInterface(REFIID, void**) noexcept override { return AddRef(), E_NOINTERFACE; }
    std::uint32_t AddRef() noexcept override {
        ADD_FAILURE();
        return 2;
    }
    std::uint32_t Release() noexcept override { return 1; }
    HRESULT ReadTextPart(BSTR, std::uint32_t, std::uint32_t, std::uint32_t*,
                         BSTR*) noexcept override {
        return status;
    }
    HRESULT ComputeTrailerValue(BSTR, std::uint32_t, std::uint32_t*) noexcept override {
        return E_FAIL;
    }
    HRESULT WriteTextPart(BSTR, std::uint32_t, std::uint32_t, BSTR,
                          std::uint32_t*) noexcept override {
        return status;
    }
    HRESULT status = itderrBadMagic;
};

/// In its life the library gets the host's managers; with none, they cannot be made.
class ManagerClass final : public Local<IClassFactory> {
  public:
    explicit ManagerClass(IZipManager* instance) : manager(instance) {
        EXPECT_EQ(CoRegisterClassObject(CLSID_ZipManager, this, CLSCTX_ALL, 1, &cookie), S_OK);
    }
    ~ManagerClass() { CoRevokeClassObject(cookie); }
    HRESULT CreateInstance(IUnknown*, REFIID, void** object) noexcept override {
        *object = manager;
        return manager == nullptr ? E_NOTIMPL : S_OK;
    }
    HRESULT LockServer(std::int32_t) noexcept override { return S_OK; }

  private:
    IZipManager* manager;
    std::uint32_t cookie = 0;
};

TEST_F(ItdClassesTest, FailuresHaveTheirWords) {
    const std::string good = ReadFile(path.Text());
    const std::string sample = SampleTextPart();
    std::string badHeader = sample;
    badHeader[8] = '\xFF';
    const auto make = [&](std::string_view textPart) {
        WriteItdFile(path.Text(), textPart);
        return ReadFile(path.Text());
    };
    struct Row {
        std::string file;
        HRESULT status;
        std::u16string words;
        bool readsHeader = false;
    };
    const Row table[] = {
        {make(sample.substr(0, sample.size() - 60)), itderrTextParsing,
         u"Error while parsing text data", true},
        {"", itderrBadMagic, u"Bad Magic Number"},
        {good.substr(0, 10), itderrBadVersion, u"Unrecognised Version"},
        {good.substr(0, good.size() - 1), itderrUnableToReadFile, u"Unable to read data"},
        {std::string(good).replace(SampleLengthOffset + 4, 1, "?"), ErrorInvalidData, u""},
        {make(badHeader), itderrWrongTextHeader, u"Unknown header format in text part"},
        {make(""), itderrWrongTextHeader, u"Unknown header format in text part"},
    };
    WriteFile(copy.Text(), good);
    Bstr source, target(u"held");
    EXPECT_EQ(reader->GetLangsOnly(copy.Get(), source.Out(), target.InOut()), S_OK);
    EXPECT_EQ(source.Text() + target.Text(), u"en-USde-DE");

    const auto expect = [&](HRESULT status, const Row& row, const std::u16string& className) {
        EXPECT_EQ(status, row.status);
        EXPECT_EQ(Report(), row.words.empty()
                                ? u"nothing"
                                : u"GeneralUtilities." + className + u".1: " + row.words);
    };
    const auto expectAll = [&](const Row& row) {
        SCOPED_TRACE(testing::PrintToString(row.words));
        SetErrorInfo(0, nullptr);
        expect(reader->OpenITDFile(path.Get()), row, u"ITDReader");
        expect(writer->OpenReferenceITD(path.Get()), row, u"ITDWriter");
        if (!row.readsHeader) {
            expect(reader->GetLangsOnly(path.Get(), source.InOut(), target.InOut()), row,
                   u"ITDReader");
        }
        // A file with no header changes nothing; one with no segments leaves none.
        EXPECT_EQ(Get(reader, &IITDReader::get_SegmentCount), row.readsHeader ? 0 : 4);
        EXPECT_EQ(Get(writer, &IITDWriter::get_SegmentCount), row.readsHeader ? 0 : 4);
    };
    for (const Row& row : table) {
        EXPECT_EQ(reader->OpenITDFile(copy.Get()), S_OK);
        EXPECT_EQ(writer->OpenReferenceITD(copy.Get()), S_OK);
        WriteFile(path.Text(), row.file);
        expectAll(row);
    }
    const Row noManager{{}, itderrUnableToAccessZip, u"Unable to access the zip manager"};
    WriteFile(path.Text(), good);
    {
        const ManagerClass none(nullptr);
        expectAll(noManager);
        expect(writer->WriteToFile(Bstr(u"none").Get()), noManager, u"ITDWriter");
    }
    HostsManager manager;
    const ManagerClass hosts(&manager);
    expectAll({{}, itderrBadMagic, u""});
    expect(writer->WriteToFile(path.Get()), {{}, itderrBadMagic, u""}, u"ITDWriter");
    EXPECT_EQ(ReadFile(path.Text()), good);
    manager.status = S_FALSE;
    EXPECT_EQ(writer->WriteToFile(path.Get()), S_OK) << "the trailer value's status does not count";
    EXPECT_EQ(ReadFile(path.Text()), good.substr(0, SampleLengthOffset) + std::string(8, '\0'));
    path = Bstr(folder.Path(u"none"));
    expectAll({{}, itderrUnableToOpenFile, u"Unable to open File"});
}

/// Whatever is wrong with a file, it is told in a documented way, and what can be opened can be
/// walked to its end and written into a copy.
TEST_F(ItdClassesTest, DamagedFilesAreToldOrWalked) {
    const auto check = [&](const std::string& file) {
        WriteNewFile(path.Text(), file);
        SetErrorInfo(0, nullptr);
        const HRESULT status = reader->OpenITDFile(path.Get());
        const std::u16string report = Report();
        if (status == S_OK) {
            EXPECT_EQ(reader->Restart(), S_OK);
            while (Get(reader, &IITDReader::Next) != VARIANT_FALSE) {
            }
            WriteNewFile(copy.Text(), file);
            EXPECT_EQ(writer->OpenReferenceITD(path.Get()), S_OK);
            EXPECT_EQ(writer->put_TargetText(Bstr(u"x{1}").Get()), S_OK);
            EXPECT_EQ(writer->Next(), S_OK);
            EXPECT_EQ(writer->WriteToFile(copy.Get()), S_OK);
            EXPECT_EQ(ReadFile(path.Text()), file);
            return true;
        }
        EXPECT_EQ(report, status == ErrorInvalidData ? u"nothing"
                                                     : u"GeneralUtilities.ITDReader.1: " +
                                                           std::u16string(ItdErrorText(status)));
        EXPECT_NE(report, u"GeneralUtilities.ITDReader.1: Unknown Error");
        return false;
    };
    const std::string part = SampleTextPart();
    const std::string file = ReadFile(path.Text());
    const auto packed = [&](std::string_view damaged) {
        WriteItdFile(path.Text(), damaged);
        return ReadFile(path.Text());
    };
    const auto changed = [](std::string whole, std::size_t at, int mask) {
        whole[at] = static_cast<char>(whole[at] ^ mask);
        return whole;
    };
    for (std::size_t at = 0; at < file.size(); ++at) {
        EXPECT_FALSE(check(file.substr(0, at))) << at;
        for (const int mask : {0xFF, 0x80, 1}) {
            check(changed(file, at, mask));
        }
    }
    for (std::size_t at = 0; at < part.size(); ++at) {
        const bool wholeRecords = at >= part.size() - 3;  // only the footer is cut
        EXPECT_EQ(check(packed(part.substr(0, at))), wholeRecords) << at;
        check(packed(changed(part, at, 0xFF)));
    }
}

TEST_F(ItdClassesTest, WriterRefusesWhatIsNoCopy) {
    const std::string before = ReadFile(path.Text());
    std::string other = before;
    other[15] ^= 1;  // in the first part
    ASSERT_EQ(writer->OpenReferenceITD(path.Get()), S_OK);
    const std::u16string name = u"GeneralUtilities.ITDWriter.1: ";
    for (const std::string& bytes : {other, before.substr(0, SampleLengthOffset - 1)}) {
        WriteFile(copy.Text(), bytes);
        EXPECT_EQ(writer->WriteToFile(copy.Get()), E_INVALIDARG);
        EXPECT_EQ(Report(), name + u"The destination is no copy of the reference file");
        EXPECT_EQ(ReadFile(copy.Text()), bytes);
    }
    std::filesystem::remove(copy.Text());
    EXPECT_EQ(writer->WriteToFile(copy.Get()), itderrUnableToOpenFile);
    EXPECT_EQ(Report(), name + u"Unable to open File");
    std::filesystem::create_hard_link(path.Text(), copy.Text());
    for (const Bstr* const same : {&path, &copy}) {
        EXPECT_EQ(writer->WriteToFile(same->Get()), E_INVALIDARG);
        EXPECT_EQ(Report(), name + u"The destination is the reference file itself");
    }
    EXPECT_EQ(ReadFile(path.Text()), before);
    std::filesystem::remove(copy.Text());
    WriteFile(copy.Text(), before.substr(0, SampleLengthOffset + 4));  // as much as it needs
    std::filesystem::remove(path.Text());
    EXPECT_EQ(writer->WriteToFile(copy.Get()), S_OK);
    EXPECT_EQ(ReadFile(copy.Text()), before);
    EXPECT_EQ(writer->CloseFile(), S_OK);
    EXPECT_EQ(writer->WriteToFile(copy.Get()), E_INVALIDARG) << "there is no document to write";
    EXPECT_EQ(writer->put_TargetLanguage(Bstr(std::u16string(256, u'x')).Get()), S_OK);
    EXPECT_EQ(writer->WriteToFile(copy.Get()), E_FAIL);
    EXPECT_EQ(Report(), name + u"Error: Language code too long!");
    EXPECT_EQ(ReadFile(copy.Text()), before);
}

}  // namespace
}  // namespace generalutilities
