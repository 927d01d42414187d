#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

/// Where genutil's words go. Results go to standard output, everything else (notes, warnings,
/// errors, progress) to standard error, so that a pipe holds results alone.
namespace generalutilities::cli {

enum class Style { Plain, Bold, Dim, Red, Green, Yellow, Cyan };

class Console {
  public:
    /// Looks once at the two streams and at the environment: colour is used on a stream that is a
    /// terminal, unless NO_COLOR is set to anything or TERM is "dumb".
    Console();

    /// Writes a result. A failed write is remembered and told by `Finish`.
    void Write(std::string_view text);
    void WriteLine(std::string_view text);
    /// Standard output as a stream, for what writes itself.
    std::ostream& Output();

    /// One line on standard error each.
    void Note(std::string_view text);
    void Warn(std::string_view text);
    void Error(std::string_view text);

    /// `text` in a style, for standard output; unchanged where there is no colour.
    std::string Paint(Style style, std::string_view text) const;
    bool HasColor() const { return outputColor; }

    /// Whether standard error is a terminal, and its width in columns (80 when it does not tell).
    bool ErrorIsTerminal() const { return errorTerminal; }
    int ErrorWidth() const;
    /// Writes to standard error as it is, at once.
    void WriteError(std::string_view text);

    /// Writes out what is buffered. False when any result could not be written; `FailureText` then
    /// says why.
    bool Finish();
    const std::string& FailureText() const { return failureText; }

  private:
    void RememberFailure();

    bool outputColor;
    bool errorColor;
    bool errorTerminal;
    std::string failureText;
};

}  // namespace generalutilities::cli
