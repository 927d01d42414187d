#pragma once

#include <generalutilities/interfaces/itd.h>
#include <generalutilities/itd/document_rewrite.h>
#include <generalutilities/itd/envelope.h>
#include <generalutilities/itd/reference_copy.h>

#include "frame/dispatch.h"
#include "frame/interface_descriptions.h"

namespace generalutilities {

/// The class behind `ITDWriter`: a rewrite of the reference that was opened last, which goes into a
/// copy of it. The reference itself is never opened for writing. A file without a known header
/// leaves the reference before it open; one whose segments cannot be read leaves none.
class CITDWriter : public Dual<IITDWriter, DescribeITDWriter>, public RichErrors<IID_IITDWriter> {
  public:
    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }

    HRESULT OpenReferenceITD(BSTR fileName) noexcept override;
    HRESULT CloseFile() noexcept override;
    HRESULT WriteToFile(BSTR fileName) noexcept override;
    HRESULT get_SourceLanguage(BSTR* pVal) noexcept override;
    HRESULT get_TargetLanguage(BSTR* pVal) noexcept override;
    HRESULT put_TargetLanguage(BSTR newVal) noexcept override;
    HRESULT put_SourceText(BSTR newVal) noexcept override;
    HRESULT put_TargetText(BSTR newVal) noexcept override;
    HRESULT AddSourceCode(std::int32_t ID, BSTR newVal) noexcept override;
    HRESULT AddTargetCode(std::int32_t ID, BSTR newVal) noexcept override;
    HRESULT put_CodeBeforeSegment(BSTR newVal) noexcept override;
    HRESULT put_CodeAfterSegment(BSTR newVal) noexcept override;
    HRESULT Next() noexcept override;
    HRESULT get_SegmentCount(std::int32_t* pVal) noexcept override;
    HRESULT ReverseLanguages() noexcept override;

  private:
    void Close();

    ItdRewrite rewrite;
    ReferenceCopy reference;
};

}  // namespace generalutilities
