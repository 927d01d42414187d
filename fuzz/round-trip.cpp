// Out and home again: rows made of the input go through the export and, untouched, through the
// import, as a table or as a bilingual document. Whatever the texts are, every row comes back, and
// none counts as changed.
//
// Line ends come back in one form, CR LF from a table and LF from a document, so the rows are made
// with that form alone. In a document a backslash or brace behind a line end brings a blank with
// it, so that one stands there before; and only with the match value 0 the marks around an empty
// source are parted.

#include <generalutilities/extview/export_options.h>
#include <generalutilities/extview/segment_text.h>

#include "extview/rtf/rtf_import.h"
#include "extview/rtf/twb_import.h"
#include "extview/rtf_table_export.h"
#include "extview/twb_export.h"
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

    /// A text of up to 31 bytes with line ends of that form.
    std::u16string Text(std::u16string_view lineEnd) {
        const std::size_t length = std::min<std::size_t>(Byte() % 32, left);
        std::u16string text;
        for (const char16_t unit : TextFrom(data, length)) {
            text += unit == u'\r' || unit == u'\n' ? lineEnd : std::u16string_view(&unit, 1);
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

std::string exportedFile;

template <class Reader>
class Import final : public Reader {
  public:
    bool OpenFile() override {
        Reader::OpenFile();
        return this->Open(generalutilities::testing::FileOf(std::move(exportedFile)));
    }
};

/// Both are kept, as a host's object keeps them from job to job.
template <class Exporter, class Reader>
void OutAndHome(MemoryProject& project, std::int32_t language, std::int32_t options) {
    static Import<Reader> import;
    static Exporter exporter([] { return std::make_unique<BytesFactory>(exportedFile); });
    exportedFile.clear();
    Require(exporter.RunExport(project, u"out.rtf", AllFiles, language, options, {}, {}) == S_OK);
    Require(import.RunImport(project, u"out.rtf", language) == S_OK);
}

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
    const bool isDocument = (choices & 16) != 0;
    const std::u16string_view lineEnd = isDocument ? u"\n " : u"\r\n";
    while (!input.IsEmpty() && pairs.rows.size() < 3) {
        const std::int32_t status = input.Byte() << 8 | input.Byte();
        const std::string number = std::to_string(pairs.rows.size());
        const std::u16string source = input.Text(lineEnd);
        const std::int32_t percentage = StripCodeMarkers(source).empty() ? 0 : status % 102;
        pairs.rows.push_back({std::u16string(number.begin(), number.end()), source,
                              input.Text(lineEnd), status, input.Text(lineEnd), false, 1,
                              percentage});
    }

    std::int32_t options = ShowIdColumn;
    options |= (choices & 1) != 0 ? ShowStatusColumn | ShowStatusValue : 0;
    options |= (choices & 2) != 0 ? ColorAllRows | ColorStatusCell : 0;
    options |= (choices & 4) != 0 ? HideReadOnlyColumns : 0;
    const std::int32_t language = (choices & 8) != 0 ? 1025 : 1036;

    const auto outAndHome = isDocument ? OutAndHome<CExternalViewTWBExport, CTWBImport>
                                       : OutAndHome<CExternalViewRTFExport, CRTFImport>;
    outAndHome(project, language, options);

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
