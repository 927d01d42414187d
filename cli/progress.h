#pragma once

#include "console.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <string>

/// Shows how far long work is: a bar on a terminal, lines on request, nothing in a pipe. All of it
/// goes to standard error.
namespace generalutilities::cli {

enum class ProgressMode {
    Automatic,  ///< a bar when standard error is a terminal, nothing otherwise
    Bar,        ///< the same: a bar is for terminals alone
    Plain,      ///< a line for every ten percent, wherever standard error goes
    None,
};

/// Adds `--progress auto|bar|plain|none`.
void AddProgressOption(CLI::App* command, ProgressMode& mode);

class ProgressDisplay {
  public:
    /// `label` says what is done: "exporting".
    ProgressDisplay(Console& errorConsole, ProgressMode mode, std::string workLabel);
    /// Clears the bar.
    ~ProgressDisplay();
    ProgressDisplay(const ProgressDisplay&) = delete;
    ProgressDisplay& operator=(const ProgressDisplay&) = delete;

    void Update(int percent);

  private:
    void DrawBar(int percent);

    Console& console;
    std::string label;
    bool drawsBar;
    bool writesLines;
    bool barVisible = false;
    int lastPercent = -1;
    std::chrono::steady_clock::time_point start;
};

}  // namespace generalutilities::cli
