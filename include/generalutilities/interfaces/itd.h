#pragma once

#include <generalutilities/automation/unknown.h>

namespace generalutilities {

/// Walks an ITD document segment by segment.
struct IITDReader : IDispatch {
    virtual HRESULT OpenITDFile(BSTR fileName) noexcept = 0;
    virtual HRESULT CloseFile() noexcept = 0;
    virtual HRESULT get_SourceLanguage(BSTR* pVal) noexcept = 0;
    virtual HRESULT get_TargetLanguage(BSTR* pVal) noexcept = 0;
    virtual HRESULT get_SourceText(BSTR* pVal) noexcept = 0;
    virtual HRESULT get_TargetText(BSTR* pVal) noexcept = 0;
    virtual HRESULT get_SourceCode(std::int32_t index, BSTR* pVal) noexcept = 0;
    virtual HRESULT get_SourceCodeCount(std::int32_t* pVal) noexcept = 0;
    virtual HRESULT get_TargetCode(std::int32_t index, BSTR* pVal) noexcept = 0;
    virtual HRESULT get_TargetCodeCount(std::int32_t* pVal) noexcept = 0;
    virtual HRESULT get_Untranslatable(BSTR* pVal) noexcept = 0;
    virtual HRESULT get_More(VARIANT_BOOL* pVal) noexcept = 0;
    virtual HRESULT Next(VARIANT_BOOL* pMore) noexcept = 0;
    virtual HRESULT Restart() noexcept = 0;
    virtual HRESULT get_EmbeddedCodeID(std::int32_t* pVal) noexcept = 0;
    virtual HRESULT put_EmbeddedCodeID(std::int32_t newVal) noexcept = 0;
    virtual HRESULT get_SegmentCount(std::int32_t* pVal) noexcept = 0;
    virtual HRESULT GetLangsOnly(BSTR fileName, BSTR* pSource, BSTR* pTarget) noexcept = 0;
    virtual HRESULT get_BinaryHeader(BSTR* pVal) noexcept = 0;
    virtual HRESULT get_BinaryFooter(BSTR* pVal) noexcept = 0;
    virtual HRESULT get_ExtraInfo(std::int32_t index, BSTR* pVal) noexcept = 0;
    virtual HRESULT get_ExtraInfoCount(std::int32_t* pVal) noexcept = 0;
    virtual HRESULT ReverseLanguages() noexcept = 0;
    virtual HRESULT get_Comment(BSTR* pVal) noexcept = 0;
    virtual HRESULT get_Status(std::int32_t* pVal) noexcept = 0;
    virtual HRESULT get_Score(double* pVal) noexcept = 0;
};
inline constexpr IID IID_IITDReader = MakeGuid("{A988DDF9-6B63-4646-942B-66B48CDFD473}");

/// Writes translated segments into a copy of a reference ITD document.
struct IITDWriter : IDispatch {
    virtual HRESULT OpenReferenceITD(BSTR fileName) noexcept = 0;
    virtual HRESULT CloseFile() noexcept = 0;
    virtual HRESULT WriteToFile(BSTR fileName) noexcept = 0;
    virtual HRESULT get_SourceLanguage(BSTR* pVal) noexcept = 0;
    virtual HRESULT get_TargetLanguage(BSTR* pVal) noexcept = 0;
    virtual HRESULT put_TargetLanguage(BSTR newVal) noexcept = 0;
    virtual HRESULT put_SourceText(BSTR newVal) noexcept = 0;
    virtual HRESULT put_TargetText(BSTR newVal) noexcept = 0;
    virtual HRESULT AddSourceCode(std::int32_t ID, BSTR newVal) noexcept = 0;
    virtual HRESULT AddTargetCode(std::int32_t ID, BSTR newVal) noexcept = 0;
    virtual HRESULT put_CodeBeforeSegment(BSTR newVal) noexcept = 0;
    virtual HRESULT put_CodeAfterSegment(BSTR newVal) noexcept = 0;
    virtual HRESULT Next() noexcept = 0;
    virtual HRESULT get_SegmentCount(std::int32_t* pVal) noexcept = 0;
    virtual HRESULT ReverseLanguages() noexcept = 0;
};
inline constexpr IID IID_IITDWriter = MakeGuid("{7A3CA846-1BC4-4F8A-A141-B5C7186AEAB9}");

}  // namespace generalutilities
