#pragma once

#include <string>
#include <string_view>

namespace generalutilities {

/// A project file in the making: it has a name of its own beside the final one and takes the final
/// one when it is complete. Unless it was published, nothing of it is left at the end.
class UnfinishedFile {
  public:
    /// Throws `Error` when there is a file of the final name, unless it may be replaced.
    UnfinishedFile(std::u16string_view finalPath, bool replaceExisting);
    ~UnfinishedFile();
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

    const std::u16string& Path() const { return path; }
    /// Gives the closed file its final name. Without leave to replace it fails, with an `Error`,
    /// also when a file of that name has come up meanwhile.
    void Publish();

  private:
    std::u16string path;
    std::string nativePath;
    std::string nativeFinalPath;
    bool replace;
    bool isPublished = false;
};

}  // namespace generalutilities
