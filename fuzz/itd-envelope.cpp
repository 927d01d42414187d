// A file that says it is an ITD file: its envelope, and what unpacks out of it.

#include <generalutilities/error.h>
#include <generalutilities/itd/archive.h>

#include "platform/files/temporary_file.h"
#include "text_input.h"

#include <memory>

using namespace generalutilities;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    files::TemporaryFile file;
    file.Write({reinterpret_cast<const char*>(data), size});
    file.Flush();
    ItdArchiveHeader header;
    const HRESULT status = ReadArchiveHeader(file.Path(), header);
    if (Failed(status)) {
        Require(status >= itderrBadMagic && status <= itderrUnableToReadFile);
        return 0;
    }
    Require(std::size_t{header.TextPartOffset()} + header.compressedLength + 4 <= size);
    std::unique_ptr<char[]> room;
    std::size_t most = 0, length = 0;
    const auto give = [&](std::size_t count) {
        most = count;
        room.reset();
        room = std::make_unique_for_overwrite<char[]>(count);
        return room.get();
    };
    const HRESULT unpacked =
        UnpackTextPart(file.Path(), header.TextPartOffset(), header.compressedLength, give, length);
    Require(unpacked == S_OK ? length <= most : unpacked == ErrorInvalidData);
    TextPartTrailer({room.get(), unpacked == S_OK ? length : 0});
    return 0;
}
