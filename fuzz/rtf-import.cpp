// Rows of an RTF table: whatever the bytes are, the walk ends, and no more text comes out than the
// file has room for.

#include "extview/rtf/rtf_import.h"
#include "rtf/memory_file.h"

#include <cstdlib>

namespace {

class Import : public generalutilities::CRTFImport {
  public:
    explicit Import(std::string content) : file(std::move(content)) {}
    bool OpenFile() override {
        CRTFImport::OpenFile();
        return Open(generalutilities::testing::FileOf(file));
    }

  private:
    std::string file;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Import import(std::string(reinterpret_cast<const char*>(data), size));
    std::u16string id, source, target, comments;
    std::int32_t status = -1;
    std::size_t units = 0;
    if (import.OpenFile() && import.ReadHeader()) {
        while (import.NextRow(id, source, target, comments, status)) {
            units += id.size() + source.size() + target.size();
        }
    }
    import.CloseFile();
    if (units > size) {
        std::abort();
    }
    return 0;
}
