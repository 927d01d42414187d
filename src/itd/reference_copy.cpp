#include <generalutilities/itd/archive.h>
#include <generalutilities/itd/reference_copy.h>

#include "platform/files/files.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

namespace generalutilities {
namespace {

constexpr std::uint32_t BlockSize = 65536;

/// The checksums of a file's first bytes, block by block; fewer where the file ends before. Nothing
/// when it cannot be read.
std::optional<std::vector<std::uint32_t>> SumsOf(std::u16string_view path, std::uint32_t length) {
    const auto file = files::OpenForReading(path);
    if (file == nullptr) {
        return std::nullopt;
    }
    std::vector<std::uint32_t> sums;
    std::string block(std::min(length, BlockSize), '\0');
    for (std::uint32_t offset = 0; offset < length; offset += BlockSize) {
        const std::size_t wanted = std::min(length - offset, BlockSize);
        std::size_t read = 0;
        if (!file->ReadAt(offset, block.data(), wanted, read)) {
            return std::nullopt;
        }
        if (read < wanted) {
            break;
        }
        sums.push_back(TextPartTrailer({block.data(), wanted}));
        if (length - offset <= BlockSize) {
            break;  // the next offset might not fit
        }
    }
    return sums;
}

}  // namespace

bool ReferenceCopy::Remember(std::u16string_view path, const ItdArchiveHeader& archive) {
    auto taken = SumsOf(path, archive.lengthFieldOffset);
    if (!taken) {
        return false;
    }
    reference = path;
    lengthFieldOffset = archive.lengthFieldOffset;
    sums = std::move(*taken);
    return true;
}

ReferenceCopy::Answer ReferenceCopy::Compare(std::u16string_view path) const {
    const auto taken = SumsOf(path, lengthFieldOffset);
    if (!taken) {
        return Answer::Unreadable;
    }
    std::error_code error;
    if (std::filesystem::equivalent(files::ToNativePath(path), files::ToNativePath(reference),
                                    error)) {
        return Answer::IsReference;
    }
    return *taken == sums && !sums.empty() ? Answer::IsCopy : Answer::IsOther;
}

}  // namespace generalutilities
