#pragma once

#include <generalutilities/database.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace generalutilities::fuzz {

/// A project in memory, as a host's own engine would hand it over: the tables that were created,
/// no indexes but a search from the top, and queries that give all rows of `Pairs`. It makes a way
/// out and back cost microseconds, so that millions of them can be tried.
class MemoryProject final : public Database {
  public:
    using Value = std::variant<std::monostate, bool, std::int32_t, double, std::u16string>;
    using Row = std::vector<Value>;

    struct Table {
        std::u16string name;
        std::vector<std::u16string> columns;
        Row defaults;
        std::vector<Row> rows;
    };

    /// The table, or null.
    Table* Find(std::u16string_view name) {
        const auto found = std::find_if(tables.begin(), tables.end(),
                                        [&](const Table& table) { return table.name == name; });
        return found != tables.end() ? &*found : nullptr;
    }
    Table& Add(Table table) { return tables.emplace_back(std::move(table)); }

    std::unique_ptr<Recordset> OpenRecordset(std::u16string_view name,
                                             RecordsetType type) override {
        const bool query = type == RecordsetType::Dynaset;
        if (query && name.find(u" FROM Pairs ") == name.npos) {
            return nullptr;
        }
        Table* const table = Find(query ? std::u16string_view(u"Pairs") : name);
        return table != nullptr ? std::make_unique<Rows>(*table) : nullptr;
    }
    bool Execute(std::u16string_view query) override {
        if (query == u"DROP TABLE Reimporting") {
            return std::erase_if(
                       tables, [](const Table& table) { return table.name == u"Reimporting"; }) > 0;
        }
        return true;
    }
    bool BeginTrans() override { return true; }
    bool CommitTrans() override { return true; }
    bool Rollback() noexcept override { return true; }
    bool CreateTable(const TableDefinition& definition) override {
        Table table{definition.name, {}, {}, {}};
        for (const FieldDefinition& field : definition.fields) {
            table.columns.push_back(field.name);
            Value value;
            if (const auto* flag = std::get_if<bool>(&field.defaultValue)) {
                value = *flag;
            } else if (const auto* number = std::get_if<std::int32_t>(&field.defaultValue)) {
                value = *number;
            }
            table.defaults.push_back(std::move(value));
        }
        Add(std::move(table));
        return true;
    }
    std::vector<std::u16string> TableNames() override { return {}; }
    std::vector<std::u16string> ColumnNames(std::u16string_view) override { return {}; }
    const DatabaseFailure& LastFailure() const override { return failure; }

  private:
    class Rows final : public Recordset {
      public:
        explicit Rows(Table& of) : table(of), added(of.defaults) {}

        bool Bof() override { return table.rows.empty(); }
        bool Eof() override { return current >= table.rows.size(); }
        std::int32_t RecordCount() override { return static_cast<std::int32_t>(table.rows.size()); }
        bool MoveFirst() override { return MoveTo(0); }
        bool MoveLast() override { return MoveTo(std::max<std::size_t>(table.rows.size(), 1) - 1); }
        bool MoveNext() override { return !Eof() && (MoveTo(current + 1), true); }

        /// Columns are known by their names without the language: "Target" stands for
        /// "Target_1036".
        std::optional<int> FieldIndex(std::u16string_view name) override {
            const std::u16string_view bare = name.substr(0, name.find(u'_'));
            const auto found = std::find(table.columns.begin(), table.columns.end(), bare);
            return found != table.columns.end()
                       ? std::optional(static_cast<int>(found - table.columns.begin()))
                       : std::nullopt;
        }
        FieldValue GetValue(int field) override {
            if (Eof()) {
                return {};
            }
            return std::visit(
                [](const auto& value) -> FieldValue {
                    if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::u16string>) {
                        return std::u16string_view(value);
                    } else {
                        return value;
                    }
                },
                table.rows[current][static_cast<std::size_t>(field)]);
        }
        bool AddNew() override {
            added = table.defaults;
            return true;
        }
        bool Edit() override { return false; }
        bool PutValue(int field, const FieldValue& value) override {
            added[static_cast<std::size_t>(field)] = std::visit(
                [](const auto& given) -> Value {
                    if constexpr (std::is_same_v<std::decay_t<decltype(given)>,
                                                 std::u16string_view>) {
                        return std::u16string(given);
                    } else {
                        return given;
                    }
                },
                value);
            return true;
        }
        bool Update() override {
            table.rows.push_back(std::move(added));
            return true;
        }
        bool SetIndex(std::u16string_view) override { return true; }
        bool Seek(std::u16string_view key) override {
            for (current = 0; current < table.rows.size(); ++current) {
                const auto* id = std::get_if<std::u16string>(&table.rows[current][0]);
                if (id != nullptr && *id == key) {
                    break;
                }
            }
            return true;
        }
        bool NoMatch() override { return Eof(); }

      private:
        bool MoveTo(std::size_t row) {
            current = row;
            return !Eof();
        }

        Table& table;
        Row added;
        std::size_t current = 0;
    };

    std::deque<Table> tables;  // recordsets hold their addresses
    DatabaseFailure failure;
};

}  // namespace generalutilities::fuzz
