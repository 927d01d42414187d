#pragma once

#include <generalutilities/interfaces/ext_view_helper.h>

#include "extview/external_view_export.h"
#include "extview/external_view_import.h"
#include "extview/progress.h"
#include "frame/connection_point.h"
#include "frame/dispatch.h"
#include "frame/interface_descriptions.h"

#include <memory>
#include <string>

namespace generalutilities {

/// The class behind `ExtViewHelper`: picks the format, keeps its object from call to call, turns
/// results into a status with words, and progress into events.
class CExtViewHelper : public Dual<IExtViewHelper, DescribeExtViewHelper>,
                       public RichErrors<IID_IExtViewHelper>,
                       public ConnectionPointContainer,
                       public IExtViewProgress {
  public:
    CExtViewHelper() : ConnectionPointContainer(DIID__IExtViewHelperEvents) {}

    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }

    HRESULT ExportExternalView(IUnknown* Project, BSTR Destination, std::int32_t FileID,
                               std::int32_t TargetLangID, std::int32_t ExportOptions,
                               BSTR LexiconOrderByClause, std::int32_t ColorForGuaranteed,
                               std::int32_t ColorForExact, std::int32_t ColorForFuzzy,
                               std::int32_t ColorForAssembled, std::int32_t ColorForPropagated,
                               std::int32_t ColorForAutoPropagated, std::int32_t ColorForLocked,
                               std::int32_t ColorForPending,
                               std::int32_t ColorForMachineTranslated) noexcept override;
    HRESULT put_SourceFont(BSTR newVal) noexcept override;
    HRESULT get_SourceFont(BSTR* pVal) noexcept override;
    HRESULT put_TargetFont(BSTR newVal) noexcept override;
    HRESULT get_TargetFont(BSTR* pVal) noexcept override;
    HRESULT ImportExternalView(IUnknown* Project, BSTR SourceFile, std::int32_t TargetLangID,
                               std::int32_t ExportOptions,
                               VARIANT_BOOL ForceReimport) noexcept override;
    HRESULT IsFileRTF(BSTR SourceFile, VARIANT_BOOL* pVal) noexcept override;
    HRESULT IsFileTWB(BSTR SourceFile, VARIANT_BOOL* pVal) noexcept override;

    void ReportProgress(std::int32_t percent, std::int32_t targetLangId) override;

  private:
    enum class Format { Rtf = 1, Html, Twb };
    static Format FormatOf(std::int32_t exportOptions);
    static std::unique_ptr<CExternalViewExport> CreateExporter(Format format);
    static std::unique_ptr<CExternalViewImport> CreateImporter(Format format);

    std::u16string sourceFont = u"Tahoma";
    std::u16string targetFont = u"Tahoma";
    /// Kept while the format stays the same. During a call it is out of the reach of sinks, which
    /// may call this object from inside an event.
    std::unique_ptr<CExternalViewExport> exporter;
    std::unique_ptr<CExternalViewImport> importer;  ///< likewise
    Format exportFormat = {};                       ///< of `exporter`, where there is one
    Format importFormat = {};
    bool importing = false;  ///< which event progress becomes
};

}  // namespace generalutilities
