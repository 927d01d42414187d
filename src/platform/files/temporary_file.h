#pragma once

#include <string>
#include <string_view>

namespace generalutilities::files {

/// A file for passing bytes on to something that opens a path. It has no name in any folder, so
/// nothing of it can be left behind, however the process ends.
class TemporaryFile {
  public:
    /// Makes the file in the folder for such files: TMPDIR, or /tmp. This and all writing throw
    /// `std::system_error`, which names the folder.
    TemporaryFile();
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void Write(std::string_view bytes);
    /// Writes out what is buffered. To be called before the file is opened by its path.
    void Flush();

    /// The path by which this process can open the file as long as the object lives.
    std::u16string Path() const;

  private:
    std::string folder;
    std::string buffer;
    int descriptor = -1;
};

}  // namespace generalutilities::files
