// The dialect translator on any text, and SQLite's compiler on what it lets through.
// Whatever passes must hold one parameter a literal and be text that SQLite either compiles or
// refuses.

#include "platform/database/sqlite/dialect.h"

#include "text_input.h"

#include <sqlite3.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace generalutilities;
    static sqlite3* database = [] {
        sqlite3* opened = nullptr;
        sqlite3_open(":memory:", &opened);
        sqlite3_exec(opened, "CREATE TABLE Pairs (ID, Source, Target_1036, Status_1036, Done)",
                     nullptr, nullptr, nullptr);
        return opened;
    }();
    const std::u16string query = TextFrom(data, size);
    std::string problem;
    std::string expression;
    if (!sqlite::TranslateDefault(query, expression, problem)) {
        Require(!problem.empty());
    }
    sqlite::Translation translation;
    problem.clear();
    if (!sqlite::Translate(query, translation, problem)) {
        Require(!problem.empty());
        return 0;
    }
    Require(translation.text.find('\0') == std::string::npos);
    Require(translation.table.empty() || !translation.setColumn.empty() ||
            sqlite3_strnicmp(translation.text.c_str() + translation.fromOffset, "FROM ", 5) == 0);
    sqlite3_stmt* statement = nullptr;
    const char* rest = nullptr;
    if (sqlite3_prepare_v2(database, translation.text.c_str(), -1, &statement, &rest) ==
        SQLITE_OK) {
        // One statement, whole, whose parameters are the literals.
        Require(statement != nullptr && *rest == '\0');
        Require(sqlite3_bind_parameter_count(statement) ==
                static_cast<int>(translation.literals.size()));
    }
    sqlite3_finalize(statement);
    return 0;
}
