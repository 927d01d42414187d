#include <generalutilities/error.h>
#include <generalutilities/itd/archive.h>

#include "platform/archive/deflate.h"
#include "platform/files/files.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <memory>

namespace generalutilities {

namespace {

template <class Number>
std::string_view BytesOf(const Number& number) {
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

HRESULT WriteFailure() {
    return files::StatusOfError(errno, ErrorWriteFault);
}

}  // namespace

std::size_t UnpackLimit(std::uint32_t compressedLength) {
    constexpr std::size_t Least = std::size_t{64} << 20;
    constexpr std::size_t Most = std::numeric_limits<std::int32_t>::max();
    return std::clamp(std::size_t{256} * compressedLength, Least, Most);
}

HRESULT UnpackTextPart(std::u16string_view path, std::uint32_t offset,
                       std::uint32_t compressedLength, const UnpackRoom& room, std::size_t& size) {
    const auto file = files::OpenForReading(path);
    if (file == nullptr) {
        return files::StatusOfError(errno, ErrorFileNotFound);
    }
    // The length is looked at before memory is taken for it.
    if (file->Size() < std::uint64_t{offset} + compressedLength) {
        return ErrorInvalidData;
    }
    const auto stream = std::make_unique_for_overwrite<char[]>(compressedLength);
    std::size_t read = 0;
    if (!file->ReadAt(offset, stream.get(), compressedLength, read)) {
        return ErrorReadFault;
    }
    switch (archive::Unpack({stream.get(), read}, UnpackLimit(compressedLength), room, size)) {
        case archive::Unpacked::Complete:
            return S_OK;
        case archive::Unpacked::TooLarge:
            return ErrorFileTooLarge;
        case archive::Unpacked::Damaged:
            break;
    }
    return ErrorInvalidData;
}

HRESULT PackTextPart(std::u16string_view path, std::uint32_t offset, std::string_view bytes,
                     std::uint32_t& compressedLength) {
    const auto packed = std::make_unique_for_overwrite<char[]>(archive::PackedBound(bytes.size()));
    const std::size_t length = archive::Pack(bytes, packed.get());
    if (length > std::numeric_limits<std::uint32_t>::max() - offset) {
        return ErrorFileTooLarge;
    }
    const auto file = files::OpenForWriting(path);
    if (file == nullptr) {
        return files::StatusOfError(errno, ErrorAccessDenied);
    }
    if (!file->WriteAt(offset, {packed.get(), length}) || !file->Close()) {
        return WriteFailure();
    }
    compressedLength = static_cast<std::uint32_t>(length);
    return S_OK;
}

std::uint32_t TextPartTrailer(std::string_view bytes) {
    return archive::Crc32(bytes);
}

HRESULT CloseTextPart(std::u16string_view path, std::uint32_t lengthFieldOffset,
                      std::uint32_t compressedLength, std::uint32_t trailerValue) {
    const auto file = files::OpenForWriting(path);
    if (file == nullptr) {
        return itderrUnableToOpenFile;
    }
    const std::uint64_t trailer = std::uint64_t{lengthFieldOffset} + 4 + compressedLength;
    return file->WriteAt(lengthFieldOffset, BytesOf(compressedLength)) &&
                   file->WriteAt(trailer, BytesOf(trailerValue)) && file->EndAt(trailer + 4) &&
                   file->Close()
               ? S_OK
               : WriteFailure();
}

}  // namespace generalutilities
