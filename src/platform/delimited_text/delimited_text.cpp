// The file goes to libcsv line by line, so that the line of every row is known without looking into
// the parser; the finished rows of a block wait in a queue.

#include "platform/delimited_text/delimited_text.h"

#include <generalutilities/error.h>

#include "platform/files/files.h"
#include "platform/files/utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <csv.h>
#include <deque>
#include <exception>
#include <new>
#include <utility>

namespace generalutilities::delimited_text {
namespace {

constexpr std::size_t BlockSize = 65536;
constexpr int RowNotBegun = 0;  // libcsv's state between two rows
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

class CsvReader final : public Reader {
  public:
    CsvReader(std::u16string_view path, const Format& format)
        : name(files::ToUtf8Lossy(path)), block(BlockSize) {
        file = files::OpenForReading(path);
        if (!file) {
            throw Error(ErrorFileNotFound, name + ": cannot be opened: " + std::strerror(errno));
        }
        if (csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI) != 0) {
            throw std::bad_alloc();
        }
        csv_set_blk_size(&parser, BlockSize);  // what a long cell's buffer grows by
        csv_set_delim(&parser, static_cast<unsigned char>(format.delimiter));
        // Without this libcsv cuts the blanks around a cell.
        csv_set_space_func(&parser, [](unsigned char) { return 0; });
        if (!format.quoted) {
            csv_set_quote(&parser, '\0');  // a byte that the reader refuses anyway
        }
        try {
            CountLines();
        } catch (...) {
            csv_free(&parser);
            throw;
        }
    }
    ~CsvReader() override { csv_free(&parser); }
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    bool Next(Row& next) override {
        while (finished.empty() && !atEnd) {
            ReadBlock();
        }
        if (finished.empty()) {
            return false;
        }
        next = std::move(finished.front());
        finished.pop_front();
        return true;
    }

    std::uint64_t RowsAtMost() const override { return lineCount; }

  private:
    /// Counts the line ends, and looks at the start of the file for a byte order mark.
    void CountLines() {
        lineCount = 1;
        for (std::uint64_t offset = 0;;) {
            const std::string_view bytes = ReadAt(offset);
            if (offset == 0) {
                CheckStart(bytes);
            }
            if (bytes.empty()) {
                return;
            }
            // A lone CR ends a row for libcsv; CR LF counts twice, which does no harm to a bound.
            lineCount +=
                static_cast<std::uint64_t>(std::count_if(bytes.begin(), bytes.end(), [](char byte) {
                    return byte == '\n' || byte == '\r';
                }));
            offset += bytes.size();
        }
    }

    void CheckStart(std::string_view bytes) {
        if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
            throw Error(ErrorInvalidData, name + ": the file is UTF-16; save it as UTF-8");
        }
        if (bytes.starts_with(ByteOrderMark)) {
            position = ByteOrderMark.size();
        }
    }

    std::string_view ReadAt(std::uint64_t offset) {
        std::size_t read = 0;
        if (!file->ReadAt(offset, block.data(), block.size(), read)) {
            throw Error(ErrorReadFault, name + ": cannot be read at byte offset " +
                                            std::to_string(offset) + ": " + std::strerror(errno));
        }
        return {block.data(), read};
    }

    void ReadBlock() {
        std::string_view bytes = ReadAt(position);
        position += bytes.size();
        if (bytes.empty()) {
            atEnd = true;
            const bool complete = csv_fini(&parser, &OnCell, &OnRow, this) == 0;
            RethrowPending();
            if (!complete) {
                throw Error(ErrorInvalidData,
                            Place(startLine) + ": a cell opens with a quote that nothing closes");
            }
        }
        while (!bytes.empty()) {
            const std::string_view piece =
                bytes.substr(0, std::min(bytes.find('\n'), bytes.size() - 1) + 1);
            if (parser.pstate == RowNotBegun) {
                startLine = line;
            }
            Parse(piece);
            line += piece.back() == '\n' ? 1 : 0;
            bytes.remove_prefix(piece.size());
        }
    }

    void Parse(std::string_view piece) {
        if (piece.find('\0') != std::string_view::npos) {
            throw Error(ErrorInvalidData, Place(line) + ": a zero byte; this is no text file");
        }
        const std::size_t parsed =
            csv_parse(&parser, piece.data(), piece.size(), &OnCell, &OnRow, this);
        RethrowPending();
        if (parsed == piece.size()) {
            return;
        }
        if (csv_error(&parser) != CSV_EPARSE) {
            throw std::bad_alloc();
        }
        throw Error(
            ErrorInvalidData,
            Place(line) + ", column " + std::to_string(row.cells.size() + 1) +
                ": a quote in the middle of a cell. Put the whole cell in quotes and double "
                "the ones inside, or read the table without quoting");
    }

    void RethrowPending() {
        if (pending) {
            std::rethrow_exception(std::exchange(pending, nullptr));
        }
    }

    std::string Place(std::uint64_t number) const {
        return name + ", line " + std::to_string(number);
    }

    // libcsv is C: what goes wrong in its calls waits until it has returned.
    static void OnCell(void* bytes, std::size_t length, void* self) {
        static_cast<CsvReader*>(self)->Guard([=](CsvReader& reader) {
            reader.AddCell({static_cast<char*>(bytes), length});
        });
    }
    static void OnRow(int, void* self) {
        static_cast<CsvReader*>(self)->Guard([](CsvReader& reader) {
            reader.row.line = reader.startLine;
            reader.finished.push_back(std::exchange(reader.row, Row()));
        });
    }
    template <class Work>
    void Guard(Work work) noexcept {
        if (pending) {
            return;
        }
        try {
            work(*this);
        } catch (...) {
            pending = std::current_exception();
        }
    }

    void AddCell(std::string_view bytes) {
        std::u16string text = files::FromUtf8(bytes);
        if (text.find(u'\uFFFD') != std::u16string::npos) {
            // U+FFFD may stand in the file, or for bytes that are no UTF-8: only the former comes
            // out as the same bytes again.
            const std::string again = files::ToUtf8Lossy(text);
            const auto [wrong, other] =
                std::mismatch(bytes.begin(), bytes.end(), again.begin(), again.end());
            if (wrong != bytes.end() || other != again.end()) {
                throw Error(ErrorInvalidData,
                            Place(line) + ", column " + std::to_string(row.cells.size() + 1) +
                                ", byte " + std::to_string(wrong - bytes.begin() + 1) +
                                " of the cell: not UTF-8; save the table as UTF-8");
            }
        }
        row.cells.push_back(std::move(text));
    }

    std::string name;  ///< for messages
    std::unique_ptr<files::FileReader> file;
    csv_parser parser = {};
    std::vector<char> block;
    std::uint64_t position = 0;
    std::uint64_t lineCount = 0;
    std::uint64_t line = 1;       ///< the line that is being parsed
    std::uint64_t startLine = 1;  ///< where the row being read began
    bool atEnd = false;
    Row row;                   ///< the row being read
    std::deque<Row> finished;  ///< rows of the current block
    std::exception_ptr pending;
};

}  // namespace

std::unique_ptr<Reader> Open(std::u16string_view path, const Format& format) {
    return std::make_unique<CsvReader>(path, format);
}

}  // namespace generalutilities::delimited_text
