#include <generalutilities/error.h>
#include <generalutilities/itd/archive.h>
#include <generalutilities/itd/document_walk.h>
#include <generalutilities/itd/itd_file.h>

#include "platform/files/files.h"
#include "platform/files/utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

namespace generalutilities {
namespace {

[[noreturn]] void Fail(std::u16string_view path, HRESULT status, const std::string& words) {
    throw Error(status, files::ToUtf8Lossy(path) + ": " + words);
}

/// What a status of the envelope or of the compressed stream means for who opens a file.
std::string WordsOf(HRESULT status) {
    switch (status) {
        case itderrUnableToOpenFile:
            return std::string("cannot be opened: ") + std::strerror(errno);
        case itderrBadMagic:
            return "this is no ITD file: it does not begin with SDLXARCH";
        case itderrBadVersion:
            return "the version field of the envelope is damaged";
        case itderrUnableToReadFile:
            return "the file is cut off, or a length in its envelope is damaged";
        case ErrorFileTooLarge:
            return "the text part would be larger than what its compressed form can honestly hold";
        case ErrorInvalidData:
            return "the compressed text part is damaged";
        default:
            return "cannot be read";
    }
}

/// The bytes of the reference before the compressed ones.
void CopyEnvelope(std::u16string_view reference, const ItdArchiveHeader& archive,
                  files::FileWriter& copy, std::u16string_view path) {
    const auto source = files::OpenForReading(reference);
    char block[65536];
    for (std::uint64_t offset = 0; offset < archive.TextPartOffset();) {
        const std::size_t wanted =
            std::min<std::size_t>(sizeof block, archive.TextPartOffset() - offset);
        std::size_t read = 0;
        if (source == nullptr || !source->ReadAt(offset, block, wanted, read) || read < wanted) {
            Fail(reference, ErrorReadFault, "cannot be read again");
        }
        if (!copy.WriteAt(offset, {block, wanted})) {
            Fail(path, files::StatusOfError(errno, ErrorWriteFault),
                 std::string("cannot be written: ") + std::strerror(errno));
        }
        offset += wanted;
    }
}

}  // namespace

std::string ReadItdTextPart(std::u16string_view path, ItdArchiveHeader& archive) {
    std::unique_ptr<char[]> room;
    std::size_t size = 0;
    HRESULT status = ReadArchiveHeader(path, archive);
    if (Succeeded(status)) {
        status = UnpackTextPart(
            path, archive.TextPartOffset(), archive.compressedLength,
            [&room](std::size_t most) {
                room.reset();
                room = std::make_unique_for_overwrite<char[]>(most);
                return room.get();
            },
            size);
    }
    if (Failed(status)) {
        Fail(path, status, WordsOf(status));
    }
    return {room.get(), size};
}

ItdFile ReadItdFile(std::u16string_view path) {
    ItdFile file;
    const std::string bytes = ReadItdTextPart(path, file.archive);
    if (ParseTextHeader(bytes, file.header) != ItdParse::Complete) {
        Fail(path, itderrWrongTextHeader, "the header of the text part has an unknown form");
    }
    if (ParseTextPart(bytes, file.header.statusEntryCount, file.document) != ItdParse::Complete) {
        Fail(path, itderrTextParsing, "the records of the text part are damaged");
    }
    file.isReversed = PutSourceFirst(file.document, file.header.targetLanguage);
    return file;
}

void WriteItdCopy(std::u16string_view reference, ItdFile& file, std::u16string_view path) {
    ItdDocument& document = file.document;
    const auto swapColumns = [&] {
        if (file.isReversed) {
            document.sourceSegments.swap(document.targetSegments);
        }
    };
    swapColumns();
    const std::string bytes = SerializeTextPart(document);
    swapColumns();

    const auto copy = files::OpenForWriting(path);
    if (copy == nullptr) {
        Fail(path, files::StatusOfError(errno, ErrorAccessDenied),
             std::string("cannot be opened for writing: ") + std::strerror(errno));
    }
    CopyEnvelope(reference, file.archive, *copy, path);
    std::uint32_t packed = 0;
    HRESULT status = copy->Close()
                         ? PackTextPart(path, file.archive.TextPartOffset(), bytes, packed)
                         : files::StatusOfError(errno, ErrorWriteFault);
    if (Succeeded(status)) {
        status =
            CloseTextPart(path, file.archive.lengthFieldOffset, packed, TextPartTrailer(bytes));
    }
    if (Failed(status)) {
        Fail(path, status, std::string("cannot be written: ") + std::strerror(errno));
    }

    const ItdFile written = ReadItdFile(path);
    if (written.isReversed != file.isReversed ||
        written.document.sourceSegments != document.sourceSegments ||
        written.document.targetSegments != document.targetSegments ||
        written.document.headerBytes != document.headerBytes ||
        written.document.commentStrings != document.commentStrings ||
        written.document.footerBytes != document.footerBytes) {
        Fail(path, itderrTextParsing, "what was written is not read back as it is in the document");
    }
}

}  // namespace generalutilities
