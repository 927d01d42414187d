#pragma once

#include <generalutilities/automation/zip_manager.h>

#include "frame/object.h"
#include "frame/without_late_binding.h"

namespace generalutilities {

/// The built-in archive manager.
class CZipManager : public WithoutLateBinding<IZipManager> {
  public:
    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }
    HRESULT ReadTextPart(BSTR fileName, std::uint32_t offset, std::uint32_t compressedLength,
                         std::uint32_t* length, BSTR* bytes) noexcept override;
    HRESULT ComputeTrailerValue(BSTR bytes, std::uint32_t length,
                                std::uint32_t* value) noexcept override;
    HRESULT WriteTextPart(BSTR fileName, std::uint32_t offset, std::uint32_t length, BSTR bytes,
                          std::uint32_t* compressedLength) noexcept override;
};

}  // namespace generalutilities
