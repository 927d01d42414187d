#pragma once

#include <generalutilities/automation/unknown.h>

/// The component through which the compressed text part of an ITD file is read and replaced. A host
/// that compresses in another way registers a class factory of its own for `CLSID_ZipManager`.
namespace generalutilities {

/// A BSTR is a plain buffer of bytes here, whose length travels beside it; where that is odd the
/// last byte of the buffer is no part of the data. Files are opened by name for the one call.
struct IZipManager : IDispatch {
    /// Unpacks the compressed bytes that begin at an offset of the file. The caller frees `bytes`.
    virtual HRESULT ReadTextPart(BSTR fileName, std::uint32_t offset,
                                 std::uint32_t compressedLength, std::uint32_t* length,
                                 BSTR* bytes) noexcept = 0;
    /// The value that is stored behind the compressed form of the bytes.
    virtual HRESULT ComputeTrailerValue(BSTR bytes, std::uint32_t length,
                                        std::uint32_t* value) noexcept = 0;
    /// Writes the compressed form of the bytes into an existing file from an offset on, and tells
    /// how many bytes that took.
    virtual HRESULT WriteTextPart(BSTR fileName, std::uint32_t offset, std::uint32_t length,
                                  BSTR bytes, std::uint32_t* compressedLength) noexcept = 0;
};
inline constexpr IID IID_IZipManager = MakeGuid("{5B68A83C-A5E1-40EB-BD36-F60DDE280ECE}");
inline constexpr CLSID CLSID_ZipManager = MakeGuid("{BC74D42D-88F6-4884-AA37-1F94F04413F9}");

}  // namespace generalutilities
