#include "platform/database/sqlite/value.h"

#include <algorithm>
#include <cstddef>

namespace generalutilities::sqlite {

namespace {

/// A copy with U+FFFD for each unpaired surrogate; empty when there is none.
std::u16string RepairSurrogates(std::u16string_view text) {
    std::u16string repaired;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((text[i] & 0xF800) != 0xD800) {
            continue;
        }
        const bool high = text[i] < 0xDC00;
        if (high && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00) {
            ++i;
            continue;
        }
        if (repaired.empty()) {
            repaired = text;
        }
        repaired[i] = 0xFFFD;
    }
    return repaired;
}

int Bind(sqlite3_stmt* statement, int parameter, std::u16string_view text,
         sqlite3_destructor_type lifetime) {
    // A null pointer would bind database null.
    const char16_t* units = text.data() != nullptr ? text.data() : u"";
    return sqlite3_bind_text64(statement, parameter, reinterpret_cast<const char*>(units),
                               text.size() * sizeof(char16_t), lifetime, SQLITE_UTF16);
}

bool Contains(std::string_view type, std::string_view upper) {
    const auto same = [](char a, char b) {
        return (a >= 'a' && a <= 'z' ? static_cast<char>(a - 0x20) : a) == b;
    };
    return std::search(type.begin(), type.end(), upper.begin(), upper.end(), same) != type.end();
}

}  // namespace

ColumnKind KindOfType(const char* declaredType) {
    const std::string_view type = declaredType != nullptr ? declaredType : "";
    if (Contains(type, "BOOLEAN") || Contains(type, "YESNO")) {
        return ColumnKind::YesNo;
    }
    if (Contains(type, "CHAR") || Contains(type, "TEXT") || Contains(type, "CLOB") ||
        Contains(type, "MEMO")) {
        return ColumnKind::Text;
    }
    return ColumnKind::Any;
}

int BindText(sqlite3_stmt* statement, int parameter, std::u16string_view text, bool utf8File) {
    std::u16string changed;
    if (utf8File) {
        changed = RepairSurrogates(text);
    }
    const std::u16string_view kept = changed.empty() ? text : std::u16string_view(changed);
    if (!kept.empty() && (kept.front() == 0xFEFF || kept.front() == 0xFFFE)) {
        // SQLite takes either for a byte order mark, which it obeys and removes: give it one of
        // ours.
        std::u16string marked = u"\uFEFF";
        marked += kept;
        return Bind(statement, parameter, marked, SQLITE_TRANSIENT);
    }
    return Bind(statement, parameter, kept, changed.empty() ? SQLITE_STATIC : SQLITE_TRANSIENT);
}

int BindField(sqlite3_stmt* statement, int parameter, const FieldValue& value, ColumnKind kind,
              bool utf8File) {
    const bool yesNo = kind == ColumnKind::YesNo;
    if (const auto* text = std::get_if<std::u16string_view>(&value)) {
        return BindText(statement, parameter, *text, utf8File);
    }
    if (const auto* flag = std::get_if<bool>(&value)) {
        return sqlite3_bind_int(statement, parameter, *flag ? -1 : 0);
    }
    if (const auto* number = std::get_if<std::int32_t>(&value)) {
        return sqlite3_bind_int(statement, parameter, yesNo && *number != 0 ? -1 : *number);
    }
    if (const auto* number = std::get_if<double>(&value)) {
        return yesNo ? sqlite3_bind_int(statement, parameter, *number != 0 ? -1 : 0)
                     : sqlite3_bind_double(statement, parameter, *number);
    }
    return sqlite3_bind_null(statement, parameter);
}

}  // namespace generalutilities::sqlite
