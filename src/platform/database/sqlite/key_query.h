#pragma once

#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/dialect.h"
#include "platform/database/sqlite/table_shape.h"

#include <cstdint>
#include <string>
#include <vector>

/// Reading the rowids of a query's rows in their order, which fixes the membership of a dynaset.
namespace generalutilities::sqlite {

struct KeyQuery {
    std::string sql;
    int keyColumn = 0;

    /// Where an index gives the order but does not hold what the conditions ask for, the query
    /// above looks every row up at its place in the table, in the index's order. Two runs along the
    /// file do the same: one over the table, for the rows that meet the conditions, in any order,
    /// and one over the index alone, for the order. Both empty where one query does better.
    std::string membersSql;
    std::string orderSql;
};

/// The query for the keys of a SELECT of one table's rows.
KeyQuery MakeKeyQuery(Connection& connection, const Translation& query, const TableShape& shape);

/// Replaces `keys` by the rowids of the query's rows. False with a failure recorded.
bool ReadKeys(Connection& connection, const KeyQuery& query, const std::vector<Literal>& literals,
              std::vector<std::int64_t>& keys);

}  // namespace generalutilities::sqlite
