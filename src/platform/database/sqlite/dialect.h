#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// Queries in the Jet dialect, made into SQLite's.
///
/// Literals become the parameters ?1, ?2 ..., so that queries that differ in a key alone share one
/// prepared statement, and so that a text stays exact whatever units it holds. Numbers stay in the
/// text where SQLite gives a bare number a meaning of its own (ORDER BY 2, GROUP BY 1), and every
/// literal does in a definition (CREATE, ALTER), which takes no parameters.
namespace generalutilities::sqlite {

using Literal = std::variant<std::int64_t, double, std::u16string>;

struct Translation {
    enum class Kind { Select, Change, Definition };

    Kind kind = Kind::Select;
    std::string text;               ///< SQL of SQLite in UTF-8
    std::vector<Literal> literals;  ///< the values of ?1, ?2, ...

    /// For a SELECT whose rows are those of one named table (no DISTINCT, grouping, union or join):
    /// the table's name, and where in `text` its clauses begin. Otherwise the name is empty.
    std::string table;
    std::size_t fromOffset = 0;
    std::size_t whereOffset = 0;    ///< 0 without a WHERE
    std::size_t orderOffset = 0;    ///< 0 without an ORDER BY of the SELECT itself
    bool ordersByPosition = false;  ///< ORDER BY or GROUP BY holds a number

    /// For `UPDATE table SET column = number`, with a WHERE or without: the two names, `table` and
    /// this one, and where in `text` the number, ?1, ends. Otherwise the name is empty.
    std::string setColumn;
    std::size_t setEnd = 0;
};

/// False for a text that is no query of the dialect, with the reason and its place in `problem`.
bool Translate(std::u16string_view query, Translation& translation, std::string& problem);

/// The expression of a column's default, as SQLite's: a literal, True, False, Null, or nothing at
/// all, which gives an empty result.
bool TranslateDefault(std::u16string_view expression, std::string& text, std::string& problem);

/// `name` between double quotes, as SQLite takes any name.
std::string QuoteName(std::string_view name);

}  // namespace generalutilities::sqlite
