#include "platform/database/sqlite/key_query.h"

#include "platform/database/sqlite/live_recordset.h"
#include "platform/files/utf8.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace generalutilities::sqlite {

namespace {

constexpr char Work[] = "Opening a query";

/// Whether a name that the query gives to a column is the name of another column of the table.
bool HidesColumn(Connection& connection, const TableShape& shape) {
    return std::any_of(shape.fields.begin(), shape.fields.end(), [&](const Field& field) {
        const std::string alias = files::ToUtf8Lossy(field.name);
        return sqlite3_stricmp(alias.c_str(), field.column.c_str()) != 0 &&
               sqlite3_table_column_metadata(connection.Handle(), "main", shape.name.c_str(),
                                             alias.c_str(), nullptr, nullptr, nullptr, nullptr,
                                             nullptr) == SQLITE_OK;
    });
}

/// SQLite's plan for a query, when it is one step; empty for any other.
std::string OnlyStep(Connection& connection, const std::string& sql) {
    const Statement plan = connection.TryPrepare("EXPLAIN QUERY PLAN " + sql);
    constexpr int Detail = 3;
    if (!plan || sqlite3_step(plan.Get()) != SQLITE_ROW) {
        return {};
    }
    const unsigned char* words = sqlite3_column_text(plan.Get(), Detail);
    std::string step = words != nullptr ? reinterpret_cast<const char*>(words) : "";
    return sqlite3_step(plan.Get()) == SQLITE_DONE ? step : std::string();
}

bool WalksAnIndex(const std::string& step, std::string_view how) {
    return step.starts_with("SCAN ") && step.find(how) != std::string::npos;
}

/// Whether rowids are in a list: a bit for each rowid of its range, unless the range has many more
/// than the list.
class Members {
  public:
    explicit Members(std::vector<std::int64_t> list) : rowIds(std::move(list)) {
        if (rowIds.empty()) {
            return;
        }
        // A table gives its rowids in ascending order, but a damaged one may not.
        if (!std::is_sorted(rowIds.begin(), rowIds.end())) {
            std::sort(rowIds.begin(), rowIds.end());
        }
        first = static_cast<std::uint64_t>(rowIds.front());
        constexpr std::uint64_t MostBitsPerRow = 64;
        const std::uint64_t range = static_cast<std::uint64_t>(rowIds.back()) - first;
        if (range / MostBitsPerRow < rowIds.size()) {
            bits.resize(static_cast<std::size_t>(range) + 1);
            for (const std::int64_t rowId : rowIds) {
                bits[static_cast<std::size_t>(static_cast<std::uint64_t>(rowId) - first)] = true;
            }
            rowIds = {};
        }
    }

    bool Contains(std::int64_t rowId) const {
        if (bits.empty()) {
            return std::binary_search(rowIds.begin(), rowIds.end(), rowId);
        }
        // The difference of a rowid below the first one wraps, far behind the range.
        const std::uint64_t distance = static_cast<std::uint64_t>(rowId) - first;
        return distance < bits.size() && bits[static_cast<std::size_t>(distance)];
    }

  private:
    std::vector<std::int64_t> rowIds;
    std::vector<bool> bits;
    std::uint64_t first = 0;
};

template <typename Take>
bool ReadRowIds(Connection& connection, const std::string& sql, int column,
                const std::vector<Literal>& literals, Take&& take) {
    const Statement statement = connection.Prepare(sql, Work);
    if (!statement || !connection.Bind(statement, literals, Work)) {
        return false;
    }
    Step step;
    while ((step = connection.Next(statement, Work)) == Step::Row) {
        take(sqlite3_column_int64(statement.Get(), column));
    }
    return step == Step::Done;
}

}  // namespace

KeyQuery MakeKeyQuery(Connection& connection, const Translation& query, const TableShape& shape) {
    KeyQuery keys;
    const bool isOrdered = query.orderOffset != 0;
    const std::string select = "SELECT " + shape.rowId + " ";
    // Not in the order of whatever index happens to hold all that the keys need.
    const std::string byRowId = " ORDER BY " + shape.rowId;
    const std::string tail = query.text.substr(query.fromOffset) + (isOrdered ? "" : byRowId);
    keys.sql = select + tail;
    // The keys alone are cheapest. But an ORDER BY may name a column by its position or by its
    // alias, and then the columns have to be there.
    if (query.ordersByPosition || HidesColumn(connection, shape) ||
        !connection.TryPrepare(keys.sql)) {
        keys.keyColumn = static_cast<int>(shape.fields.size());
        keys.sql = query.text.substr(0, query.fromOffset) + ", " + shape.rowId + " " + tail;
        return keys;
    }
    if (!isOrdered || query.whereOffset == 0) {
        return keys;
    }
    const auto between = [&](std::size_t begin, std::size_t end) {
        return query.text.substr(begin, end - begin);
    };
    const std::string order = select + between(query.fromOffset, query.whereOffset) +
                              query.text.substr(query.orderOffset);
    if (WalksAnIndex(OnlyStep(connection, keys.sql), " USING INDEX ") &&
        WalksAnIndex(OnlyStep(connection, order), " USING COVERING INDEX ")) {
        keys.membersSql = select + between(query.fromOffset, query.orderOffset) + byRowId;
        keys.orderSql = order;
    }
    return keys;
}

bool ReadKeys(Connection& connection, const KeyQuery& query, const std::vector<Literal>& literals,
              std::vector<std::int64_t>& keys) {
    keys.clear();
    const auto take = [&keys](std::int64_t rowId) { keys.push_back(rowId); };
    bool done = false;
    if (query.orderSql.empty()) {
        done = ReadRowIds(connection, query.sql, query.keyColumn, literals, take);
    } else {
        const ReadSpan span(connection);  // both runs see one state of the file
        std::vector<std::int64_t> inTable;
        done = ReadRowIds(connection, query.membersSql, 0, literals,
                          [&](std::int64_t rowId) { inTable.push_back(rowId); });
        const std::size_t count = inTable.size();
        const Members members(std::move(inTable));
        keys.reserve(count);
        done = done && ReadRowIds(connection, query.orderSql, 0, literals, [&](std::int64_t rowId) {
                   if (members.Contains(rowId)) {
                       keys.push_back(rowId);
                   }
               });
    }
    keys.shrink_to_fit();
    return done;
}

}  // namespace generalutilities::sqlite
