// The text is encoded straight into one buffer, and the buffer goes to the system whenever it is
// full. After a failure nothing more reaches the system but the closing of the file.

#include <generalutilities/text_file.h>

#include "platform/files/files.h"
#include "platform/text_file/encoders.h"

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <string>
#include <unistd.h>

namespace generalutilities {

namespace {

constexpr std::size_t BufferSize = std::size_t{256} * 1024;

class PosixTextFileStream final : public TextFileStream {
  public:
    // The buffer is made before the file is touched: without memory no file is emptied.
    explicit PosixTextFileStream(TextFileFormat textFormat)
        : format(textFormat), buffer(new char[BufferSize]) {}

    ~PosixTextFileStream() override { Close(); }

    bool Open(const std::string& path) {
        constexpr int ReadableByAll = 0666;  // less what the user's mask takes away
        do {
            file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, ReadableByAll);
        } while (file < 0 && errno == EINTR);
        return file >= 0;
    }

    bool Write(std::u16string_view text) override {
        if (file < 0) {
            return false;
        }
        while (!failed && !text.empty()) {
            const auto stretch = Encode(text);
            text.remove_prefix(stretch.units);
            used += stretch.bytes;
            if (!text.empty()) {
                Flush();
            }
        }
        return !failed;
    }

    bool Close() override {
        if (file >= 0) {
            if (BufferSize - used < text_file::MinimumRoom) {
                Flush();
            }
            used += utf8.Finish(buffer.get() + used);
            Flush();
            // Interrupted or not, the descriptor is gone after this call.
            if (close(file) != 0 && errno != EINTR) {
                failed = true;
            }
            file = -1;
        }
        return !failed;
    }

  private:
    text_file::EncodedStretch Encode(std::u16string_view text) {
        char* const room = buffer.get() + used;
        return format == TextFileFormat::Utf8
                   ? utf8.Encode(text, room, BufferSize - used)
                   : text_file::EncodeOneByte(text, room, BufferSize - used);
    }

    void Flush() {
        std::size_t written = 0;
        while (!failed && written < used) {
            const ssize_t count = write(file, buffer.get() + written, used - written);
            if (count >= 0) {
                written += static_cast<std::size_t>(count);
            } else if (errno != EINTR) {
                failed = true;
            }
        }
        used = 0;
    }

    const TextFileFormat format;
    const std::unique_ptr<char[]> buffer;
    std::size_t used = 0;
    text_file::Utf8Encoder utf8;
    int file = -1;
    bool failed = false;
};

class PosixTextFileFactory final : public TextFileFactory {
  public:
    std::unique_ptr<TextFileStream> OpenTextFile(std::u16string_view path,
                                                 TextFileFormat format) override {
        auto stream = std::make_unique<PosixTextFileStream>(format);
        if (!stream->Open(files::ToNativePath(path))) {
            return nullptr;
        }
        return stream;
    }
};

}  // namespace

std::unique_ptr<TextFileFactory> CreateTextFileFactory() {
    return std::make_unique<PosixTextFileFactory>();
}

}  // namespace generalutilities
