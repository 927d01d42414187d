#include "itd/itd_writer_component.h"

#include <generalutilities/interfaces/class_ids.h>

#include "frame/bstr_text.h"
#include "itd/open_document.h"

#include <utility>

namespace generalutilities {
namespace {

constexpr ItdReporter Reporter{CLSID_ITDWriter, IID_IITDWriter};

HRESULT GiveText(std::u16string_view text, BSTR* out) {
    return out == nullptr ? E_POINTER : Give(text, out);
}

/// A setter's body.
template <class Set>
HRESULT Done(Set set) {
    return Guarded([&] {
        set();
        return S_OK;
    });
}

}  // namespace

void* CITDWriter::FindInterface(REFIID iid) noexcept {
    IITDWriter* const standard = this;
    ISupportErrorInfo* const errors = this;
    return FindInTable(iid, {{IID_IUnknown, standard},
                             {IID_IITDWriter, standard},
                             {IID_IDispatch, standard},
                             {IID_ISupportErrorInfo, errors}});
}

HRESULT CITDWriter::OpenReferenceITD(BSTR fileName) noexcept {
    return Guarded([&] {
        LoadedTextPart part;
        ItdTextHeader header;
        ItdDocument document;
        HRESULT status = OpenTextHeader(TerminatedView(fileName), Reporter, part, header);
        if (Failed(status)) {
            return status;
        }
        Close();
        status = OpenSegments(part, Reporter, header, document);
        if (Failed(status)) {
            return status;
        }
        if (!reference.Remember(TerminatedView(fileName), part.archive)) {
            return Reporter.Report(itderrUnableToReadFile);
        }
        rewrite.Open(std::move(document), header);
        return S_OK;
    });
}

HRESULT CITDWriter::CloseFile() noexcept {
    return Done([&] { Close(); });
}

/// Without a document no file is a copy of its reference, so that nothing is written into one.
void CITDWriter::Close() {
    rewrite.Close();
    reference = {};
}

HRESULT CITDWriter::WriteToFile(BSTR fileName) noexcept {
    return Guarded([&] {
        std::string bytes;
        const LanguageChange change = rewrite.Serialize(bytes);
        if (change == LanguageChange::UnknownHeader) {
            return Reporter.Report(itderrWrongTextHeader);
        }
        if (change != LanguageChange::Done) {
            return Reporter.Report(E_FAIL, LanguageChangeText(change));
        }
        return ReplaceTextPart(TerminatedView(fileName), reference, bytes, Reporter);
    });
}

HRESULT CITDWriter::get_SourceLanguage(BSTR* pVal) noexcept {
    return GiveText(rewrite.SourceLanguage(), pVal);
}
HRESULT CITDWriter::get_TargetLanguage(BSTR* pVal) noexcept {
    return GiveText(rewrite.TargetLanguage(), pVal);
}
HRESULT CITDWriter::put_TargetLanguage(BSTR newVal) noexcept {
    return Done([&] { rewrite.SetTargetLanguage(TerminatedView(newVal)); });
}

HRESULT CITDWriter::put_SourceText(BSTR newVal) noexcept {
    return Done([&] { rewrite.SetSourceText(TerminatedView(newVal)); });
}
HRESULT CITDWriter::put_TargetText(BSTR newVal) noexcept {
    return Done([&] { rewrite.SetTargetText(TerminatedView(newVal)); });
}
HRESULT CITDWriter::AddSourceCode(std::int32_t ID, BSTR newVal) noexcept {
    return Done([&] { rewrite.AddSourceCode(ID, TerminatedView(newVal)); });
}
HRESULT CITDWriter::AddTargetCode(std::int32_t ID, BSTR newVal) noexcept {
    return Done([&] { rewrite.AddTargetCode(ID, TerminatedView(newVal)); });
}
HRESULT CITDWriter::put_CodeBeforeSegment(BSTR newVal) noexcept {
    return Done([&] { rewrite.SetCodeBefore(TerminatedView(newVal)); });
}
HRESULT CITDWriter::put_CodeAfterSegment(BSTR newVal) noexcept {
    return Done([&] { rewrite.SetCodeAfter(TerminatedView(newVal)); });
}

HRESULT CITDWriter::Next() noexcept {
    return Done([&] { rewrite.Next(); });
}

HRESULT CITDWriter::get_SegmentCount(std::int32_t* pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    *pVal = static_cast<std::int32_t>(rewrite.SegmentCount());
    return S_OK;
}

HRESULT CITDWriter::ReverseLanguages() noexcept {
    rewrite.ReverseLanguages();
    return S_OK;
}

}  // namespace generalutilities
