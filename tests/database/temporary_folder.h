#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdlib.h>
#include <string>
#include <string_view>

namespace generalutilities {

inline std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteFile(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

/// A new folder that goes, with all in it, at the end of the test.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "gu-test-XXXXXX").string();
        folder = mkdtemp(name.data());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return folder; }
    std::u16string Path(std::u16string_view name) const {
        return folder.u16string() + u"/" + std::u16string(name);
    }
    /// The path of a file in the folder, as an argument.
    std::string operator/(const std::string& name) const { return (folder / name).string(); }

    /// Writes a file and gives its path.
    std::string Write(const std::string& name, std::string_view content) const {
        WriteFile(folder / name, content);
        return *this / name;
    }
    /// How many files the folder holds, hidden ones too.
    std::size_t FileCount() const {
        const std::filesystem::directory_iterator list(folder);
        return static_cast<std::size_t>(std::distance(begin(list), end(list)));
    }

  private:
    std::filesystem::path folder;
};

}  // namespace generalutilities
