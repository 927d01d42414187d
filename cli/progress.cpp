#include "progress.h"

#include <algorithm>
#include <map>

namespace generalutilities::cli {
namespace {

/// Work that is done sooner shows no bar.
constexpr std::chrono::milliseconds Patience{300};

}  // namespace

void AddProgressOption(CLI::App* command, ProgressMode& mode) {
    static const std::map<std::string, ProgressMode> Modes{{"auto", ProgressMode::Automatic},
                                                           {"bar", ProgressMode::Bar},
                                                           {"plain", ProgressMode::Plain},
                                                           {"none", ProgressMode::None}};
    command
        ->add_option_function<std::string>(
            "--progress", [&mode](const std::string& name) { mode = Modes.at(name); },
            "auto: a bar on a terminal; plain: lines on standard error; none")
        ->check(CLI::IsMember({"auto", "bar", "plain", "none"}))
        ->type_name("MODE");
}

ProgressDisplay::ProgressDisplay(Console& errorConsole, ProgressMode mode, std::string workLabel)
    : console(errorConsole),
      label(std::move(workLabel)),
      drawsBar((mode == ProgressMode::Automatic || mode == ProgressMode::Bar) &&
               errorConsole.ErrorIsTerminal()),
      writesLines(mode == ProgressMode::Plain),
      start(std::chrono::steady_clock::now()) {}

ProgressDisplay::~ProgressDisplay() {
    if (barVisible) {
        console.WriteError("\r\x1b[K");
    }
}

void ProgressDisplay::Update(int percent) {
    percent = std::clamp(percent, 0, 100);
    if (percent == lastPercent) {
        return;
    }
    if (writesLines && (lastPercent < 0 || percent / 10 > lastPercent / 10)) {
        console.Note(label + ": " + std::to_string(percent) + " %");
    }
    lastPercent = percent;
    if (drawsBar && std::chrono::steady_clock::now() - start >= Patience) {
        DrawBar(percent);
    }
}

void ProgressDisplay::DrawBar(int percent) {
    const int room = console.ErrorWidth() - static_cast<int>(label.size()) - 10;
    const int width = std::clamp(room, 0, 40);
    const int filled = width * percent / 100;
    std::string line = "\r" + label + " ";
    if (width > 0) {
        line += "[" + std::string(static_cast<std::size_t>(filled), '#') +
                std::string(static_cast<std::size_t>(width - filled), ' ') + "] ";
    }
    console.WriteError(line + std::to_string(percent) + " %\x1b[K");
    barVisible = true;
}

}  // namespace generalutilities::cli
