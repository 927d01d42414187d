#include "platform/database/sqlite/sqlite_database.h"

#include "platform/database/sqlite/dynaset.h"
#include "platform/database/sqlite/snapshot.h"
#include "platform/database/sqlite/table_recordset.h"
#include "platform/database/sqlite/tokens.h"
#include "platform/database/sqlite/unchanged_rows.h"
#include "platform/files/utf8.h"

#include <optional>
#include <utility>
#include <variant>

namespace generalutilities::sqlite {

namespace {

using Kind = DatabaseFailure::Kind;

constexpr char OpenWork[] = "Opening a query";
constexpr char ExecuteWork[] = "Running a query";
constexpr char SchemaWork[] = "Reading the structure of the project";

/// The name of a table as it may be handed in, without brackets.
std::u16string_view WithoutBrackets(std::u16string_view name) {
    const bool bracketed = name.size() > 2 && name.front() == u'[' && name.back() == u']';
    return bracketed ? name.substr(1, name.size() - 2) : name;
}

bool IsSelect(std::u16string_view text) {
    const std::size_t start = text.find_first_not_of(u" \t\r\n");
    return start != std::u16string_view::npos && text.size() - start > 6 &&
           IsWord(text.substr(start, 6), "SELECT");
}

const char* TypeName(FieldDefinition::Type type) {
    switch (type) {
        case FieldDefinition::Type::YesNo:
            return "YESNO";
        case FieldDefinition::Type::Long:
            return "INTEGER";
        case FieldDefinition::Type::Text:
            return "TEXT";
        case FieldDefinition::Type::LongText:
            return "LONGTEXT";
    }
    return "TEXT";
}

/// The column's definition for CREATE TABLE; nothing if its name or default cannot be written.
std::optional<std::string> ColumnSql(const FieldDefinition& field, std::string& problem) {
    const std::optional<std::string> name = files::ToUtf8(field.name);
    if (!name || name->find('\0') != std::string::npos) {
        problem = "a field name that is no well-formed text";
        return std::nullopt;
    }
    std::string sql = QuoteName(*name) + " " + TypeName(field.type);
    std::string text = field.type == FieldDefinition::Type::YesNo ? "0" : "";
    if (const auto* flag = std::get_if<bool>(&field.defaultValue)) {
        text = *flag ? "-1" : "0";
    } else if (const auto* number = std::get_if<std::int32_t>(&field.defaultValue)) {
        text = std::to_string(*number);
    } else if (const auto* expression = std::get_if<std::u16string>(&field.defaultValue)) {
        if (!TranslateDefault(*expression, text, problem)) {
            return std::nullopt;
        }
    }
    if (!text.empty()) {
        sql += " DEFAULT " + text;
    }
    if (!field.allowZeroLength) {
        sql += " CHECK (" + QuoteName(*name) + " <> '')";
    }
    return sql;
}

}  // namespace

bool SqliteDatabase::TranslateOrFail(std::u16string_view query, Translation& translation) {
    std::string problem;
    return Translate(query, translation, problem) ||
           connection->Fail(Kind::Query, "The query cannot be understood: " + problem + ".");
}

std::unique_ptr<Recordset> SqliteDatabase::OpenRecordset(std::u16string_view name,
                                                         RecordsetType type) {
    return connection->Guard([&]() -> std::unique_ptr<Recordset> {
        if (type == RecordsetType::Table) {
            return OpenTable(WithoutBrackets(name));
        }
        if (IsSelect(name)) {
            return OpenQuery(name);
        }
        return OpenQuery(u"SELECT * FROM [" + std::u16string(WithoutBrackets(name)) + u"]");
    });
}

std::unique_ptr<Recordset> SqliteDatabase::OpenTable(std::u16string_view name) {
    const std::string table = files::ToUtf8Lossy(name);
    const Statement select =
        connection->Prepare("SELECT * FROM " + QuoteName(table), "Opening a table");
    if (!select) {
        return nullptr;
    }
    std::shared_ptr<const TableShape> shape = ShapeOf(*connection, select, table);
    if (!shape) {
        connection->Fail(Kind::Other,
                         "\"" + table + "\" cannot be opened as a table: it is none with rowids.");
        return nullptr;
    }
    auto recordset = std::make_unique<TableRecordset>(connection, std::move(shape));
    if (!recordset->MoveFirst() && !recordset->Bof()) {
        return nullptr;
    }
    return recordset;
}

std::unique_ptr<Recordset> SqliteDatabase::OpenQuery(std::u16string_view query) {
    Translation translation;
    if (!TranslateOrFail(query, translation)) {
        return nullptr;
    }
    const QueryPlan* plan = PlanOf(translation);
    if (plan == nullptr) {
        return nullptr;
    }
    return plan->shape ? OpenDynaset(*plan, translation) : OpenSnapshot(translation);
}

const SqliteDatabase::QueryPlan* SqliteDatabase::PlanOf(const Translation& query) {
    const auto known = plans.find(query.text);
    if (known != plans.end()) {
        return &known->second;
    }
    const Statement select = connection->Prepare(query.text, OpenWork);
    if (!select) {
        return nullptr;
    }
    if (plans.size() >= PlansKept) {
        plans.clear();
    }
    return &plans.emplace(query.text, MakePlan(select, query)).first->second;
}

SqliteDatabase::QueryPlan SqliteDatabase::MakePlan(const Statement& select,
                                                   const Translation& query) {
    QueryPlan plan;
    if (query.table.empty()) {
        return plan;
    }
    const std::shared_ptr<TableShape> shape = ShapeOf(*connection, select, query.table);
    if (!shape) {
        return plan;
    }
    plan.keys = MakeKeyQuery(*connection, query, *shape);
    plan.shape = shape;
    return plan;
}

std::unique_ptr<Recordset> SqliteDatabase::OpenDynaset(const QueryPlan& plan,
                                                       const Translation& query) {
    std::vector<std::int64_t> keys;
    if (!ReadKeys(*connection, plan.keys, query.literals, keys)) {
        return nullptr;
    }
    return std::make_unique<Dynaset>(connection, plan.shape, std::move(keys));
}

std::unique_ptr<Recordset> SqliteDatabase::OpenSnapshot(const Translation& query) {
    const Statement statement = connection->Prepare(query.text, OpenWork);
    if (!statement || !connection->Bind(statement, query.literals, OpenWork)) {
        return nullptr;
    }
    std::vector<Field> fields = FieldsOf(statement);
    std::vector<ColumnKind> kinds;
    kinds.reserve(fields.size());
    for (const Field& field : fields) {
        kinds.push_back(field.kind);
    }
    RowBlock rows;
    Step step;
    while ((step = connection->Next(statement, OpenWork)) == Step::Row) {
        rows.Append(0, statement.Get(), 0, kinds, connection->KeepsCodeUnits());
    }
    if (step == Step::Failed) {
        return nullptr;
    }
    return std::make_unique<Snapshot>(connection, std::move(fields), std::move(rows));
}

bool SqliteDatabase::Execute(std::u16string_view query) {
    return connection->Guard([&] {
        Translation translation;
        if (!connection->MayWrite() || !TranslateOrFail(query, translation)) {
            return false;
        }
        if (translation.kind == Translation::Kind::Select) {
            return connection->Fail(Kind::Query, "A SELECT is opened, not executed.");
        }
        if (translation.kind == Translation::Kind::Definition) {
            return RunDefinition(translation.text);
        }
        const Statement statement =
            connection->Prepare(SkipUnchangedRows(*connection, translation), ExecuteWork);
        return statement && connection->Bind(statement, translation.literals, ExecuteWork) &&
               connection->Run(statement, ExecuteWork);
    });
}

bool SqliteDatabase::RunDefinition(std::string_view sql) {
    plans.clear();
    return connection->Run(sql, ExecuteWork);
}

bool SqliteDatabase::BeginTrans() {
    return connection->Guard([&] { return connection->BeginTrans(); });
}

bool SqliteDatabase::CommitTrans() {
    return connection->Guard([&] { return connection->CommitTrans(); });
}

bool SqliteDatabase::Rollback() noexcept {
    plans.clear();  // The structure of a table may be the earlier one again.
    return connection->Rollback();
}

bool SqliteDatabase::CreateTable(const TableDefinition& table) {
    return connection->Guard([&] {
        if (!connection->MayWrite()) {
            return false;
        }
        std::string problem;
        std::string columns;
        const std::optional<std::string> name = files::ToUtf8(table.name);
        if (!name || name->find('\0') != std::string::npos) {
            return connection->Fail(Kind::Query, "A table name that is no well-formed text.");
        }
        for (const FieldDefinition& field : table.fields) {
            const std::optional<std::string> column = ColumnSql(field, problem);
            if (!column) {
                return connection->Fail(
                    Kind::Query, "The table \"" + *name + "\" cannot be created: " + problem + ".");
            }
            columns += (columns.empty() ? "" : ", ") + *column;
        }
        return RunDefinition("CREATE TABLE " + QuoteName(*name) + " (" + columns + ")");
    });
}

std::vector<std::u16string> SqliteDatabase::TableNames() {
    return Names(
        "SELECT name FROM sqlite_schema WHERE type = 'table' AND substr(name, 1, 7) <> 'sqlite_' "
        "ORDER BY name",
        {});
}

std::vector<std::u16string> SqliteDatabase::ColumnNames(std::u16string_view table) {
    return Names("SELECT name FROM pragma_table_info(?1) ORDER BY cid",
                 files::ToUtf8Lossy(WithoutBrackets(table)));
}

std::vector<std::u16string> SqliteDatabase::Names(std::string_view sql,
                                                  std::string_view parameter) {
    return connection->Guard([&] {
        std::vector<std::u16string> names;
        const Statement statement = connection->Prepare(sql, SchemaWork);
        if (!statement) {
            return names;
        }
        if (!parameter.empty()) {
            BindName(statement, 1, parameter);
        }
        const std::vector<ColumnKind> kinds = {ColumnKind::Text};
        while (connection->Next(statement, SchemaWork) == Step::Row) {
            RowBlock row;
            row.Append(0, statement.Get(), 0, kinds, connection->KeepsCodeUnits());
            const FieldValue value = row.Get(0, 0);
            if (const auto* text = std::get_if<std::u16string_view>(&value)) {
                names.emplace_back(*text);
            }
        }
        return names;
    });
}

}  // namespace generalutilities::sqlite
