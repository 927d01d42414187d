#include "project/unfinished_file.h"

#include <generalutilities/error.h>

#include "platform/files/files.h"

#include <filesystem>
#include <random>
#include <system_error>

namespace generalutilities {
namespace {

/// What a database engine may keep beside an open file, or leave there after a crash. A new file
/// must not inherit such a companion from an earlier one of its name.
constexpr std::string_view CompanionEndings[] = {"-journal", "-wal", "-shm"};

void RemoveCompanions(const std::string& file) {
    for (const std::string_view ending : CompanionEndings) {
        std::error_code ignored;
        std::filesystem::remove(file + std::string(ending), ignored);
    }
}

Error AlreadyThere(const std::string& file) {
    return Error(
        ErrorFileExists,
        file + ": there is such a file already; choose another name or allow replacing it");
}

}  // namespace

UnfinishedFile::UnfinishedFile(std::u16string_view finalPath, bool replaceExisting)
    : nativeFinalPath(files::ToNativePath(finalPath)), replace(replaceExisting) {
    if (nativeFinalPath.empty()) {
        throw Error(E_INVALIDARG, "the project's path is empty or no legal path");
    }
    std::error_code error;
    if (!replace && std::filesystem::symlink_status(nativeFinalPath, error).type() !=
                        std::filesystem::file_type::not_found) {
        throw AlreadyThere(nativeFinalPath);
    }
    if (std::filesystem::is_directory(nativeFinalPath, error)) {
        throw Error(ErrorFileExists, nativeFinalPath + ": is a folder; give the name of a file");
    }
    // A link stays a link: what it points to is replaced.
    const std::filesystem::path target = std::filesystem::canonical(nativeFinalPath, error);
    if (!error) {
        nativeFinalPath = target.string();
    }
    std::random_device random;
    constexpr char16_t Digits[] = u"0123456789abcdef";
    path = files::FromNativePath(nativeFinalPath) + u".unfinished-";
    for (unsigned int bits = random(), i = 0; i < 8; ++i, bits >>= 4) {
        path += Digits[bits & 0xF];
    }
    nativePath = files::ToNativePath(path);
}

UnfinishedFile::~UnfinishedFile() {
    if (!isPublished) {
        std::error_code ignored;
        std::filesystem::remove(nativePath, ignored);
        RemoveCompanions(nativePath);
    }
}

void UnfinishedFile::Publish() {
    std::error_code error;
    if (!replace) {
        // A link, unlike a renaming, never takes another file's name.
        std::filesystem::create_hard_link(nativePath, nativeFinalPath, error);
        if (error == std::errc::file_exists) {
            throw AlreadyThere(nativeFinalPath);
        }
        if (!error) {
            RemoveCompanions(nativeFinalPath);
            std::filesystem::remove(nativePath, error);
            isPublished = true;
            return;
        }
        // A file system without links.
        if (std::filesystem::exists(nativeFinalPath, error)) {
            throw AlreadyThere(nativeFinalPath);
        }
    }
    const auto replaced = std::filesystem::status(nativeFinalPath, error);
    if (!error && std::filesystem::exists(replaced)) {
        std::filesystem::permissions(nativePath, replaced.permissions(), error);
    }
    RemoveCompanions(nativeFinalPath);
    std::filesystem::rename(nativePath, nativeFinalPath, error);
    if (error) {
        throw Error(ErrorWriteFault, nativeFinalPath + ": cannot be written: " + error.message());
    }
    isPublished = true;
}

}  // namespace generalutilities
