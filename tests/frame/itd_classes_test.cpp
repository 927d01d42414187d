// `ITDReader` and `ITDWriter` as a host sees them.

#include <generalutilities/automation/zip_manager.h>
#include <generalutilities/error.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/itd.h>

#include "itd/sample_file.h"
#include "text/decimal.h"
#include "values.h"

namespace generalutilities {
namespace {

class ItdClassesTest : public testing::Test {
  protected:
    void SetUp() override { WriteItdFile(path.Text(), SampleTextPart()); }
    void TearDown() override {
        reader = {};
        writer = {};
        EXPECT_EQ(DllCanUnloadNow(), S_OK);
    }

    /// What a getter gives.
    std::u16string Text(HRESULT (IITDReader::*getter)(BSTR*)) {
        Bstr text;
        return (reader.Get()->*getter)(text.Out()) == S_OK ? text.Text() : u"failed";
    }
    std::u16string Text(HRESULT (IITDReader::*getter)(std::int32_t, BSTR*), std::int32_t index) {
        Bstr text;
        return (reader.Get()->*getter)(index, text.Out()) == S_OK ? text.Text() : u"failed";
    }
    /// The current segment.
    std::u16string Segment() {
        std::int32_t count = 0, status = 0;
        double score = 0;
        std::u16string all =
            Text(&IITDReader::get_SourceText) + u"|" + Text(&IITDReader::get_TargetText);
        EXPECT_EQ(reader->get_SourceCodeCount(&count), S_OK);
        for (std::int32_t i = 0; i < count; ++i) {
            all += u"|" + CodeString(Text(&IITDReader::get_SourceCode, i), true);
        }
        EXPECT_EQ(reader->get_Status(&status), S_OK);
        EXPECT_EQ(reader->get_Score(&score), S_OK);
        return all + u"|" + Decimal(status) +
               (score == status / 4.0 ? u"|" : u" with another score|") +
               Text(&IITDReader::get_Comment);
    }
    TemporaryFolder folder;
    Bstr path{folder.Path(u"a.itd")};
    Bstr copy{folder.Path(u"b.itd")};
    ComPtr<IITDReader> reader = Create<IITDReader>(CLSID_ITDReader, IID_IITDReader);
    ComPtr<IITDWriter> writer = Create<IITDWriter>(CLSID_ITDWriter, IID_IITDWriter);
};

TEST_F(ItdClassesTest, ReaderWalksADocument) {
    for (const bool targetFirst : {false, true}) {
        WriteItdFile(path.Text(), SampleTextPart(targetFirst));
        std::int32_t count = -1;
        VARIANT_BOOL more = 7;
        ASSERT_EQ(reader->OpenITDFile(path.Get()), S_OK);
        EXPECT_EQ(Text(&IITDReader::get_SourceLanguage), u"en-US");
        EXPECT_EQ(Text(&IITDReader::get_TargetLanguage), u"de-DE");
        EXPECT_EQ(reader->get_SegmentCount(&count), S_OK);
        EXPECT_EQ(count, 4);
        EXPECT_EQ(reader->put_EmbeddedCodeID(7), S_OK);
        EXPECT_EQ(reader->Restart(), S_OK);
        const std::u16string first = u"one{7}two|eins{7}zwei|";
        EXPECT_EQ(Segment().substr(0, first.size()), first);
        EXPECT_EQ(reader->get_EmbeddedCodeID(&count), S_OK);
        EXPECT_EQ(count, 8);
        EXPECT_TRUE(Segment().ends_with(u"||1|Ann: note\r\n"));
        EXPECT_EQ(reader->Next(&more), S_OK);
        EXPECT_EQ(more, VARIANT_TRUE);
        EXPECT_EQ(Segment(),
                  u"a\\{b\\\\||<itbh><pid>0</pid><f2>32</f2><f3>0</f3><sid>2</sid></itbh>||2|");
        EXPECT_EQ(reader->get_TargetCodeCount(&count), S_OK);
        EXPECT_EQ(count, 2);
        EXPECT_EQ(reader->Next(&more), S_OK);
        EXPECT_EQ(Segment(), u"||<itbh><pid>0</pid><f2>1</f2><f3>0</f3><sid>3</sid></itbh>‹x›|2|");
        EXPECT_EQ(reader->ReverseLanguages(), S_OK);
        EXPECT_EQ(reader->get_More(&more), S_OK);
        EXPECT_EQ(more, VARIANT_TRUE);
        EXPECT_EQ(reader->Restart(), S_OK);
        EXPECT_TRUE(Segment().starts_with(u"eins{8}zwei|one{8}two|"));
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(reader->Next(&more), S_OK);
        }
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(reader->get_More(&more), S_OK);
            EXPECT_EQ(more, VARIANT_FALSE);
            EXPECT_EQ(reader->Next(&more), S_OK);
            EXPECT_EQ(more, VARIANT_FALSE);
        }
        EXPECT_EQ(reader->get_ExtraInfoCount(&count), S_OK);
        EXPECT_EQ(count, 1);
        EXPECT_TRUE(Text(&IITDReader::get_ExtraInfo, 0).starts_with(u"<?x?><c>"));
        EXPECT_TRUE(Text(&IITDReader::get_BinaryHeader).starts_with(u"<binheader>00000000"));
        EXPECT_EQ(Text(&IITDReader::get_BinaryFooter), u"<binfooter>656E64</binfooter>");
        EXPECT_EQ(reader->CloseFile(), S_OK);
        EXPECT_EQ(reader->get_SegmentCount(&count), S_OK);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(Text(&IITDReader::get_SourceLanguage), u"en-US");
    }
}

TEST_F(ItdClassesTest, ArgumentsAreChecked) {
    ASSERT_EQ(reader->OpenITDFile(path.Get()), S_OK);
    ASSERT_EQ(reader->Restart(), S_OK);
    Bstr text(u"held");
    for (const std::int32_t index : {-1, 4}) {
        EXPECT_EQ(reader->get_SourceCode(index, text.InOut()), E_INVALIDARG);
        EXPECT_EQ(reader->get_TargetCode(index, text.InOut()), E_INVALIDARG);
        EXPECT_EQ(reader->get_ExtraInfo(index, text.InOut()), E_INVALIDARG);
    }
    EXPECT_EQ(reader->get_Untranslatable(text.InOut()), S_OK);
    EXPECT_EQ(text.View(), u"held");
    EXPECT_EQ(reader->get_SourceText(text.InOut()), S_OK) << "which frees what is held";
    EXPECT_EQ(text.View(), u"one{1}two");
    EXPECT_EQ(reader->get_SourceCode(0, nullptr), E_INVALIDARG);
    EXPECT_EQ(reader->get_SourceCodeCount(nullptr), E_INVALIDARG);
    EXPECT_EQ(reader->get_TargetCodeCount(nullptr), E_INVALIDARG);
    EXPECT_EQ(reader->GetLangsOnly(path.Get(), nullptr, text.InOut()), E_INVALIDARG);
    EXPECT_EQ(reader->get_TargetText(nullptr), E_POINTER);
    EXPECT_EQ(reader->get_Comment(nullptr), E_POINTER);
    EXPECT_EQ(reader->Next(nullptr), E_POINTER);
    EXPECT_EQ(writer->get_SourceLanguage(nullptr), E_POINTER);
    EXPECT_EQ(writer->get_SegmentCount(nullptr), E_POINTER);
}

/// A class object whose instances cannot be made.
class NoManager final : public IClassFactory {
  public:
    HRESULT QueryInterface(REFIID, void** object) noexcept override {
        *object = this;
        return S_OK;
    }
    std::uint32_t AddRef() noexcept override { return 2; }
    std::uint32_t Release() noexcept override { return 1; }
    HRESULT CreateInstance(IUnknown*, REFIID, void**) noexcept override { return E_NOTIMPL; }
    HRESULT LockServer(std::int32_t) noexcept override { return S_OK; }
};

TEST_F(ItdClassesTest, FailuresHaveTheirWords) {
    const std::string good = ReadFile(path.Text());
    std::string badHeader = SampleTextPart();
    badHeader[8] = '\xFF';
    const auto make = [&](std::string_view textPart) {
        WriteItdFile(path.Text(), textPart);
        return ReadFile(path.Text());
    };
    const std::string sample = SampleTextPart();
    struct Row {
        std::string file;
        HRESULT status;
        std::u16string words;
        bool languagesToo = true;
    };
    const Row table[] = {
        {"", itderrBadMagic, u"Bad Magic Number"},
        {good.substr(0, 10), itderrBadVersion, u"Unrecognised Version"},
        {good.substr(0, good.size() - 1), itderrUnableToReadFile, u"Unable to read data"},
        {std::string(good).replace(SampleLengthOffset + 4, 1, "?"), ErrorInvalidData, u""},
        {make(badHeader), itderrWrongTextHeader, u"Unknown header format in text part"},
        {make(""), itderrWrongTextHeader, u"Unknown header format in text part"},
        {make(sample.substr(0, sample.size() - 60)), itderrTextParsing,
         u"Error while parsing text data", false},
    };
    const auto expect = [&](HRESULT status, const Row& row, const char16_t* className) {
        EXPECT_EQ(status, row.status);
        EXPECT_EQ(Report(), row.words.empty() ? u"nothing"
                                              : u"GeneralUtilities." + std::u16string(className) +
                                                    u".1: " + row.words);
    };
    const auto expectAll = [&](const Row& row) {
        SCOPED_TRACE(testing::PrintToString(row.words));
        SetErrorInfo(0, nullptr);
        Bstr source, target;
        expect(reader->OpenITDFile(path.Get()), row, u"ITDReader");
        expect(writer->OpenReferenceITD(path.Get()), row, u"ITDWriter");
        if (row.languagesToo) {
            expect(reader->GetLangsOnly(path.Get(), source.Out(), target.Out()), row, u"ITDReader");
        }
        std::int32_t count = -1;
        EXPECT_EQ(reader->get_SegmentCount(&count), S_OK);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(writer->get_SegmentCount(&count), S_OK);
        EXPECT_EQ(count, 0);
    };
    for (const Row& row : table) {
        WriteFile(path.Text(), row.file);
        expectAll(row);
    }
    WriteFile(path.Text(), good);
    Bstr source, target(u"held");
    EXPECT_EQ(reader->GetLangsOnly(path.Get(), source.Out(), target.InOut()), S_OK);
    EXPECT_EQ(source.Text() + target.Text(), u"en-USde-DE");
    NoManager manager;
    std::uint32_t cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(CLSID_ZipManager, &manager, CLSCTX_ALL, 1, &cookie), S_OK);
    expectAll({{}, itderrUnableToAccessZip, u"Unable to access the zip manager"});
    CoRevokeClassObject(cookie);
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
            VARIANT_BOOL more = VARIANT_TRUE;
            EXPECT_EQ(reader->Restart(), S_OK);
            while (reader->Next(&more) == S_OK && more != VARIANT_FALSE) {
            }
            EXPECT_EQ(more, VARIANT_FALSE);
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
    for (std::size_t at = 0; at < file.size(); ++at) {
        EXPECT_FALSE(check(file.substr(0, at))) << at;
        for (const int mask : {0xFF, 0x80, 1}) {
            std::string damaged = file;
            damaged[at] = static_cast<char>(damaged[at] ^ mask);
            check(damaged);
        }
    }
    for (std::size_t at = 0; at < part.size(); ++at) {
        const auto packed = [&](std::string_view damaged) {
            WriteItdFile(path.Text(), damaged);
            return ReadFile(path.Text());
        };
        const bool wholeRecords = at >= part.size() - 3;  // only the footer is cut
        EXPECT_EQ(check(packed(part.substr(0, at))), wholeRecords) << at;
        std::string damaged = part;
        damaged[at] = static_cast<char>(~damaged[at]);
        check(packed(damaged));
    }
}

TEST_F(ItdClassesTest, WriterPutsTextIntoACopy) {
    const std::string before = ReadFile(path.Text());
    std::int32_t count = 0;
    ASSERT_EQ(writer->OpenReferenceITD(path.Get()), S_OK);
    EXPECT_EQ(writer->get_SegmentCount(&count), S_OK);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(writer->put_TargetLanguage(Bstr(u"fr").Get()), S_OK);
    EXPECT_EQ(writer->Next(), S_OK);
    EXPECT_EQ(writer->put_CodeBeforeSegment(Bstr(u"<itbh><f2>32</f2><sid>2</sid></itbh>").Get()),
              S_OK);
    EXPECT_EQ(writer->put_SourceText(Bstr(u"source").Get()), S_OK);
    EXPECT_EQ(writer->put_TargetText(Bstr(u"target").Get()), S_OK);
    EXPECT_EQ(writer->Next(), S_OK);
    WriteFile(copy.Text(), before);
    EXPECT_EQ(writer->WriteToFile(copy.Get()), S_OK);
    EXPECT_EQ(ReadFile(path.Text()), before);

    ASSERT_EQ(reader->OpenITDFile(copy.Get()), S_OK);
    EXPECT_EQ(Text(&IITDReader::get_TargetLanguage), u"fr");
    VARIANT_BOOL more = 0;
    EXPECT_EQ(reader->Restart(), S_OK);
    EXPECT_TRUE(Segment().starts_with(u"one{1}two|eins{1}zwei|"));
    EXPECT_EQ(reader->Next(&more), S_OK);
    EXPECT_TRUE(Segment().starts_with(u"source|target|"));
    EXPECT_EQ(reader->get_SegmentCount(&count), S_OK);
    EXPECT_EQ(count, 4);
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
    EXPECT_EQ(writer->put_TargetLanguage(Bstr(std::u16string(256, u'x')).Get()), S_OK);
    EXPECT_EQ(writer->WriteToFile(copy.Get()), E_FAIL);
    EXPECT_EQ(Report(), name + u"Error: Language code too long!");
    EXPECT_EQ(ReadFile(copy.Text()), before);
}

}  // namespace
}  // namespace generalutilities
