#pragma once

#include <generalutilities/interfaces/itd.h>
#include <generalutilities/itd/document_walk.h>

#include "frame/dispatch.h"
#include "frame/interface_descriptions.h"

#include <string>

namespace generalutilities {

/// The class behind `ITDReader`: a walk over the document that was opened last. A file without a
/// known header changes nothing. One whose segments cannot be read leaves its languages and no
/// document; the values of the current segment stay.
class CITDReader : public Dual<IITDReader, DescribeITDReader>, public RichErrors<IID_IITDReader> {
  public:
    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }

    HRESULT OpenITDFile(BSTR fileName) noexcept override;
    HRESULT CloseFile() noexcept override;
    HRESULT get_SourceLanguage(BSTR* pVal) noexcept override;
    HRESULT get_TargetLanguage(BSTR* pVal) noexcept override;
    HRESULT get_SourceText(BSTR* pVal) noexcept override;
    HRESULT get_TargetText(BSTR* pVal) noexcept override;
    HRESULT get_SourceCode(std::int32_t index, BSTR* pVal) noexcept override;
    HRESULT get_SourceCodeCount(std::int32_t* pVal) noexcept override;
    HRESULT get_TargetCode(std::int32_t index, BSTR* pVal) noexcept override;
    HRESULT get_TargetCodeCount(std::int32_t* pVal) noexcept override;
    HRESULT get_Untranslatable(BSTR* pVal) noexcept override;
    HRESULT get_More(VARIANT_BOOL* pVal) noexcept override;
    HRESULT Next(VARIANT_BOOL* pMore) noexcept override;
    HRESULT Restart() noexcept override;
    HRESULT get_EmbeddedCodeID(std::int32_t* pVal) noexcept override;
    HRESULT put_EmbeddedCodeID(std::int32_t newVal) noexcept override;
    HRESULT get_SegmentCount(std::int32_t* pVal) noexcept override;
    HRESULT GetLangsOnly(BSTR fileName, BSTR* pSource, BSTR* pTarget) noexcept override;
    HRESULT get_BinaryHeader(BSTR* pVal) noexcept override;
    HRESULT get_BinaryFooter(BSTR* pVal) noexcept override;
    HRESULT get_ExtraInfo(std::int32_t index, BSTR* pVal) noexcept override;
    HRESULT get_ExtraInfoCount(std::int32_t* pVal) noexcept override;
    HRESULT ReverseLanguages() noexcept override;
    HRESULT get_Comment(BSTR* pVal) noexcept override;
    HRESULT get_Status(std::int32_t* pVal) noexcept override;
    HRESULT get_Score(double* pVal) noexcept override;

  private:
    ItdWalk walk;
    std::u16string sourceLanguage;
    std::u16string targetLanguage;
};

}  // namespace generalutilities
