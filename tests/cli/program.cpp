#include "program.h"

#include "unicode.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <regex>
#include <signal.h>
#include <sstream>
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
void Exchange(int inputEnd, std::string_view input, int outputEnd, int errorEnd, Result& result) {
    pollfd ends[3] = {{inputEnd, POLLOUT, 0}, {outputEnd, POLLIN, 0}, {errorEnd, POLLIN, 0}};
    std::string* const texts[] = {nullptr, &result.output, &result.error};
    char buffer[65536];
    while (ends[0].fd >= 0 || ends[1].fd >= 0 || ends[2].fd >= 0) {
        poll(ends, 3, -1);
        for (int i = 0; i < 3; ++i) {
            if (ends[i].fd < 0 || ends[i].revents == 0) {
                continue;
            }
            const ssize_t count = i == 0 ? write(ends[0].fd, input.data(), input.size())
                                         : read(ends[i].fd, buffer, sizeof buffer);
            if (i > 0 && count > 0) {
                texts[i]->append(buffer, static_cast<std::size_t>(count));
            } else if (i == 0 && count > 0) {
                input.remove_prefix(static_cast<std::size_t>(count));
            }
            // A terminal whose program is gone gives an error instead of an end.
            if (i == 0 ? input.empty() || count < 0 : count <= 0) {
                close(std::exchange(ends[i].fd, -1));
            }
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

Result Run(const std::string& program, const std::vector<std::string>& arguments,
           const Surroundings& surroundings) {
    signal(SIGPIPE, SIG_IGN);  // for our writing; the program gets the default again
    Result result;
    std::pair<int, int> input{-1, -1}, output{-1, -1}, error{-1, -1};
    if (!surroundings.terminal) {
        input = MakePipe();
        output = MakePipe();
        error = MakePipe();
    }
    const pid_t child =
        surroundings.terminal ? forkpty(&output.first, nullptr, nullptr, nullptr) : fork();
    if (child == 0) {
        signal(SIGPIPE, SIG_DFL);
        if (!surroundings.terminal) {
            dup2(input.first, STDIN_FILENO);
            dup2(output.second, STDOUT_FILENO);
            dup2(error.second, STDERR_FILENO);
        }
        if (!surroundings.outputTo.empty()) {
            dup2(open(surroundings.outputTo.c_str(), O_WRONLY), STDOUT_FILENO);
        }
        if (surroundings.brokenPipe) {
            const auto unread = MakePipe();
            close(unread.first);
            dup2(unread.second, STDOUT_FILENO);
        }
        Execute(program, arguments, surroundings);
    }
    for (const int end : {input.first, output.second, error.second}) {
        close(end);
    }
    Exchange(input.second, surroundings.input, output.first, error.first, result);
    int status = 0;
    waitpid(child, &status, 0);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

std::vector<std::string> Arguments(const std::u16string& cell) {
    std::vector<std::string> arguments;
    std::istringstream list(cli::ToUtf8(cell));
    for (std::string word; std::getline(list, word, ' ');) {
        word = std::regex_replace(word, std::regex("␣"), " ");
        arguments.push_back(word == "∅" ? "" : word);
    }
    return arguments;
}

Result Genutil(const std::vector<std::string>& arguments, const Surroundings& surroundings) {
    return Run(GENUTIL_PROGRAM, arguments, surroundings);
}

}  // namespace generalutilities::cli_test
