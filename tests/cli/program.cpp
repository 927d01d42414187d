#include "program.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <stdexcept>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace generalutilities::cli_test {
namespace {

/// Both ends of a pipe; reading end first.
std::pair<int, int> MakePipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("pipe");
    }
    return {ends[0], ends[1]};
}

/// Feeds standard input and gathers what comes back, none of which may wait for the other.
void Exchange(int inputEnd, const std::string& input, int outputEnd, int errorEnd, Result& result) {
    std::size_t sent = 0;
    pollfd ends[3] = {{inputEnd, POLLOUT, 0}, {outputEnd, POLLIN, 0}, {errorEnd, POLLIN, 0}};
    const auto finish = [&](pollfd& end) {
        if (end.fd >= 0) {
            close(end.fd);
            end.fd = -1;
        }
    };
    const auto receive = [&](pollfd& end, std::string& text) {
        char buffer[65536];
        const ssize_t count = read(end.fd, buffer, sizeof buffer);
        if (count > 0) {
            text.append(buffer, static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            finish(end);  // a terminal whose program is gone gives an error instead of an end
        }
    };
    if (sent == input.size()) {
        finish(ends[0]);
    }
    while (ends[0].fd >= 0 || ends[1].fd >= 0 || ends[2].fd >= 0) {
        poll(ends, 3, -1);
        if (ends[0].fd >= 0 && ends[0].revents != 0) {
            const ssize_t count = write(ends[0].fd, input.data() + sent, input.size() - sent);
            sent += count > 0 ? static_cast<std::size_t>(count) : 0;
            if (sent == input.size() || (count < 0 && errno != EINTR)) {
                finish(ends[0]);
            }
        }
        if (ends[1].fd >= 0 && ends[1].revents != 0) {
            receive(ends[1], result.output);
        }
        if (ends[2].fd >= 0 && ends[2].revents != 0) {
            receive(ends[2], result.error);
        }
    }
}

[[noreturn]] void Execute(const std::string& program, const std::vector<std::string>& arguments,
                          const Surroundings& surroundings) {
    for (const std::string& variable : surroundings.environment) {
        const std::size_t equals = variable.find('=');
        setenv(variable.substr(0, equals).c_str(), variable.substr(equals + 1).c_str(), 1);
    }
    // A sanitizer's report must not look like an exit code of the program.
    for (const char* variable : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        setenv(variable, "exitcode=99", 1);
    }
    if (surroundings.fileSizeLimit >= 0) {
        const auto limit = static_cast<rlim_t>(surroundings.fileSizeLimit);
        const rlimit both{limit, limit};
        setrlimit(RLIMIT_FSIZE, &both);
    }
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    execvp(program.c_str(), words.data());
    _exit(127);
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "genutil-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("mkdtemp");
    }
    path = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::string TemporaryFolder::Write(const std::string& name, const std::string& content) const {
    std::ofstream(path / name, std::ios::binary) << content;
    return *this / name;
}

std::size_t TemporaryFolder::FileCount() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path), {}));
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

Result Run(const std::string& program, const std::vector<std::string>& arguments,
           const Surroundings& surroundings) {
    signal(SIGPIPE, SIG_IGN);  // for our writing; the program gets the default again
    Result result;
    int inputEnd = -1;
    int outputEnd = -1;
    int errorEnd = -1;
    pid_t child = -1;
    if (surroundings.terminal) {
        child = forkpty(&outputEnd, nullptr, nullptr, nullptr);
        if (child == 0) {
            signal(SIGPIPE, SIG_DFL);
            Execute(program, arguments, surroundings);
        }
    } else {
        const auto input = MakePipe();
        const auto output = MakePipe();
        const auto error = MakePipe();
        child = fork();
        if (child == 0) {
            signal(SIGPIPE, SIG_DFL);
            dup2(input.first, STDIN_FILENO);
            dup2(output.second, STDOUT_FILENO);
            dup2(error.second, STDERR_FILENO);
            if (!surroundings.outputTo.empty()) {
                dup2(open(surroundings.outputTo.c_str(), O_WRONLY), STDOUT_FILENO);
            }
            if (surroundings.brokenPipe) {
                int ends[2];
                if (pipe(ends) == 0) {
                    close(ends[0]);
                    dup2(ends[1], STDOUT_FILENO);
                    close(ends[1]);
                }
            }
            Execute(program, arguments, surroundings);
        }
        close(input.first);
        close(output.second);
        close(error.second);
        inputEnd = input.second;
        outputEnd = output.first;
        errorEnd = error.first;
    }
    Exchange(inputEnd, surroundings.input, outputEnd, errorEnd, result);
    int status = 0;
    waitpid(child, &status, 0);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

Result Genutil(const std::vector<std::string>& arguments, const Surroundings& surroundings) {
    return Run(GENUTIL_PROGRAM, arguments, surroundings);
}

}  // namespace generalutilities::cli_test
