#include "console.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <sys/ioctl.h>
#include <unistd.h>

namespace generalutilities::cli {
namespace {

bool ColorWanted() {
    const char* noColor = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    return (noColor == nullptr || *noColor == '\0') &&
           (terminal == nullptr || std::strcmp(terminal, "dumb") != 0);
}

std::string Painted(bool color, Style style, std::string_view text) {
    if (!color || style == Style::Plain) {
        return std::string(text);
    }
    const char* code = "";
    switch (style) {
        case Style::Plain:
            break;
        case Style::Bold:
            code = "1";
            break;
        case Style::Dim:
            code = "2";
            break;
        case Style::Red:
            code = "31";
            break;
        case Style::Green:
            code = "32";
            break;
        case Style::Yellow:
            code = "33";
            break;
        case Style::Cyan:
            code = "36";
            break;
    }
    return "\x1b[" + std::string(code) + "m" + std::string(text) + "\x1b[0m";
}

}  // namespace

Console::Console()
    : outputColor(isatty(STDOUT_FILENO) == 1 && ColorWanted()),
      errorColor(isatty(STDERR_FILENO) == 1 && ColorWanted()),
      errorTerminal(isatty(STDERR_FILENO) == 1) {}

void Console::RememberFailure() {
    if (failureText.empty()) {
        failureText = std::strerror(errno);
    }
}

void Console::Write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        RememberFailure();
    }
}

void Console::WriteLine(std::string_view text) {
    Write(text);
    Write("\n");
}

void Console::WriteError(std::string_view text) {
    // Standard error is unbuffered; when it cannot be written there is nobody left to tell.
    std::fwrite(text.data(), 1, text.size(), stderr);
}

void Console::Note(std::string_view text) {
    WriteError(std::string(text) + "\n");
}

void Console::Warn(std::string_view text) {
    WriteError(Painted(errorColor, Style::Yellow, "warning:") + " " + std::string(text) + "\n");
}

void Console::Error(std::string_view text) {
    WriteError(Painted(errorColor, Style::Red, "genutil:") + " " + std::string(text) + "\n");
}

std::string Console::Paint(Style style, std::string_view text) const {
    return Painted(outputColor, style, text);
}

int Console::ErrorWidth() const {
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        return size.ws_col;
    }
    return 80;
}

std::ostream& Console::Output() {
    return std::cout;  // which shares the buffer of stdout, so that the order stays
}

bool Console::Finish() {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0 || !std::cout) {
        RememberFailure();
    }
    return failureText.empty();
}

}  // namespace generalutilities::cli
