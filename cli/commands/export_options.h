#pragma once

#include <generalutilities/extview/export_options.h>

#include <CLI/CLI.hpp>
#include <array>
#include <cstdint>
#include <string>

/// The options of `genutil export` that become arguments of `ExportExternalView`: the bits of
/// `ExportOptions`, the colours and the fonts.
namespace generalutilities::cli {

struct ExportLook {
    std::int32_t options = 0;  ///< the bits of the flags that were given
    bool omitIdColumn = false;
    std::string format;  ///< empty: the ending of the file's name decides
    std::string sourceFont = "Tahoma";
    std::string targetFont = "Tahoma";
    /// "#RRGGBB", in the order of the arguments of `ExportExternalView`.
    std::array<std::string, 9> colors;

    /// The value of the argument `ExportOptions`.
    std::int32_t OptionBits() const;
    /// A colour as the argument takes it, 0x00BBGGRR. The text has been checked before.
    std::int32_t ColorValue(std::size_t index) const;
};

/// Chooses the format by the name of the file where none was asked for. Throws a `UsageError` for a
/// name with the ending of another one.
void SettleFormat(ExportLook& look, const std::string& fileName);

/// Adds one option for each bit, colour and font.
void AddLookOptions(CLI::App* command, ExportLook& look);

}  // namespace generalutilities::cli
