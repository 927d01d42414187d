// Out and home again: rows made of the input go through the export and, untouched, through the
// import. Whatever the texts are, every row comes back, and none counts as changed.
//
// A text's line ends come back as CR LF, so the rows are made without a CR or an LF of its own.

#include <generalutilities/extview/export_options.h>
#include <generalutilities/extview/segment_text.h>

#include "extview/rtf/rtf_import.h"
#include "extview/rtf_table_export.h"
#include "memory_project.h"
#include "rtf/memory_file.h"
#include "text_input.h"

#include <algorithm>

using namespace generalutilities;
using fuzz::MemoryProject;

namespace {

class Input {
  public:
    Input(const std::uint8_t* bytes, std::size_t size) : data(bytes), left(size) {}
    bool IsEmpty() const { return left == 0; }
    std::uint8_t Byte() { return left == 0 ? std::uint8_t{0} : (--left, *data++); }

    /// A text of up to 31 bytes, as the road can carry it: its line ends are whole.
    std::u16string Text() {
        const std::size_t length = std::min<std::size_t>(Byte() % 32, left);
        std::u16string text;
        for (const char16_t unit : TextFrom(data, length)) {
            text += unit == u'\r' || unit == u'\n' ? u"\r\n" : std::u16string_view(&unit, 1);
        }
        data += length;
        left -= length;
        return text;
    }

  private:
    const std::uint8_t* data;
    std::size_t left;
};

/// Keeps the file as bytes, the way the built-in stream of one byte a unit writes it.
class BytesFactory final : public TextFileFactory {
  public:
    explicit BytesFactory(std::string& kept) : bytes(kept) {}
    std::unique_ptr<TextFileStream> OpenTextFile(std::u16string_view, TextFileFormat) override {
        return std::make_unique<Stream>(bytes);
    }

  private:
    class Stream final : public TextFileStream {
      public:
        explicit Stream(std::string& kept) : bytes(kept) {}
        bool Write(std::u16string_view text) override {
            char16_t all = 0;
            for (const char16_t unit : text) {
                all |= unit;
            }
            Require(all < 0x80);
            bytes.append(text.begin(), text.end());
            return true;
        }
        bool Close() override { return true; }

      private:
        std::string& bytes;
    };
    std::string& bytes;
};

class Import final : public CRTFImport {
  public:
    bool OpenFile() override {
        CRTFImport::OpenFile();
        return Open(generalutilities::testing::FileOf(std::move(file)));
    }
    std::string file;
};

const std::u16string& TextAt(const MemoryProject::Row& row, std::size_t column) {
    return std::get<std::u16string>(row[column]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::uint8_t choices = input.Byte();
    MemoryProject project;
    MemoryProject::Table& pairs = project.Add(
        {u"Pairs",
         {u"ID", u"Source", u"Target", u"Status", u"Comments", u"Done", u"FileID", u"Percentage"},
         MemoryProject::Row(8),
         {}});
    while (!input.IsEmpty() && pairs.rows.size() < 3) {
        const std::int32_t status = input.Byte() << 8 | input.Byte();
        const std::string number = std::to_string(pairs.rows.size());
        pairs.rows.push_back({std::u16string(number.begin(), number.end()), input.Text(),
                              input.Text(), status, input.Text(), false, 1, 0});
    }

    std::int32_t options = ShowIdColumn;
    options |= (choices & 1) != 0 ? ShowStatusColumn | ShowStatusValue : 0;
    options |= (choices & 2) != 0 ? ColorAllRows | ColorStatusCell : 0;
    options |= (choices & 4) != 0 ? HideReadOnlyColumns : 0;
    const std::int32_t language = (choices & 8) != 0 ? 1025 : 1036;

    // Both are kept, as a host's object keeps them from job to job.
    static Import import;
    static CExternalViewRTFExport exported(
        [] { return std::make_unique<BytesFactory>(import.file); });
    import.file.clear();
    exported.sourceFont = exported.targetFont = u"Tahoma";
    Require(exported.RunExport(project, u"out.rtf", AllFiles, language, options, {}, {}) == S_OK);
    Require(import.RunImport(project, u"out.rtf", language) == S_OK);

    const MemoryProject::Table* const back = project.Find(u"Reimporting");
    Require(back != nullptr && back->rows.size() == pairs.rows.size());
    for (std::size_t i = 0; i < pairs.rows.size(); ++i) {
        const MemoryProject::Row& stored = pairs.rows[i];
        const MemoryProject::Row& row = back->rows[i];
        Require(TextAt(row, 0) == TextAt(stored, 0));
        Require(TextAt(row, 2) == StripCodeMarkers(TextAt(stored, 1)));
        Require(TextAt(row, 5) == StripCodeMarkers(TextAt(stored, 2)));
        Require(!std::get<bool>(row[3]) && !std::get<bool>(row[6]));
        Require(TextAt(row, 7) == TextAt(stored, 4));
        Require(std::get<std::int32_t>(row[9]) == std::get<std::int32_t>(stored[3]));
    }
    return 0;
}
