#pragma once

#include "console.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Where the commands on texts take these from.
namespace generalutilities::cli {

/// Arguments, then the lines of files; standard input's lines when there is neither.
struct TextSources {
    std::vector<std::string> texts;
    std::vector<std::string> files;
};

/// Adds the arguments TEXT and the option --file to a command.
void AddTextSources(CLI::App* command, TextSources& sources);

/// Warns of a U+0000 in the text with that number, from 1: the library reads no further.
void WarnOfZero(Console& console, std::size_t number, std::string_view text);

/// Hands each text to `use`, in order and as it comes, so that input of any length passes through.
/// A line end, of either kind, is no part of a text. Throws `UsageError` for an argument that is
/// not UTF-8, before any text is used, and `Failure` for a file or standard input that cannot be
/// read or is not UTF-8, with the line, the offset of the byte, and the byte.
void ForEachText(const TextSources& sources, const std::function<void(std::string_view)>& use);

}  // namespace generalutilities::cli
