// Tables of delimited text as the inputs of a project. The first byte chooses delimiter, quoting
// and the form of the texts; the rest is the file. Every row must be whole, or an error must name
// it.

#include <generalutilities/error.h>
#include <generalutilities/project/inputs.h>

#include "platform/files/utf8.h"
#include "text_input.h"

#include <sys/mman.h>
#include <unistd.h>

using namespace generalutilities;

namespace {

/// A file in memory that has a path.
class MemoryFile {
  public:
    MemoryFile(const std::uint8_t* data, std::size_t size) : descriptor(memfd_create("table", 0)) {
        Require(descriptor >= 0);
        Require(write(descriptor, data, size) == static_cast<ssize_t>(size));
    }
    ~MemoryFile() { close(descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::u16string Path() const {
        return files::FromUtf8("/proc/self/fd/" + std::to_string(descriptor));
    }

  private:
    int descriptor;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const MemoryFile file(data + 1, size - 1);
    DelimitedInput input;
    input.path = file.Path();
    input.delimiter = (data[0] & 1) != 0 ? '\t' : ',';
    input.quoted = (data[0] & 2) == 0;
    input.textForm = static_cast<TextForm>(data[0] / 4 % 3);
    input.language = 1036;
    try {
        const auto source = OpenDelimitedInput(input);
        std::uint64_t count = 0;
        for (NewProjectRow row; source->Next(row); ++count) {
            Require(!row.source.empty() && !row.place.empty());
            Require(row.translations.size() == source->Languages().size());
        }
        Require(count <= source->RowsAtMost());
    } catch (const Error& error) {
        Require(std::string(error.what()).find("/proc/self/fd/") == 0);
    }
    return 0;
}
