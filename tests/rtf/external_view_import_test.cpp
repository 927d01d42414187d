#include "extview/external_view_import.h"

#include "case_table.h"
#include "text/decimal.h"

namespace generalutilities {
namespace {

std::vector<std::u16string> Split(std::u16string_view text, std::u16string_view separator) {
    std::vector<std::u16string> parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + separator.size(), text.size()));
    }
    return parts;
}

enum class Fault { None, Opening, Header, DamagedHeader, DamagedRows, NoMemory };

/// A reviewed "file" that is a list of rows, "id|source|target|comments|status" of which the last
/// two may be missing, and that can fail.
class ListImport : public CExternalViewImport {
  public:
    explicit ListImport(std::u16string_view content) : rows(Split(content, u" / ")) {}

    bool OpenFile() override {
        isOpen = fault != Fault::Opening;
        next = 0;
        return isOpen;
    }
    void CloseFile() override { isOpen = false; }
    bool ReadHeader() override { return fault != Fault::Header && fault != Fault::DamagedHeader; }
    bool NextRow(std::u16string& id, std::u16string& source, std::u16string& target,
                 std::u16string& comments, std::int32_t& status) override {
        EXPECT_TRUE(isOpen);
        if (next == 1 && fault == Fault::NoMemory) {
            throw std::bad_alloc();
        }
        if (next == rows.size() || (next == 1 && fault == Fault::DamagedRows)) {
            return false;
        }
        auto cells = Split(rows[next++] + u"|", u"|");
        id = cells.at(0);
        source = cells.at(1);
        target = cells.at(2);
        comments = cells.size() > 3 ? cells[3] : comments;
        status = cells.size() > 4 ? Number(cells[4]) : status;
        return true;
    }
    bool FileIsDamaged() const override {
        return fault == Fault::DamagedHeader || fault == Fault::DamagedRows;
    }

    Fault fault = Fault::None;
    bool isOpen = false;

  private:
    std::vector<std::u16string> rows;
    std::size_t next = 0;
};

/// The rows of the working table in words: texts, and the flags that are set.
std::u16string Reimporting(Database& database) {
    constexpr const char16_t* Fields[] = {
        u"ID",     u"ExistingSource",   u"Source",   u"SourceHasChanged", u"ExistingTarget",
        u"Target", u"TargetHasChanged", u"Comments", u"Accept",           u"Status"};
    DaoRecordset table;
    if (!table.Open(database, u"Reimporting", false)) {
        return u"(no table)";
    }
    for (int field = 1; field <= 10; ++field) {
        EXPECT_TRUE(table.BindField(field, Fields[field - 1]));
    }
    std::u16string rows;
    for (bool more = !table.IsEmpty(); more; more = table.MoveNext()) {
        rows += rows.empty() ? u"" : u" / ";
        for (int field = 1; field < 10; ++field) {
            const bool isFlag = field == 4 || field == 7 || field == 9;
            const std::u16string flag = field == 9 ? u"accept" : u"changed";
            rows += isFlag ? table.GetBool(field) ? flag : u"-"
                           : std::u16string(table.GetString(field).value_or(u"(null)"));
            rows += u"|";
        }
        rows += Decimal(table.GetLong(10));
    }
    return rows;
}

constexpr const char16_t* Earlier = u"1|one|one|-|eins|eins|-||accept|1";

/// A project with four rows for language 1036, and the outcome of an earlier import.
class ExternalViewImport : public ::testing::Test {
  protected:
    ExternalViewImport() {
        DatabaseFailure failure;
        database = OpenDatabase(folder.Path(u"project.db"), OpenMode::Create, failure);
        for (const char16_t* query : {
                 u"CREATE TABLE Pairs (ID TEXT(50), Source MEMO, Target_1036 MEMO, "
                 u"Status_1036 LONG, Comments_1036 MEMO)",
                 u"CREATE INDEX iID ON Pairs (ID)",
                 u"INSERT INTO Pairs VALUES ('1', 'one', 'eins', 1, '')",
                 u"INSERT INTO Pairs VALUES ('2', 'two', NULL, 4, 'see 1')",
                 u"INSERT INTO Pairs VALUES ('3', 'three', 'drei', 514, 'locked')",
                 u"INSERT INTO Pairs VALUES ('4', '\u0006b\u0007hidden\u0008four', "
                 u"'vier\u0006/\u0007x\u0008', NULL, NULL)",
             }) {
            EXPECT_TRUE(database->Execute(query));
        }
        EXPECT_EQ(Run(u"1|one|eins"), Earlier);
    }

    /// Imports rows, and gives the working table.
    std::u16string Run(std::u16string_view rows, std::int32_t language = 1036) {
        ListImport import(rows);
        EXPECT_EQ(import.RunImport(*database, u"a path", language), S_OK);
        EXPECT_FALSE(import.isOpen);
        return Reimporting(*database);
    }

    TemporaryFolder folder;
    std::unique_ptr<Database> database;
};

TEST_F(ExternalViewImport, LaysTheFileBesideTheProject) {
    for (const auto& row : CaseTable("reimported_rows.tsv")) {
        EXPECT_EQ(Run(row[0]), row[1]) << ::testing::PrintToString(row);
    }
    EXPECT_EQ(Run(u"1|one|eins", 1031), u"1|one|one|-||eins|changed||accept|0")
        << "an unknown language has empty texts";
    ASSERT_TRUE(database->Execute(u"DROP TABLE Pairs"));
    EXPECT_EQ(Run(u"1|one|eins"), u"") << "without Pairs every row is unknown";
}

TEST_F(ExternalViewImport, WhateverGoesWrongLeavesTheEarlierTable) {
    ListImport import(u"2|two| / 3|x|y");
    for (const auto& [fault, status] :
         {std::pair{Fault::Opening, static_cast<HRESULT>(everrUnableToOpenFile)},
          {Fault::Header, static_cast<HRESULT>(everrNotEnoughFieldsPresent)},
          {Fault::DamagedHeader, E_FAIL},
          {Fault::DamagedRows, E_FAIL}}) {
        import.fault = fault;
        EXPECT_EQ(import.RunImport(*database, u"", 1036), status);
        EXPECT_FALSE(import.isOpen);
        EXPECT_EQ(Reimporting(*database), Earlier);
    }
    import.fault = Fault::NoMemory;
    EXPECT_THROW(import.RunImport(*database, u"", 1036), std::bad_alloc);
    EXPECT_FALSE(import.isOpen);
    EXPECT_EQ(Reimporting(*database), Earlier);
    import.fault = Fault::None;
    EXPECT_EQ(import.RunImport(*database, u"", 1036), S_OK);  // the object works on
    EXPECT_EQ(Split(Reimporting(*database), u" / ").size(), 2u);
}

}  // namespace
}  // namespace generalutilities
