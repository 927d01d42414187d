#include "extview/ext_view_helper_component.h"

#include <generalutilities/automation/pointers.h>
#include <generalutilities/automation/project_database.h>
#include <generalutilities/extview/export_options.h>
#include <generalutilities/interfaces/class_ids.h>

#include "extview/html_export.h"
#include "extview/rtf/rtf_import.h"
#include "extview/rtf/twb_import.h"
#include "extview/rtf_table_export.h"
#include "extview/text_file_component.h"
#include "extview/twb_export.h"
#include "frame/bstr_text.h"
#include "frame/error_reporting.h"
#include "platform/files/files.h"

#include <string_view>

namespace generalutilities {

namespace {

/// The host's 0x00BBGGRR as 0x00RRGGBB.
std::int32_t RedFirst(std::int32_t color) {
    const auto c = static_cast<std::uint32_t>(color);
    return static_cast<std::int32_t>(((c >> 16) & 0xFF) + (c & 0xFF) * 0x10000 + (c & 0xFF00));
}

HRESULT Report(const char16_t* text, HRESULT status) {
    return ReportError(CLSID_ExtViewHelper, text, IID_IExtViewHelper, status);
}

/// The answer of an export or import: failures with their words, any success as 0.
HRESULT WithWords(HRESULT status) {
    switch (status) {
        case everrInvalidQuery:
            return Report(u"Invalid Query", status);
        case everrUnableToOpenFile:
            return Report(u"Unable to open Output File", status);
        case everrNotEnoughFieldsPresent:
            return Report(u"Unable to reimport since not enough fields are present", status);
        default:
            return Failed(status) ? Report(u"Unknown error", status) : S_OK;
    }
}

/// The database interface of a host's project; empty if it has none.
ComPtr<IProjectDatabase> DatabaseOf(IUnknown* project) {
    ComPtr<IProjectDatabase> database =
        ComPtr<IUnknown>::Share(project).As<IProjectDatabase>(IID_IProjectDatabase);
    return database && database->GetDatabase() != nullptr ? database : ComPtr<IProjectDatabase>();
}

}  // namespace

void* CExtViewHelper::FindInterface(REFIID iid) noexcept {
    IExtViewHelper* const standard = this;
    ISupportErrorInfo* const errors = this;
    IConnectionPointContainer* const events = this;
    return FindInTable(iid, {{IID_IUnknown, standard},
                             {IID_IExtViewHelper, standard},
                             {IID_IDispatch, standard},
                             {IID_ISupportErrorInfo, errors},
                             {IID_IConnectionPointContainer, events}});
}

CExtViewHelper::Format CExtViewHelper::FormatOf(std::int32_t exportOptions) {
    return (exportOptions & FormatHtml) != 0  ? Format::Html
           : (exportOptions & FormatTwb) != 0 ? Format::Twb
                                              : Format::Rtf;
}

std::unique_ptr<CExternalViewExport> CExtViewHelper::CreateExporter(Format format) {
    switch (format) {
        case Format::Html:
            return std::make_unique<CHTMLExport>(CreateComponentTextFileFactory);
        case Format::Twb:
            return std::make_unique<CExternalViewTWBExport>(CreateComponentTextFileFactory);
        default:
            return std::make_unique<CExternalViewRTFExport>(CreateComponentTextFileFactory);
    }
}

std::unique_ptr<CExternalViewImport> CExtViewHelper::CreateImporter(Format format) {
    if (format == Format::Twb) {
        return std::make_unique<CTWBImport>();
    }
    return std::make_unique<CRTFImport>();
}

HRESULT CExtViewHelper::ExportExternalView(
    IUnknown* Project, BSTR Destination, std::int32_t FileID, std::int32_t TargetLangID,
    std::int32_t ExportOptions, BSTR LexiconOrderByClause, std::int32_t ColorForGuaranteed,
    std::int32_t ColorForExact, std::int32_t ColorForFuzzy, std::int32_t ColorForAssembled,
    std::int32_t ColorForPropagated, std::int32_t ColorForAutoPropagated,
    std::int32_t ColorForLocked, std::int32_t ColorForPending,
    std::int32_t ColorForMachineTranslated) noexcept {
    importing = false;
    if (Project == nullptr || SysStringLen(Destination) == 0) {
        return E_INVALIDARG;
    }
    const ComPtr<IProjectDatabase> project = DatabaseOf(Project);
    if (!project) {
        return E_INVALIDARG;
    }
    const Format format = FormatOf(ExportOptions);
    return WithWords(Guarded([&] {
        auto running = std::move(exporter);
        if (running == nullptr || format != exportFormat) {
            running = CreateExporter(format);
            running->progress = this;
        }
        running->sourceFont = sourceFont;
        running->targetFont = targetFont;
        const ExportColors colors{
            .guaranteed = RedFirst(ColorForGuaranteed),
            .exact = RedFirst(ColorForExact),
            .fuzzy = RedFirst(ColorForFuzzy),
            .assembled = RedFirst(ColorForAssembled),
            .propagated = RedFirst(ColorForPropagated),
            .autoPropagated = RedFirst(ColorForAutoPropagated),
            .locked = RedFirst(ColorForLocked),
            .pending = RedFirst(ColorForPending),
            .machineTranslated = RedFirst(ColorForMachineTranslated),
        };
        const HRESULT status =
            running->RunExport(*project->GetDatabase(), View(Destination), FileID, TargetLangID,
                               ExportOptions, View(LexiconOrderByClause), colors);
        exporter = std::move(running);
        exportFormat = format;
        return status;
    }));
}

HRESULT CExtViewHelper::ImportExternalView(IUnknown* Project, BSTR SourceFile,
                                           std::int32_t TargetLangID, std::int32_t ExportOptions,
                                           VARIANT_BOOL /*ForceReimport*/) noexcept {
    importing = true;
    if (Project == nullptr || SysStringLen(SourceFile) == 0) {
        return E_INVALIDARG;
    }
    const ComPtr<IProjectDatabase> project = DatabaseOf(Project);
    if (!project) {
        return E_INVALIDARG;
    }
    const Format format = FormatOf(ExportOptions);
    if (format == Format::Html) {  // a page cannot be read back
        importer.reset();
        return E_INVALIDARG;
    }
    return WithWords(Guarded([&] {
        auto running = std::move(importer);
        if (running == nullptr || format != importFormat) {
            running = CreateImporter(format);
            running->SetProgress(this);
        }
        const HRESULT status =
            running->RunImport(*project->GetDatabase(), View(SourceFile), TargetLangID);
        importer = std::move(running);
        importFormat = format;
        return status;
    }));
}

namespace {

HRESULT PutFont(std::u16string& font, BSTR newVal) {
    return Guarded([&] {
        font = View(newVal);
        return S_OK;
    });
}

HRESULT GetFont(const std::u16string& font, BSTR* pVal) {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    *pVal = SysAllocStringLen(font.data(), static_cast<std::uint32_t>(font.size()));
    return *pVal == nullptr ? E_OUTOFMEMORY : S_OK;
}

}  // namespace

HRESULT CExtViewHelper::put_SourceFont(BSTR newVal) noexcept {
    return PutFont(sourceFont, newVal);
}
HRESULT CExtViewHelper::put_TargetFont(BSTR newVal) noexcept {
    return PutFont(targetFont, newVal);
}
HRESULT CExtViewHelper::get_SourceFont(BSTR* pVal) noexcept {
    return GetFont(sourceFont, pVal);
}
HRESULT CExtViewHelper::get_TargetFont(BSTR* pVal) noexcept {
    return GetFont(targetFont, pVal);
}

HRESULT CExtViewHelper::IsFileRTF(BSTR SourceFile, VARIANT_BOOL* pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    return Guarded([&] {
        const auto file = files::OpenForReading(View(SourceFile));
        if (file == nullptr) {
            return Report(u"Unable to open File", everrUnableToOpenFile);
        }
        constexpr std::string_view Signature = "{\\rtf1";
        char head[Signature.size()];
        std::size_t read = 0;
        const bool isRtf =
            file->ReadAt(0, head, sizeof head, read) && std::string_view(head, read) == Signature;
        *pVal = isRtf ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    });
}

HRESULT CExtViewHelper::IsFileTWB(BSTR SourceFile, VARIANT_BOOL* pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    return Guarded([&] {
        *pVal = CTWBImport().IsTWBFile(View(SourceFile)) ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    });
}

void CExtViewHelper::ReportProgress(std::int32_t percent, std::int32_t targetLangId) {
    Fire(importing ? DISPID_ImportProgress : DISPID_ExportProgress, percent, targetLangId);
}

}  // namespace generalutilities
