#include "platform/database/sqlite/row_block.h"

#include <cstring>
#include <limits>
#include <new>

namespace generalutilities::sqlite {

void RowBlock::Clear() {
    rowIds.clear();
    cells.clear();
    texts.clear();
}

void RowBlock::Append(std::int64_t rowId, sqlite3_stmt* statement, int firstColumn,
                      const std::vector<ColumnKind>& kinds, bool codeUnits) {
    width = kinds.size();
    for (std::size_t i = 0; i < width; ++i) {
        cells.push_back(Read(statement, firstColumn + static_cast<int>(i), kinds[i], codeUnits));
    }
    rowIds.push_back(rowId);
}

void RowBlock::AppendMissing(std::int64_t rowId, std::size_t columns) {
    width = columns;
    cells.resize(cells.size() + width);
    rowIds.push_back(rowId);
}

void RowBlock::DropBehind(std::size_t row) {
    rowIds.resize(row + 1);
    cells.resize((row + 1) * width);
}

bool RowBlock::Equals(std::size_t row, const RowBlock& other) const {
    for (std::size_t column = 0; column < width; ++column) {
        if (Get(row, column) != other.Get(0, column)) {
            return false;
        }
    }
    return true;
}

RowBlock::Cell RowBlock::ReadText(sqlite3_stmt* statement, int column, bool codeUnits) {
    // Asked for as a text, it would first be copied to get a zero behind it; as bytes it is not.
    const void* bytes = codeUnits ? sqlite3_column_blob(statement, column)
                                  : sqlite3_column_text16(statement, column);
    Cell cell;
    cell.type = Type::Text;
    cell.offset = texts.size();
    cell.length = static_cast<std::size_t>(codeUnits ? sqlite3_column_bytes(statement, column)
                                                     : sqlite3_column_bytes16(statement, column)) /
                  sizeof(char16_t);
    if (bytes == nullptr) {  // an empty text, or no memory
        if (cell.length > 0 || sqlite3_errcode(sqlite3_db_handle(statement)) == SQLITE_NOMEM) {
            throw std::bad_alloc();
        }
        return cell;
    }
    texts.resize(cell.offset + cell.length);
    std::memcpy(texts.data() + cell.offset, bytes, cell.length * sizeof(char16_t));
    return cell;
}

RowBlock::Cell RowBlock::Read(sqlite3_stmt* statement, int column, ColumnKind kind,
                              bool codeUnits) {
    Cell cell;
    const int type = sqlite3_column_type(statement, column);
    if (type == SQLITE_NULL || type == SQLITE_BLOB) {
        return cell;
    }
    if (kind == ColumnKind::YesNo) {
        cell.type = Type::Bool;
        cell.integer = sqlite3_column_double(statement, column) != 0 ? 1 : 0;
        return cell;
    }
    if (type == SQLITE_TEXT || kind == ColumnKind::Text) {
        return ReadText(statement, column, codeUnits && type == SQLITE_TEXT);
    }
    if (type == SQLITE_INTEGER) {
        const std::int64_t integer = sqlite3_column_int64(statement, column);
        if (integer >= std::numeric_limits<std::int32_t>::min() &&
            integer <= std::numeric_limits<std::int32_t>::max()) {
            cell.type = Type::Integer;
            cell.integer = static_cast<std::int32_t>(integer);
            return cell;
        }
    }
    cell.type = Type::Real;
    cell.real = sqlite3_column_double(statement, column);
    return cell;
}

FieldValue RowBlock::Get(std::size_t row, std::size_t column) const {
    const Cell& cell = cells[row * width + column];
    switch (cell.type) {
        case Type::Bool:
            return cell.integer != 0;
        case Type::Integer:
            return cell.integer;
        case Type::Real:
            return cell.real;
        case Type::Text:
            return std::u16string_view(texts.data() + cell.offset, cell.length);
        case Type::Null:
            break;
    }
    return std::monostate();
}

}  // namespace generalutilities::sqlite
