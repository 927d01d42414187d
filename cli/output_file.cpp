#include "output_file.h"

#include "failure.h"
#include "platform/files/files.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

namespace generalutilities::cli {
namespace {

/// What the signal handler removes; empty for nothing. Fixed storage: a handler may not allocate.
char fileToRemove[4096];

extern "C" void RemoveAndEnd(int signal) {
    if (fileToRemove[0] != '\0') {
        unlink(fileToRemove);
    }
    std::signal(signal, SIG_DFL);
    raise(signal);
}

void WatchSignals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction current {};
        // Who ignores a signal (nohup does) goes on ignoring it.
        if (sigaction(signal, nullptr, &current) == 0 && current.sa_handler != SIG_IGN) {
            struct sigaction action {};
            action.sa_handler = RemoveAndEnd;
            sigemptyset(&action.sa_mask);
            sigaction(signal, &action, nullptr);
        }
    }
}

/// Signals held back while the file and what the handler knows of it change together.
class SignalsHeld {
  public:
    SignalsHeld() {
        sigset_t held;
        sigemptyset(&held);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            sigaddset(&held, signal);
        }
        sigprocmask(SIG_BLOCK, &held, &before);
    }
    ~SignalsHeld() { sigprocmask(SIG_SETMASK, &before, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

  private:
    sigset_t before;
};

[[noreturn]] void Fail(const std::string& path, const std::string& why, HRESULT status) {
    throw Failure(path + ": " + why, "genutil", status);
}

[[noreturn]] void FailWithError(const std::string& path, const std::string& doing, int error) {
    Fail(path, doing + ": " + std::strerror(error), files::StatusOfError(error, ErrorWriteFault));
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

/// The path with symbolic links resolved, so that a link stays and its target is replaced.
std::string Resolved(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr),
                                                           &std::free);
    return real ? std::string(real.get()) : path;
}

/// 0, or the error number of what failed.
int SyncPath(const std::string& path, int flags) {
    const int file = open(path.c_str(), flags | O_CLOEXEC);
    if (file < 0) {
        return errno;
    }
    const int error = fsync(file) == 0 ? 0 : errno;
    close(file);
    // File systems that cannot sync say EINVAL; that is no failure of the writing.
    return error == EINVAL || error == ENOTSUP ? 0 : error;
}

}  // namespace

OutputFile::OutputFile(const std::string& finalPath, bool replaceExisting)
    : destination(Resolved(finalPath)), replace(replaceExisting) {
    struct stat existing {};
    const bool exists = stat(destination.c_str(), &existing) == 0;
    if (exists && S_ISDIR(existing.st_mode)) {
        Fail(finalPath, "is a folder; name a file in it", ErrorFileExists);
    }
    if (exists && !S_ISREG(existing.st_mode)) {
        direct = true;
        partialPath = destination;
        return;
    }
    if (exists && !replace) {
        Fail(finalPath, "exists already; --force replaces it", ErrorFileExists);
    }

    WatchSignals();
    const SignalsHeld held;
    const std::string folder = FolderOf(destination);
    const mode_t mode = exists ? existing.st_mode & 07777 : 0666;
    for (int attempt = 0;; ++attempt) {
        partialPath = folder + "/.genutil-" + std::to_string(getpid()) + "-" +
                      std::to_string(attempt) + ".partial";
        const int file = open(partialPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (file >= 0) {
            if (exists) {
                fchmod(file, mode);  // against the umask; refusing this is no reason to stop
            }
            close(file);
            break;
        }
        if (errno != EEXIST || attempt == 100) {
            FailWithError(finalPath, "nothing can be written in the folder " + folder, errno);
        }
    }
    if (partialPath.size() < sizeof fileToRemove) {
        std::memcpy(fileToRemove, partialPath.c_str(), partialPath.size() + 1);
    }
}

OutputFile::~OutputFile() {
    if (!direct && !committed) {
        const SignalsHeld held;
        unlink(partialPath.c_str());
        fileToRemove[0] = '\0';
    }
}

void OutputFile::Commit() {
    if (direct) {
        committed = true;
        return;
    }
    if (const int error = SyncPath(partialPath, O_RDONLY); error != 0) {
        FailWithError(destination, "cannot be written to the disk", error);
    }
    const SignalsHeld held;
    int result = 0;
    if (replace) {
        result = rename(partialPath.c_str(), destination.c_str());
    } else {
        result = renameat2(AT_FDCWD, partialPath.c_str(), AT_FDCWD, destination.c_str(),
                           RENAME_NOREPLACE);
        if (result != 0 && errno == EINVAL) {  // a file system without that promise
            result = rename(partialPath.c_str(), destination.c_str());
        }
    }
    if (result != 0 && errno == EEXIST) {
        Fail(destination, "was made by another program meanwhile; --force replaces it",
             ErrorFileExists);
    }
    if (result != 0) {
        FailWithError(destination, "cannot get its name", errno);
    }
    committed = true;
    fileToRemove[0] = '\0';
    SyncPath(FolderOf(destination), O_RDONLY | O_DIRECTORY);  // the file is complete either way
}

}  // namespace generalutilities::cli
