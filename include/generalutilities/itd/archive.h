#pragma once

#include <generalutilities/itd/envelope.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

/// The compressed text part inside an ITD file: a stream in the zlib format.
namespace generalutilities {

/// The most bytes that compressed ones are unpacked to: 256 for each, though always up to 64 MiB
/// and never 2 GiB. A larger text part is refused, so that a small file cannot take all memory.
std::size_t UnpackLimit(std::uint32_t compressedLength);

/// Gives memory for so many bytes, in the place of what it gave before; null when there is none.
using UnpackRoom = std::function<char*(std::size_t)>;

/// Unpacks the text part that stands at an offset of a file. On success its bytes are in the memory
/// given last, and `size` is their number. A damaged stream gives ErrorInvalidData, a text part
/// beyond the limit ErrorFileTooLarge, a file that cannot be opened or read its own failure.
HRESULT UnpackTextPart(std::u16string_view path, std::uint32_t offset,
                       std::uint32_t compressedLength, const UnpackRoom& room, std::size_t& size);

/// Writes a text part in its compressed form at an offset of an existing file, over what is there,
/// and tells how many bytes that took. What the file holds behind them stays.
HRESULT PackTextPart(std::u16string_view path, std::uint32_t offset, std::string_view bytes,
                     std::uint32_t& compressedLength);

/// The value that stands behind the compressed bytes: the CRC-32 of the unpacked ones.
std::uint32_t TextPartTrailer(std::string_view bytes);

/// What is left to do in the file when `PackTextPart` is done: the length in front of the
/// compressed bytes, the trailer value behind them, and the end of the file there. A file that
/// cannot be opened gives itderrUnableToOpenFile.
HRESULT CloseTextPart(std::u16string_view path, std::uint32_t lengthFieldOffset,
                      std::uint32_t compressedLength, std::uint32_t trailerValue);

}  // namespace generalutilities
