#pragma once

#include "platform/files/files.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace generalutilities::testing {

/// A file in memory that can break: one read fails, or the size it tells is not what it holds.
class MemoryFile : public files::FileReader {
  public:
    explicit MemoryFile(std::string content) : bytes(std::move(content)) {}

    std::uint64_t Size() const override { return reportedSize.value_or(bytes.size()); }

    bool ReadAt(std::uint64_t offset, void* buffer, std::size_t length,
                std::size_t& read) override {
        ++reads;
        if (reads == failingRead) {
            return false;
        }
        const std::size_t start = std::min<std::uint64_t>(offset, bytes.size());
        read = std::min(length, bytes.size() - start);
        std::memcpy(buffer, bytes.data() + start, read);
        return true;
    }

    std::optional<std::uint64_t> reportedSize;
    int failingRead = 0;  ///< which read fails, counted from 1; 0: none
    int reads = 0;

  private:
    std::string bytes;
};

inline std::unique_ptr<MemoryFile> FileOf(std::string content) {
    return std::make_unique<MemoryFile>(std::move(content));
}

}  // namespace generalutilities::testing
