#pragma once

#include "platform/files/files.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace generalutilities {

/// Random access to the bytes of a file through two buffers of one page each.
///
/// Two distant places can be read in turn without a read of the disc at each step: the buffer that
/// held the place before stays. Offsets are unsigned 32-bit, so a file of 4 GiB or more is not
/// opened.
///
/// A page that cannot be read ends the file there, and `ReadFailed` remembers it.
class RtfFilePager {
  public:
    static constexpr std::uint32_t PageSize = 65536;
    static constexpr std::uint32_t Slack = 16;
    static constexpr std::uint32_t NotFound = 0xFFFFFFFF;  ///< the result of a failed search

    RtfFilePager();

    bool Open(std::u16string_view fileName);
    /// Takes over an open file.
    bool Open(std::unique_ptr<files::FileReader> opened);
    void Close();

    std::uint32_t FileSize() const { return fileSize; }
    /// True when the file could not be read as far as its size on opening said.
    bool ReadFailed() const { return readFailed; }

    /// The bytes from `offset` to the end of its page or of the file, whichever is nearer; empty at
    /// and behind the end of the file. The view lives until the next but one page is read. Up to
    /// `Slack` bytes behind it may be read, too; they mean nothing.
    std::string_view BytesFrom(std::uint32_t offset) {
        const std::uint32_t at = offset - current.base;
        if (at < current.length) {
            return {current.bytes.get() + at, current.length - at};
        }
        return TurnTo(offset);
    }

    /// One byte; 0 at and behind the end of the file.
    char ByteAt(std::uint32_t offset) {
        const std::string_view bytes = BytesFrom(offset);
        return bytes.empty() ? '\0' : bytes.front();
    }

    /// The lowest offset at or above `start` and below `end` at which the bytes of `text` stand, or
    /// `NotFound`.
    std::uint32_t Find(std::uint32_t start, std::string_view text, std::uint32_t end = NotFound);

    /// Fills `out` with `length` bytes, or with what the file has of them.
    void Read(std::uint32_t start, std::uint32_t length, std::string& out);

  private:
    struct Page {
        std::unique_ptr<char[]> bytes = std::make_unique_for_overwrite<char[]>(PageSize + Slack);
        std::uint32_t base = NotFound;  ///< file offset of the first byte, a multiple of `PageSize`
        std::uint32_t length = 0;       ///< bytes held; 0 when the buffer holds nothing

        bool Holds(std::uint32_t offset) const { return offset - base < length; }
    };

    std::string_view TurnTo(std::uint32_t offset);
    bool StandsAt(std::uint32_t offset, std::string_view text);

    std::unique_ptr<files::FileReader> file;  ///< null when closed
    Page current;                             ///< the buffer that is read from
    Page other;
    std::uint32_t fileSize = 0;
    bool readFailed = false;
};

}  // namespace generalutilities
