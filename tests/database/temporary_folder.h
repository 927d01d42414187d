#pragma once

#include "platform/files/utf8.h"

#include <filesystem>
#include <stdlib.h>
#include <string>
#include <string_view>

namespace generalutilities {

/// A new folder that goes, with all in it, at the end of the test.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "gu-database-XXXXXX").string();
        folder = mkdtemp(name.data());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::u16string Path(std::u16string_view name) const {
        return files::FromUtf8(folder.string() + "/") + std::u16string(name);
    }

  private:
    std::filesystem::path folder;
};

}  // namespace generalutilities
