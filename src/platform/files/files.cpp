// Files through plain POSIX calls. A path that UTF-8 or the system cannot express (an unpaired
// surrogate, an embedded zero) becomes the empty path, which no call accepts.

#include "platform/files/files.h"

#include "platform/files/utf8.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace generalutilities::files {

namespace {

/// The most that one call is asked for; the kernel itself stops a little below 2 GiB.
constexpr std::size_t LargestRead = std::size_t{1} << 30;

class PosixFileReader final : public FileReader {
  public:
    PosixFileReader() = default;
    ~PosixFileReader() override {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
    PosixFileReader(const PosixFileReader&) = delete;
    PosixFileReader& operator=(const PosixFileReader&) = delete;

    /// 0, or the system's error number.
    int Open(const char* path) {
        do {
            // O_NONBLOCK: opening a pipe without a writer must not wait; a regular file ignores it.
            descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        } while (descriptor < 0 && errno == EINTR);
        struct stat status = {};
        if (descriptor < 0 || fstat(descriptor, &status) != 0) {
            return errno;
        }
        if (!S_ISREG(status.st_mode)) {
            return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        }
        size = static_cast<std::uint64_t>(status.st_size);
        return 0;
    }

    std::uint64_t Size() const override { return size; }

    bool ReadAt(std::uint64_t offset, void* buffer, std::size_t length,
                std::size_t& read) override {
        read = 0;
        while (read < length) {
            constexpr auto LastOffset =
                static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
            if (offset > LastOffset || read > LastOffset - offset) {
                return true;
            }
            const ssize_t count =
                pread(descriptor, static_cast<char*>(buffer) + read,
                      std::min(length - read, LargestRead), static_cast<off_t>(offset + read));
            if (count < 0) {
                if (errno == EINTR) {
                    continue;
                }
                return false;
            }
            if (count == 0) {
                return true;
            }
            read += static_cast<std::size_t>(count);
        }
        return true;
    }

  private:
    int descriptor = -1;
    std::uint64_t size = 0;
};

}  // namespace

std::string ToNativePath(std::u16string_view path) {
    if (path.find(u'\0') != std::u16string_view::npos) {
        return {};
    }
    return ToUtf8(path).value_or(std::string());
}

std::u16string FromNativePath(std::string_view path) {
    return FromUtf8(path);
}

std::unique_ptr<FileReader> OpenForReading(std::u16string_view path, int* error) {
    auto reader = std::make_unique<PosixFileReader>();
    const int problem = reader->Open(ToNativePath(path).c_str());
    if (error != nullptr) {
        *error = problem;
    }
    if (problem != 0) {
        return nullptr;
    }
    return reader;
}

}  // namespace generalutilities::files
