#include "extview/dao_table_builder.h"

#include "extview/transaction.h"

#include <utility>

namespace generalutilities {

namespace {

std::function<void(std::u16string_view)>& Output() {
    static std::function<void(std::u16string_view)> output;
    return output;
}

/// The failure in words and then where it comes from, a line each.
std::u16string Lines(const DatabaseFailure& failure) {
    return failure.description + u"\n" + failure.source + u"\n";
}

}  // namespace

void SetDebugOutput(std::function<void(std::u16string_view)> output) {
    Output() = std::move(output);
}

void DebugOutput(std::u16string_view text) {
    if (Output()) {
        Output()(text);
    }
}

void DaoTableBuilder::Attach(Database& opened) {
    database = &opened;
}

bool DaoTableBuilder::Create(std::u16string_view name, bool dropFirst) {
    table = {std::u16string(name), {}};
    if (database == nullptr) {
        return false;
    }
    if (dropFirst) {
        Transaction transaction(*database);
        if (!database->Execute(u"DROP TABLE " + table.name)) {
            DebugOutput(u"Error in dropping table:\n" + Lines(database->LastFailure()));
        }
        transaction.Commit();
    }
    return true;
}

void DaoTableBuilder::AddTextField(std::u16string_view name, std::u16string_view defaultValue) {
    table.fields.push_back(
        {std::u16string(name), FieldDefinition::Type::Text, std::u16string(defaultValue)});
}

void DaoTableBuilder::AddMemoField(std::u16string_view name, std::u16string_view defaultValue,
                                   bool allowZeroLength, bool compress) {
    table.fields.push_back({std::u16string(name), FieldDefinition::Type::LongText,
                            std::u16string(defaultValue), allowZeroLength, compress});
}

void DaoTableBuilder::AddBooleanField(std::u16string_view name, bool defaultValue) {
    table.fields.push_back({std::u16string(name), FieldDefinition::Type::YesNo, defaultValue});
}

void DaoTableBuilder::AddLongField(std::u16string_view name, std::int32_t defaultValue) {
    table.fields.push_back({std::u16string(name), FieldDefinition::Type::Long, defaultValue});
}

bool DaoTableBuilder::Commit() {
    const TableDefinition definition = std::exchange(table, {});
    if (database == nullptr) {
        return false;
    }
    if (!database->CreateTable(definition)) {
        DebugOutput(Lines(database->LastFailure()));
        return false;
    }
    return true;
}

}  // namespace generalutilities
