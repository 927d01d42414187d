// The name goes as soon as the file is open; the descriptor, through the kernel's folder of open
// files, stays a path to it.

#include "platform/files/temporary_file.h"

#include "platform/files/files.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace generalutilities::files {

namespace {

constexpr std::size_t BufferSize = 1U << 16;

}  // namespace

TemporaryFile::TemporaryFile() {
    const char* chosen = std::getenv("TMPDIR");
    folder = chosen != nullptr && *chosen != '\0' ? chosen : "/tmp";
    std::string path = folder + "/generalutilities-XXXXXX";
    buffer.reserve(BufferSize);
    descriptor = mkostemp(path.data(), O_CLOEXEC);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), folder);
    }
    unlink(path.c_str());
}

TemporaryFile::~TemporaryFile() {
    close(descriptor);
}

void TemporaryFile::Write(std::string_view bytes) {
    buffer += bytes;
    if (buffer.size() >= BufferSize) {
        Flush();
    }
}

void TemporaryFile::Flush() {
    for (std::string_view rest = buffer; !rest.empty();) {
        const ssize_t count = write(descriptor, rest.data(), rest.size());
        if (count >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), folder);
        }
    }
    buffer.clear();
}

std::u16string TemporaryFile::Path() const {
    return FromNativePath("/proc/self/fd/" + std::to_string(descriptor));
}

}  // namespace generalutilities::files
