#pragma once

#include "platform/database/sqlite/tokens.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// The parentheses and casts that keep a Jet expression's meaning under SQLite's precedence.
///
/// Jet binds, from tight to loose: sign; * and /; \; Mod; + and -; &. SQLite has || tightest and
/// puts
/// *, / and % on one level. So each \, Mod and & with its two operands is wrapped: `a \ b` becomes
/// `(CAST(a AS INTEGER) / CAST(b AS INTEGER))`, `a Mod b` becomes `(a % b)`, and `a & b`, in which
/// null counts as empty, becomes `(IFNULL(a,'') || IFNULL(b,''))`. Comparisons, And, Or, Not have
/// the same order on both sides and are left alone.
namespace generalutilities::sqlite {

/// What to write before and behind each token, from the outermost to the innermost and back.
class Insertions {
  public:
    void Reset(std::size_t tokenCount);
    void Before(std::size_t token, const char* text);
    void After(std::size_t token, const char* text);

    template <typename Write>
    void WriteBefore(std::size_t token, Write&& write) const {
        WriteList(first[2 * token], write);
    }
    template <typename Write>
    void WriteAfter(std::size_t token, Write&& write) const {
        WriteList(first[2 * token + 1], write);
    }

  private:
    static constexpr std::size_t None = SIZE_MAX;
    struct Entry {
        const char* text;
        std::size_t next;
    };

    template <typename Write>
    void WriteList(std::size_t entry, Write&& write) const {
        for (; entry != None; entry = entries[entry].next) {
            write(entries[entry].text);
        }
    }

    std::vector<Entry> entries;
    std::vector<std::size_t> first;  ///< per token the list before it and the list behind it
    std::vector<std::size_t> last;   ///< per token the end of the list behind it
};

/// Finds the operators of the expressions in `tokens` and fills `insertions`. A `Mod` that is an
/// operator becomes one with the symbol 'M'. Wrong syntax passes through: SQLite reports it.
void GroupOperators(std::u16string_view query, std::vector<Token>& tokens, Insertions& insertions);

}  // namespace generalutilities::sqlite
