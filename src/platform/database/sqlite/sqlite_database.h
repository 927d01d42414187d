#pragma once

#include <generalutilities/database.h>

#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/dialect.h"
#include "platform/database/sqlite/key_query.h"
#include "platform/database/sqlite/table_shape.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace generalutilities::sqlite {

/// A project in an SQLite file.
class SqliteDatabase final : public Database {
  public:
    explicit SqliteDatabase(std::shared_ptr<Connection> opened) : connection(std::move(opened)) {}

    std::unique_ptr<Recordset> OpenRecordset(std::u16string_view name, RecordsetType type) override;
    bool Execute(std::u16string_view query) override;
    bool BeginTrans() override;
    bool CommitTrans() override;
    bool Rollback() noexcept override;
    bool CreateTable(const TableDefinition& table) override;
    std::vector<std::u16string> TableNames() override;
    std::vector<std::u16string> ColumnNames(std::u16string_view table) override;
    const DatabaseFailure& LastFailure() const override { return connection->LastFailure(); }

    std::size_t StatementsIdle() const { return connection->StatementsIdle(); }

  private:
    /// What is known of a query by its text: where its rows come from, and how their keys are read.
    struct QueryPlan {
        std::shared_ptr<const TableShape> shape;  ///< null: the values are read at opening
        KeyQuery keys;
    };
    static constexpr std::size_t PlansKept = 64;

    std::unique_ptr<Recordset> OpenTable(std::u16string_view name);
    std::unique_ptr<Recordset> OpenQuery(std::u16string_view query);
    std::unique_ptr<Recordset> OpenDynaset(const QueryPlan& plan, const Translation& query);
    std::unique_ptr<Recordset> OpenSnapshot(const Translation& query);
    const QueryPlan* PlanOf(const Translation& query);
    QueryPlan MakePlan(const Statement& select, const Translation& query);
    bool TranslateOrFail(std::u16string_view query, Translation& translation);
    bool RunDefinition(std::string_view sql);
    std::vector<std::u16string> Names(std::string_view sql, std::string_view parameter);

    std::shared_ptr<Connection> connection;
    std::unordered_map<std::string, QueryPlan> plans;
};

}  // namespace generalutilities::sqlite
