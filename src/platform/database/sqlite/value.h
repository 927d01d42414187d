#pragma once

#include <generalutilities/database.h>

#include <cstdint>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <variant>

/// Values on their way into a prepared statement, exact to the code unit.
namespace generalutilities::sqlite {

/// What a column's declared type says about its values.
enum class ColumnKind : std::uint8_t {
    Any,
    YesNo,  ///< BOOLEAN or YESNO: read as bool, written as -1 or 0
    Text,   ///< TEXT, CHAR, CLOB, MEMO ...: read as text, also where a number is stored
};

/// The kind of a declared type; a null type (an expression's) is `Any`.
ColumnKind KindOfType(const char* declaredType);

/// Binds a text that stays valid and unchanged until the statement has run. `utf8File` tells how
/// the file keeps texts: UTF-8 has no form for an unpaired surrogate, which there becomes U+FFFD.
int BindText(sqlite3_stmt* statement, int parameter, std::u16string_view text, bool utf8File);

/// Binds the value of a field of that kind; a text as `BindText` does.
int BindField(sqlite3_stmt* statement, int parameter, const FieldValue& value, ColumnKind kind,
              bool utf8File);

}  // namespace generalutilities::sqlite
