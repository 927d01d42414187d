#pragma once

#include <string>

namespace generalutilities::cli {

/// A file that appears under its name when it is complete, and not before.
///
/// It is written beside its final name and renamed by `Commit`. Without a `Commit` (an exception,
/// an interruption by SIGINT, SIGTERM or SIGHUP) nothing is left and a file of that name stays as
/// it was. A destination that is a device or a pipe is written directly. One object at a time.
class OutputFile {
  public:
    /// Throws a `Failure` when the file exists (unless `replaceExisting`), is a folder, or when its
    /// folder cannot be written.
    OutputFile(const std::string& finalPath, bool replaceExisting);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Where to write.
    const std::string& Path() const { return partialPath; }
    /// Whether the destination is a device or a pipe, such as /dev/stdout.
    bool IsDirect() const { return direct; }

    /// Makes sure that the content is on the disk and gives the file its name. A new file has the
    /// mode that the umask allows, a replaced one keeps its mode. Throws a `Failure`.
    void Commit();

  private:
    std::string destination;  ///< symbolic links resolved
    std::string partialPath;
    bool replace;
    bool direct = false;
    bool committed = false;
};

}  // namespace generalutilities::cli
