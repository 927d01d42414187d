#include "itd/itd_reader_component.h"

#include <generalutilities/interfaces/class_ids.h>

#include "frame/bstr_text.h"
#include "itd/open_document.h"

#include <utility>

namespace generalutilities {
namespace {

constexpr ItdReporter Reporter{CLSID_ITDReader, IID_IITDReader};

std::u16string_view UpToZero(std::u16string_view text) {
    return text.substr(0, text.find(u'\0'));
}

/// Puts a text in the place of the string that the caller has there.
HRESULT Replace(std::u16string_view text, BSTR* out) {
    if (out == nullptr) {
        return E_POINTER;
    }
    BSTR made = nullptr;
    const HRESULT status = Give(text, &made);
    if (status == S_OK) {
        SysFreeString(std::exchange(*out, made));
    }
    return status;
}

HRESULT GiveCode(const ItdColumn& column, std::int32_t index, BSTR* out) {
    if (out == nullptr || index < 0 || static_cast<std::size_t>(index) >= column.codes.size()) {
        return E_INVALIDARG;
    }
    return Replace(column.codes[static_cast<std::size_t>(index)], out);
}

template <class Value, class Given>
HRESULT GiveValue(Given given, Value* out, HRESULT nullStatus = E_POINTER) {
    if (out == nullptr) {
        return nullStatus;
    }
    *out = static_cast<Value>(given);
    return S_OK;
}

HRESULT GiveBool(bool given, VARIANT_BOOL* out) {
    return GiveValue(given ? VARIANT_TRUE : VARIANT_FALSE, out);
}

}  // namespace

void* CITDReader::FindInterface(REFIID iid) noexcept {
    IITDReader* const standard = this;
    ISupportErrorInfo* const errors = this;
    return FindInTable(iid, {{IID_IUnknown, standard},
                             {IID_IITDReader, standard},
                             {IID_IDispatch, standard},
                             {IID_ISupportErrorInfo, errors}});
}

HRESULT CITDReader::OpenITDFile(BSTR fileName) noexcept {
    return Guarded([&] {
        LoadedTextPart part;
        ItdTextHeader header;
        ItdDocument document;
        HRESULT status = OpenTextHeader(TerminatedView(fileName), Reporter, part, header);
        if (Failed(status)) {
            return status;
        }
        sourceLanguage.swap(header.sourceLanguage);
        targetLanguage.swap(header.targetLanguage);
        walk.Close();  // before the new document takes as much memory
        status = OpenSegments(part, Reporter, header, document);
        if (Succeeded(status)) {
            PutSourceFirst(document, targetLanguage);
            walk.Open(std::move(document));
        }
        return status;
    });
}

HRESULT CITDReader::CloseFile() noexcept {
    return Guarded([&] {
        walk.Close();
        return S_OK;
    });
}

HRESULT CITDReader::get_SourceLanguage(BSTR* pVal) noexcept {
    return Replace(UpToZero(sourceLanguage), pVal);
}
HRESULT CITDReader::get_TargetLanguage(BSTR* pVal) noexcept {
    return Replace(UpToZero(targetLanguage), pVal);
}
HRESULT CITDReader::get_SourceText(BSTR* pVal) noexcept {
    return Replace(UpToZero(walk.Current().source.text), pVal);
}
HRESULT CITDReader::get_TargetText(BSTR* pVal) noexcept {
    return Replace(UpToZero(walk.Current().target.text), pVal);
}

HRESULT CITDReader::get_SourceCode(std::int32_t index, BSTR* pVal) noexcept {
    return GiveCode(walk.Current().source, index, pVal);
}
HRESULT CITDReader::get_SourceCodeCount(std::int32_t* pVal) noexcept {
    return GiveValue(walk.Current().source.codes.size(), pVal, E_INVALIDARG);
}
HRESULT CITDReader::get_TargetCode(std::int32_t index, BSTR* pVal) noexcept {
    return GiveCode(walk.Current().target, index, pVal);
}
HRESULT CITDReader::get_TargetCodeCount(std::int32_t* pVal) noexcept {
    return GiveValue(walk.Current().target.codes.size(), pVal, E_INVALIDARG);
}

HRESULT CITDReader::get_Untranslatable(BSTR*) noexcept {
    return S_OK;  // there is nothing that it could give
}

HRESULT CITDReader::get_More(VARIANT_BOOL* pVal) noexcept {
    return GiveBool(walk.HasMore(), pVal);
}

HRESULT CITDReader::Next(VARIANT_BOOL* pMore) noexcept {
    if (pMore == nullptr) {
        return E_POINTER;
    }
    return Guarded([&] { return GiveBool(walk.Next(), pMore); });
}

HRESULT CITDReader::Restart() noexcept {
    return Guarded([&] {
        walk.Restart();
        return S_OK;
    });
}

HRESULT CITDReader::get_EmbeddedCodeID(std::int32_t* pVal) noexcept {
    return GiveValue(walk.codeNumber, pVal);
}
HRESULT CITDReader::put_EmbeddedCodeID(std::int32_t newVal) noexcept {
    walk.codeNumber = static_cast<std::uint32_t>(newVal);
    return S_OK;
}

HRESULT CITDReader::get_SegmentCount(std::int32_t* pVal) noexcept {
    return GiveValue(walk.SegmentCount(), pVal);
}

HRESULT CITDReader::GetLangsOnly(BSTR fileName, BSTR* pSource, BSTR* pTarget) noexcept {
    if (pSource == nullptr || pTarget == nullptr) {
        return E_INVALIDARG;
    }
    return Guarded([&] {
        LoadedTextPart part;
        ItdTextHeader header;
        const HRESULT status = OpenTextHeader(TerminatedView(fileName), Reporter, part, header);
        if (Failed(status)) {
            return status;
        }
        Bstr source(header.sourceLanguage);
        Bstr target(header.targetLanguage);
        if (source.Get() == nullptr || target.Get() == nullptr) {
            return E_OUTOFMEMORY;
        }
        SysFreeString(std::exchange(*pSource, source.Release()));
        SysFreeString(std::exchange(*pTarget, target.Release()));
        return S_OK;
    });
}

HRESULT CITDReader::get_BinaryHeader(BSTR* pVal) noexcept {
    return pVal == nullptr ? E_POINTER
                           : Guarded([&] { return Give(BinaryHeaderOf(walk.Document()), pVal); });
}
HRESULT CITDReader::get_BinaryFooter(BSTR* pVal) noexcept {
    return pVal == nullptr ? E_POINTER
                           : Guarded([&] { return Give(BinaryFooterOf(walk.Document()), pVal); });
}

HRESULT CITDReader::get_ExtraInfo(std::int32_t index, BSTR* pVal) noexcept {
    const std::vector<std::u16string>& strings = walk.Document().commentStrings;
    if (pVal == nullptr) {
        return E_POINTER;
    }
    if (index < 0 || static_cast<std::size_t>(index) >= strings.size()) {
        return E_INVALIDARG;
    }
    return Give(strings[static_cast<std::size_t>(index)], pVal);
}
HRESULT CITDReader::get_ExtraInfoCount(std::int32_t* pVal) noexcept {
    return GiveValue(walk.Document().commentStrings.size(), pVal);
}

HRESULT CITDReader::ReverseLanguages() noexcept {
    walk.ReverseLanguages();
    return S_OK;
}

HRESULT CITDReader::get_Comment(BSTR* pVal) noexcept {
    return pVal == nullptr ? E_POINTER : Give(walk.Current().comment, pVal);
}
HRESULT CITDReader::get_Status(std::int32_t* pVal) noexcept {
    return GiveValue(walk.Current().status, pVal);
}
HRESULT CITDReader::get_Score(double* pVal) noexcept {
    return GiveValue(walk.Current().score, pVal);
}

}  // namespace generalutilities
