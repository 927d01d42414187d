#pragma once

#include <generalutilities/database.h>

#include "database/temporary_folder.h"
#include "platform/files/utf8.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace generalutilities {

/// A small project in a file of its own: `Pairs` with the index iID, `Files`, no rows.
class ProjectTest : public testing::Test {
  protected:
    ProjectTest() : path(folder.Path(u"project.gu")) { CreateAnew(); }

    void CreateAnew() {
        database.reset();
        std::filesystem::remove(path);
        database = Open(path, OpenMode::Create);
        Run(u"CREATE TABLE Pairs (ID TEXT(50), Source MEMO, Source2Index TEXT(50), "
            u"Target_1036 MEMO, Status_1036 LONG, Done YESNO, FileID LONG, Selected BOOLEAN)");
        Run(u"CREATE INDEX iID ON Pairs (ID)");
        Run(u"CREATE TABLE Files (ID LONG, FileName TEXT)");
    }

    static std::unique_ptr<Database> Open(std::u16string_view file,
                                          OpenMode mode = OpenMode::ReadWrite) {
        DatabaseFailure failure;
        auto opened = OpenDatabase(file, mode, failure);
        EXPECT_TRUE(opened) << files::ToUtf8Lossy(failure.description);
        return opened;
    }

    void Run(std::u16string_view query) {
        ASSERT_TRUE(database->Execute(query)) << files::ToUtf8Lossy(query) << ": " << Words();
    }

    /// Rows with the IDs r1, r2, ... and numbers as status.
    void AddRows(int count) {
        ASSERT_TRUE(database->BeginTrans());
        const auto table = database->OpenRecordset(u"Pairs", RecordsetType::Table);
        for (int i = 1; i <= count; ++i) {
            table->AddNew();
            table->PutValue(*table->FieldIndex(u"ID"), u"r" + Decimal(i));
            table->PutValue(*table->FieldIndex(u"Source"), u"source " + Decimal(i));
            table->PutValue(*table->FieldIndex(u"Status_1036"), i);
            table->PutValue(*table->FieldIndex(u"Done"), false);
            ASSERT_TRUE(table->Update()) << Words();
        }
        ASSERT_TRUE(database->CommitTrans());
    }

    std::unique_ptr<Recordset> Query(std::u16string_view query) {
        auto opened = database->OpenRecordset(query, RecordsetType::Dynaset);
        EXPECT_TRUE(opened) << files::ToUtf8Lossy(query) << ": " << Words();
        return opened;
    }

    /// The value of the first field of a query's first row.
    FieldValue Value(std::u16string_view query) {
        latest = Query(query);
        return latest ? latest->GetValue(0) : FieldValue();
    }

    std::string Words() const { return files::ToUtf8Lossy(database->LastFailure().description); }
    DatabaseFailure::Kind FailureKind() const { return database->LastFailure().kind; }

    static std::u16string Decimal(int number) {
        const std::string digits = std::to_string(number);
        return std::u16string(digits.begin(), digits.end());
    }

    TemporaryFolder folder;
    std::u16string path;
    std::unique_ptr<Database> database;
    std::unique_ptr<Recordset> latest;
};

inline FieldValue Text(std::u16string_view text) {
    return text;
}

/// The text of a field; "(no text)" for any other value.
inline std::u16string TextOf(const FieldValue& value) {
    const auto* text = std::get_if<std::u16string_view>(&value);
    return text != nullptr ? std::u16string(*text) : u"(no text)";
}

inline std::u16string TextOf(Recordset& recordset, std::u16string_view name) {
    const auto field = recordset.FieldIndex(name);
    return field ? TextOf(recordset.GetValue(*field)) : u"(no field)";
}

}  // namespace generalutilities
