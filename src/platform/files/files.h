#pragma once

#include <generalutilities/status.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

/// Files of the operating system, by UTF-16 path (converted to UTF-8).
namespace generalutilities::files {

/// UTF-16 to the byte string that the system's calls take, and back. A path that has no such form
/// (an unpaired surrogate or a zero in it) becomes the empty path, which every call refuses.
std::string ToNativePath(std::u16string_view path);
std::u16string FromNativePath(std::string_view path);

/// A file open for reading at any offset. Short reads and interruptions are handled inside.
class FileReader {
  public:
    virtual ~FileReader() = default;
    virtual std::uint64_t Size() const = 0;
    /// Reads up to `length` bytes at `offset` into `buffer` and gives how many were read: fewer
    /// only at the end of the file. On an error of the device false.
    virtual bool ReadAt(std::uint64_t offset, void* buffer, std::size_t length,
                        std::size_t& read) = 0;
};

/// Opens an existing regular file for reading; null when that fails (a directory, too), with the
/// reason in `errno`.
std::unique_ptr<FileReader> OpenForReading(std::u16string_view path);

/// A file open for being changed in place. What goes wrong leaves its number in `errno`.
class FileWriter {
  public:
    virtual ~FileWriter() = default;
    virtual bool WriteAt(std::uint64_t offset, std::string_view bytes) = 0;
    virtual bool EndAt(std::uint64_t size) = 0;
    /// To be called at the end: the system may tell only now that a write failed.
    virtual bool Close() = 0;
};

/// Opens an existing regular file for writing, without emptying it; null when that fails, with the
/// reason in `errno`.
std::unique_ptr<FileWriter> OpenForWriting(std::u16string_view path);

/// The failing status of a system's error number; `otherwise` for one that has none of its own.
HRESULT StatusOfError(int error, HRESULT otherwise);

}  // namespace generalutilities::files
