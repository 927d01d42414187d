#pragma once

#include <generalutilities/automation/unknown.h>

namespace generalutilities {

/// The external view: a project's rows go out to a reviewer's file, and a reviewed file comes back
/// into the working table `Reimporting`. Created as `GeneralUtilities.ExtViewHelper.1`; its events
/// go to sinks connected to the connection point `_IExtViewHelperEvents`.
///
/// `Project` answers to `IProjectDatabase`. Options are the bits of `extview/export_options.h`, and
/// colours are 0x00BBGGRR. A null project, an empty path or a project without a database gives
/// E_INVALIDARG; a failure with words leaves an error object and one of the `EVErrorCode` values.
struct IExtViewHelper : IDispatch {
    virtual HRESULT ExportExternalView(IUnknown* Project, BSTR Destination, std::int32_t FileID,
                                       std::int32_t TargetLangID, std::int32_t ExportOptions,
                                       BSTR LexiconOrderByClause, std::int32_t ColorForGuaranteed,
                                       std::int32_t ColorForExact, std::int32_t ColorForFuzzy,
                                       std::int32_t ColorForAssembled,
                                       std::int32_t ColorForPropagated,
                                       std::int32_t ColorForAutoPropagated,
                                       std::int32_t ColorForLocked, std::int32_t ColorForPending,
                                       std::int32_t ColorForMachineTranslated) noexcept = 0;
    virtual HRESULT put_SourceFont(BSTR newVal) noexcept = 0;
    virtual HRESULT get_SourceFont(BSTR* pVal) noexcept = 0;
    virtual HRESULT put_TargetFont(BSTR newVal) noexcept = 0;
    virtual HRESULT get_TargetFont(BSTR* pVal) noexcept = 0;
    /// Reads a reviewed file into `Reimporting`; `Pairs` stays as it is. `ForceReimport` has no
    /// effect.
    virtual HRESULT ImportExternalView(IUnknown* Project, BSTR SourceFile,
                                       std::int32_t TargetLangID, std::int32_t ExportOptions,
                                       VARIANT_BOOL ForceReimport) noexcept = 0;
    /// Whether the file starts with "{\rtf1".
    virtual HRESULT IsFileRTF(BSTR SourceFile, VARIANT_BOOL* pVal) noexcept = 0;
    /// Whether the file is a bilingual document as the format TWB has it.
    virtual HRESULT IsFileTWB(BSTR SourceFile, VARIANT_BOOL* pVal) noexcept = 0;
};
inline constexpr IID IID_IExtViewHelper = MakeGuid("{F5260AE7-D56B-4CE1-A77C-44603F755F05}");

/// The event interface, pure dispatch: a sink answers `Invoke` for these identifiers, each with the
/// arguments `Percent` and `TargetLangID`, both VT_I4.
inline constexpr IID DIID__IExtViewHelperEvents =
    MakeGuid("{DD7F334D-20F2-442B-9F3D-A451198955AD}");
inline constexpr DISPID DISPID_ExportProgress = 1;
inline constexpr DISPID DISPID_ImportProgress = 2;

}  // namespace generalutilities
