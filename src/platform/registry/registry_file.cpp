// The registry's file: read whole, replaced whole.
//
// A change holds a lock on the folder, not on a lock file of its own, so that nothing but the
// registry ever appears in the user's home.

#include "platform/registry/registry.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace generalutilities::registry {

namespace {

/// A file descriptor that is closed at the end.
class Descriptor {
  public:
    explicit Descriptor(int descriptor) : value(descriptor) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (value >= 0) {
            close(value);
        }
    }
    int Get() const { return value; }
    explicit operator bool() const { return value >= 0; }

  private:
    int value;
};

bool ReadWhole(int descriptor, std::string& text) {
    char buffer[65536];
    for (;;) {
        const ssize_t count = read(descriptor, buffer, sizeof buffer);
        if (count == 0) {
            return true;
        }
        if (count > 0) {
            text.append(buffer, static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
}

bool WriteWhole(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return fsync(descriptor) == 0;
}

}  // namespace

std::string FilePath() {
    const char* const data = std::getenv("XDG_DATA_HOME");
    if (data != nullptr && data[0] == '/') {
        return std::string(data) + "/generalutilities/registry.reg";
    }
    const char* const home = std::getenv("HOME");
    if (home != nullptr && home[0] != '\0') {
        return std::string(home) + "/.local/share/generalutilities/registry.reg";
    }
    return {};
}

HRESULT Read(Tree& tree) {
    tree = Tree();
    const std::string path = FilePath();
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file) {
        return errno == ENOENT || errno == ENOTDIR ? S_OK : REGDB_E_READREGDB;
    }
    std::string text;
    return ReadWhole(file.Get(), text) && tree.Parse(text) == 0 ? S_OK : REGDB_E_READREGDB;
}

HRESULT Update(const std::function<void(Tree&)>& change) {
    const std::filesystem::path path = FilePath();
    if (path.empty()) {
        return REGDB_E_WRITEREGDB;
    }
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    const Descriptor folder(open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder) {
        return REGDB_E_WRITEREGDB;
    }
    while (flock(folder.Get(), LOCK_EX) != 0) {
        if (errno != EINTR) {
            return REGDB_E_WRITEREGDB;
        }
    }
    Tree tree;
    if (const HRESULT status = Read(tree); Failed(status)) {
        return status;
    }
    const Tree before = tree;
    change(tree);
    if (tree == before) {
        return S_OK;
    }
    const std::string beside = path.string() + ".new";
    {
        const Descriptor file(open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC,
                                   S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH));
        if (!file || !WriteWhole(file.Get(), tree.Serialize())) {
            unlink(beside.c_str());
            return REGDB_E_WRITEREGDB;
        }
    }
    if (rename(beside.c_str(), path.c_str()) != 0) {
        unlink(beside.c_str());
        return REGDB_E_WRITEREGDB;
    }
    fsync(folder.Get());
    return S_OK;
}

}  // namespace generalutilities::registry
