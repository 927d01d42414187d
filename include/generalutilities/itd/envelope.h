#pragma once

#include <generalutilities/status.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

/// The envelope of an ITD file: what stands around the compressed text part. docs/itd.md has its
/// form.
namespace generalutilities {

/// What is kept of the envelope. All before `lengthFieldOffset` is opaque.
struct ItdArchiveHeader {
    std::string versionText;             ///< at most 255 bytes
    std::uint32_t firstPartLength = 0;   ///< of the bytes that are skipped
    std::array<char, 9> partBlock = {};  ///< the opaque bytes before `compressedLength`
    std::uint32_t compressedLength = 0;
    std::uint32_t trailerValue = 0;       ///< the four bytes behind the compressed ones
    std::uint32_t lengthFieldOffset = 0;  ///< where `compressedLength` stands in the file

    /// Where the compressed bytes begin.
    std::uint32_t TextPartOffset() const { return lengthFieldOffset + 4; }
};

/// Reads the envelope of a file, which is closed again. 0, or an `ITDErrorCode`:
/// itderrUnableToOpenFile, itderrBadMagic, itderrBadVersion, itderrUnableToReadFile.
HRESULT ReadArchiveHeader(std::u16string_view path, ItdArchiveHeader& header);

/// The words of an `ITDErrorCode`, as components report them; "Unknown Error" for other values.
const char16_t* ItdErrorText(HRESULT status);

}  // namespace generalutilities
