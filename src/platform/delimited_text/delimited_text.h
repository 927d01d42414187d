#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Tables of delimited text in UTF-8 (CSV, TSV), read row by row by libcsv.
namespace generalutilities::delimited_text {

struct Format {
    char delimiter = ',';
    /// Whether a cell may stand in double quotes, with a double one for each quote inside.
    bool quoted = true;
};

/// A row that holds at least one character. Blanks around a cell's text belong to it.
struct Row {
    std::uint64_t line = 0;  ///< where the row starts, counted from 1
    std::vector<std::u16string> cells;
};

/// Gives the rows of a file in order; memory holds one row and one block of the file.
class Reader {
  public:
    virtual ~Reader() = default;
    /// Fills in the next row; false behind the last one. Empty lines are passed over. Throws
    /// `Error` with file, line and column for text that is not UTF-8, holds U+0000, or is quoted
    /// wrongly.
    virtual bool Next(Row& row) = 0;
    /// A number of rows that the file does not exceed.
    virtual std::uint64_t RowsAtMost() const = 0;
};

/// Opens a file; a byte order mark of UTF-8 is passed over. Throws `Error`.
std::unique_ptr<Reader> Open(std::u16string_view path, const Format& format);

}  // namespace generalutilities::delimited_text
