#include "itd/zip_manager_component.h"

#include <generalutilities/automation/pointers.h>
#include <generalutilities/itd/archive.h>

namespace generalutilities {

namespace {

/// A file's name may be any wide string.
std::u16string_view Name(const char16_t* fileName) {
    return fileName == nullptr ? std::u16string_view() : fileName;
}

/// The first bytes of a buffer; false where it does not hold so many.
bool BytesIn(BSTR buffer, std::uint32_t length, std::string_view& bytes) {
    bytes = {reinterpret_cast<const char*>(buffer), length};
    return length <= SysStringByteLen(buffer);
}

}  // namespace

void* CZipManager::FindInterface(REFIID iid) noexcept {
    IZipManager* const self = this;
    return FindInTable(iid, {{IID_IUnknown, self}, {IID_IDispatch, self}, {IID_IZipManager, self}});
}

HRESULT CZipManager::ReadTextPart(BSTR fileName, std::uint32_t offset,
                                  std::uint32_t compressedLength, std::uint32_t* length,
                                  BSTR* bytes) noexcept {
    if (length == nullptr || bytes == nullptr) {
        return E_POINTER;
    }
    *length = 0;
    *bytes = nullptr;
    return Guarded([&]() -> HRESULT {
        Bstr buffer;
        std::size_t size = 0;
        const auto room = [&buffer](std::size_t most) {
            *buffer.Out() = SysAllocStringByteLen(nullptr, static_cast<std::uint32_t>(most));
            return reinterpret_cast<char*>(buffer.Get());
        };
        const HRESULT status = UnpackTextPart(Name(fileName), offset, compressedLength, room, size);
        if (Failed(status)) {
            return status;
        }
        // What was not needed goes back.
        const auto units = static_cast<std::uint32_t>((size + 1) / sizeof(char16_t));
        if (SysReAllocStringLen(buffer.InOut(), nullptr, units) == 0) {
            return E_OUTOFMEMORY;
        }
        *length = static_cast<std::uint32_t>(size);
        *bytes = buffer.Release();
        return S_OK;
    });
}

HRESULT CZipManager::ComputeTrailerValue(BSTR bytes, std::uint32_t length,
                                         std::uint32_t* value) noexcept {
    std::string_view content;
    if (value == nullptr) {
        return E_POINTER;
    }
    if (!BytesIn(bytes, length, content)) {
        return E_INVALIDARG;
    }
    *value = TextPartTrailer(content);
    return S_OK;
}

HRESULT CZipManager::WriteTextPart(BSTR fileName, std::uint32_t offset, std::uint32_t length,
                                   BSTR bytes, std::uint32_t* compressedLength) noexcept {
    std::string_view content;
    if (compressedLength == nullptr) {
        return E_POINTER;
    }
    if (!BytesIn(bytes, length, content)) {
        return E_INVALIDARG;
    }
    return Guarded(
        [&] { return PackTextPart(Name(fileName), offset, content, *compressedLength); });
}

}  // namespace generalutilities
