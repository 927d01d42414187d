#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

/// The writer of the export files: text in, bytes of one of two formats out.
namespace generalutilities {

/// The formats, by their published numbers.
enum class TextFileFormat : std::int32_t {
    OneByte = 8,   ///< the low byte of each code unit
    Utf8 = 65001,  ///< UTF-8 without a byte order mark; an unpaired surrogate becomes U+FFFD
};

/// A text file open for writing. The first failed write is remembered: every later `Write`, and
/// `Close`, gives false too.
class TextFileStream {
  public:
    virtual ~TextFileStream() = default;
    virtual bool Write(std::u16string_view text) = 0;
    /// Writes out what is buffered and closes the file. A second call does nothing and repeats the
    /// first call's answer.
    virtual bool Close() = 0;
};

/// Opens export files. A test or a host puts its own in the place of the built-in one.
class TextFileFactory {
  public:
    virtual ~TextFileFactory() = default;
    /// Creates or empties the file at `path`; null when that fails.
    virtual std::unique_ptr<TextFileStream> OpenTextFile(std::u16string_view path,
                                                         TextFileFormat format) = 0;
};

/// The built-in factory: buffered files of the operating system.
std::unique_ptr<TextFileFactory> CreateTextFileFactory();

}  // namespace generalutilities
