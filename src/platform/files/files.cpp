// Files through plain POSIX calls. A path that UTF-8 or the system cannot express (an unpaired
// surrogate, an embedded zero) becomes the empty path, which no call accepts.

#include "platform/files/files.h"

#include <generalutilities/error.h>

#include "platform/files/utf8.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace generalutilities::files {

namespace {

/// The most that one call is asked for; the kernel itself stops a little below 2 GiB.
constexpr std::size_t LargestTransfer = std::size_t{1} << 30;

/// A regular file by its descriptor.
class PosixFile {
  public:
    PosixFile() = default;
    ~PosixFile() { Close(); }
    PosixFile(const PosixFile&) = delete;
    PosixFile& operator=(const PosixFile&) = delete;

    /// 0, or the system's error number.
    int Open(const char* path, int access) {
        do {
            // O_NONBLOCK: opening a pipe without a writer must not wait; a regular file ignores it.
            descriptor = open(path, access | O_CLOEXEC | O_NONBLOCK);
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
    bool Close() {
        // Interrupted or not, the descriptor is gone after this call.
        const int open = std::exchange(descriptor, -1);
        return open < 0 || close(open) == 0 || errno == EINTR;
    }

    int Descriptor() const { return descriptor; }
    std::uint64_t Size() const { return size; }

  private:
    int descriptor = -1;
    std::uint64_t size = 0;
};

class PosixFileReader final : public FileReader {
  public:
    int Open(const char* path) { return file.Open(path, O_RDONLY); }

    std::uint64_t Size() const override { return file.Size(); }

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
                pread(file.Descriptor(), static_cast<char*>(buffer) + read,
                      std::min(length - read, LargestTransfer), static_cast<off_t>(offset + read));
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
    PosixFile file;
};

class PosixFileWriter final : public FileWriter {
  public:
    int Open(const char* path) { return file.Open(path, O_WRONLY); }

    bool WriteAt(std::uint64_t offset, std::string_view bytes) override {
        while (!bytes.empty()) {
            const ssize_t count =
                pwrite(file.Descriptor(), bytes.data(), std::min(bytes.size(), LargestTransfer),
                       static_cast<off_t>(offset));
            if (count < 0 && errno != EINTR) {
                return false;
            }
            const auto written = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
            bytes.remove_prefix(written);
            offset += written;
        }
        return true;
    }
    bool EndAt(std::uint64_t size) override {
        while (ftruncate(file.Descriptor(), static_cast<off_t>(size)) != 0) {
            if (errno != EINTR) {
                return false;
            }
        }
        return true;
    }
    bool Close() override { return file.Close(); }

  private:
    PosixFile file;
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

std::unique_ptr<FileReader> OpenForReading(std::u16string_view path) {
    auto reader = std::make_unique<PosixFileReader>();
    errno = reader->Open(ToNativePath(path).c_str());
    if (errno != 0) {
        return nullptr;
    }
    return reader;
}

std::unique_ptr<FileWriter> OpenForWriting(std::u16string_view path) {
    auto writer = std::make_unique<PosixFileWriter>();
    errno = writer->Open(ToNativePath(path).c_str());
    if (errno != 0) {
        return nullptr;
    }
    return writer;
}

HRESULT StatusOfError(int error, HRESULT otherwise) {
    switch (error) {
        case ENOENT:
            return ErrorFileNotFound;
        case EACCES:
        case EROFS:
            return ErrorAccessDenied;
        case ENOSPC:
        case EDQUOT:
            return ErrorDiskFull;
        default:
            return otherwise;
    }
}

}  // namespace generalutilities::files
