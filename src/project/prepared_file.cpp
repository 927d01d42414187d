#include <generalutilities/error.h>
#include <generalutilities/project/prepared_file.h>

#include "platform/files/temporary_file.h"
#include "platform/files/utf8.h"

#include <system_error>

namespace generalutilities {

PreparedFile::PreparedFile(std::u16string_view path)
    : name(path), isBilingual(IsBilingualDocument(path)) {}
PreparedFile::PreparedFile(PreparedFile&&) noexcept = default;
PreparedFile& PreparedFile::operator=(PreparedFile&&) noexcept = default;
PreparedFile::~PreparedFile() = default;

PreparedFile PreparedFile::Prepare(std::u16string_view path,
                                   const std::function<void(const ReviewFindingPlace&)>& found) {
    PreparedFile file(path);
    try {
        file.preparation = PrepareReviewedFile(
            path,
            [&file](std::string_view bytes) {
                if (!file.copy) {
                    file.copy = std::make_unique<files::TemporaryFile>();
                }
                file.copy->Write(bytes);
            },
            found);
        if (file.copy) {
            file.copy->Flush();
        }
    } catch (const std::system_error& error) {
        throw Error(error.code() == std::errc::no_space_on_device ? ErrorDiskFull : ErrorWriteFault,
                    files::ToUtf8Lossy(path) +
                        ": its prepared copy cannot be written to the folder " + error.what() +
                        "; TMPDIR can name another folder");
    }
    return file;
}

PreparedFile PreparedFile::AsIs(std::u16string_view path) {
    return PreparedFile(path);
}

std::u16string PreparedFile::Path() const {
    return copy ? copy->Path() : name;
}

}  // namespace generalutilities
