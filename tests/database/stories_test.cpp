// What queries mean and do, step by step.

#include "case_table.h"
#include "database/project_fixture.h"

namespace generalutilities {
namespace {

class Stories : public ProjectTest {
  protected:
    /// T a text, L a long, D a double, B a yes/no value, - null.
    static FieldValue ValueOf(const std::u16string& cell) {
        const std::u16string_view rest = std::u16string_view(cell).substr(1);
        switch (cell[0]) {
            case u'T':
                return rest;
            case u'L':
                return Number(cell.substr(1));
            case u'D':
                return std::stod(Bytes(cell.substr(1)));
            case u'B':
                return rest == u"True";
            default:
                return {};
        }
    }

    /// The texts of the first field, which is looked at in each row.
    std::u16string Walk(Recordset& rows) {
        std::u16string all;
        for (; !rows.Eof(); rows.MoveNext()) {
            all += (all.empty() ? u"" : u" ") + TextOf(rows.GetValue(0));
        }
        return all;
    }

    void ExpectFailure(const std::vector<std::u16string>& step) {
        static constexpr const char* Kinds[] = {"None",     "NotFound", "NotAProject", "Locked",
                                                "ReadOnly", "DiskFull", "Corrupt",     "Query"};
        EXPECT_EQ(Kinds[static_cast<int>(FailureKind())], Bytes(step[2])) << Words();
        EXPECT_NE(Words().find(Bytes(step[3])), std::string::npos) << Words();
        EXPECT_EQ(database->LastFailure().source, u"SQLite");
    }

    void Do(const std::vector<std::u16string>& step) {
        const std::string what = Bytes(step[0]);
        if (what == "a new project") {
            CreateAnew();
            AddRows(Number(step[1]));
        } else if (what == "run") {
            Run(step[1]);
        } else if (what == "fails") {
            EXPECT_FALSE(database->Execute(step[1]));
            ExpectFailure(step);
        } else if (what == "opens nothing") {
            EXPECT_FALSE(database->OpenRecordset(step[1], RecordsetType::Dynaset));
            ExpectFailure(step);
        } else if (what == "value") {
            EXPECT_EQ(Value(u"SELECT " + step[1]), ValueOf(step[2]));
        } else if (what == "rows" || what == "fixed rows") {
            const auto rows = Query(step[1]);
            const bool live = what == "rows" && !rows->Eof();
            EXPECT_EQ(rows->Edit(), live);
            EXPECT_EQ(rows->AddNew(), what == "rows");
            EXPECT_TRUE(live || !rows->Update());
            EXPECT_EQ(Walk(*rows), step[2]);
        } else if (what == "put") {
            const auto table = database->OpenRecordset(u"Kinds", RecordsetType::Table);
            const int field = *table->FieldIndex(step[1]);
            EXPECT_TRUE(table->AddNew() && table->PutValue(field, ValueOf(step[2])) &&
                        table->Update() && table->MoveLast());
            EXPECT_EQ(table->GetValue(field), ValueOf(step[3]));
        } else if (what == "begin") {
            EXPECT_TRUE(database->BeginTrans());
        } else if (what == "commit" || what == "rollback") {
            const bool done = what == "commit" ? database->CommitTrans() : database->Rollback();
            EXPECT_EQ(done, step[1] == u"True");
        } else {
            EXPECT_EQ(what, "rows for others");
            const auto rows = Open(path)->OpenRecordset(u"Pairs", RecordsetType::Table);
            EXPECT_EQ(rows->RecordCount(), Number(step[1]));
        }
    }
};

TEST_F(Stories, AreAsTold) {
    for (const auto& step : CaseTable("stories.tsv")) {
        SCOPED_TRACE(testing::PrintToString(step));
        Do(step);
    }
}

}  // namespace
}  // namespace generalutilities
