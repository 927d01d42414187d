#include <generalutilities/itd/envelope.h>

#include "platform/files/files.h"

#include <cstring>

namespace generalutilities {

namespace {

constexpr std::string_view Magic = "SDLXARCH";
constexpr std::int32_t LongestVersion = 255;

/// Goes through a file from its start. A position beyond 32 bits cannot be read.
class FileWalk {
  public:
    explicit FileWalk(files::FileReader& reader) : file(reader) {}

    std::uint64_t Position() const { return position; }
    bool Read(void* buffer, std::size_t length) {
        std::size_t read = 0;
        const std::uint64_t start = position;
        position += length;
        return position <= UINT32_MAX && file.ReadAt(start, buffer, length, read) && read == length;
    }
    /// Over bytes that may not be there: only reading finds out.
    void Skip(std::uint32_t length) { position += length; }

  private:
    files::FileReader& file;
    std::uint64_t position = 0;
};

}  // namespace

HRESULT ReadArchiveHeader(std::u16string_view path, ItdArchiveHeader& header) {
    const auto file = files::OpenForReading(path);
    if (file == nullptr) {
        return itderrUnableToOpenFile;
    }
    FileWalk walk(*file);
    char magic[Magic.size()];
    if (!walk.Read(magic, sizeof magic) || Magic != std::string_view(magic, sizeof magic)) {
        return itderrBadMagic;
    }
    std::int32_t versionLength = 0;
    if (!walk.Read(&versionLength, sizeof versionLength) || versionLength < 0 ||
        versionLength > LongestVersion) {
        return itderrBadVersion;
    }
    header.versionText.resize(static_cast<std::size_t>(versionLength));
    if (!walk.Read(header.versionText.data(), header.versionText.size()) ||
        !walk.Read(&header.firstPartLength, sizeof header.firstPartLength)) {
        return itderrUnableToReadFile;
    }
    walk.Skip(header.firstPartLength);
    if (!walk.Read(header.partBlock.data(), header.partBlock.size())) {
        return itderrUnableToReadFile;
    }
    header.lengthFieldOffset = static_cast<std::uint32_t>(walk.Position());
    if (!walk.Read(&header.compressedLength, sizeof header.compressedLength)) {
        return itderrUnableToReadFile;
    }
    walk.Skip(header.compressedLength);
    return walk.Read(&header.trailerValue, sizeof header.trailerValue) ? S_OK
                                                                       : itderrUnableToReadFile;
}

const char16_t* ItdErrorText(HRESULT status) {
    switch (status) {
        case itderrUnableToOpenFile:
            return u"Unable to open File";
        case itderrBadMagic:
            return u"Bad Magic Number";
        case itderrBadVersion:
            return u"Unrecognised Version";
        case itderrUnableToReadFile:
            return u"Unable to read data";
        case itderrUnableToAllocMem:
            return u"Unable to allocate memory";
        case itderrUnableToAccessZip:
            return u"Unable to access the zip manager";
        case itderrWrongTextHeader:
            return u"Unknown header format in text part";
        case itderrTextParsing:
            return u"Error while parsing text data";
        default:
            return u"Unknown Error";
    }
}

}  // namespace generalutilities
