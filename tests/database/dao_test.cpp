#include "database/project_fixture.h"
#include "extview/dao_recordset.h"
#include "extview/dao_table_builder.h"

namespace generalutilities {
namespace {

class Dao : public ProjectTest {
  protected:
    Dao() {
        SetDebugOutput([this](std::u16string_view text) { output += text; });
    }
    ~Dao() override { SetDebugOutput({}); }

    std::u16string output;
};

TEST_F(Dao, AClosedRecordsetIsQuiet) {
    DaoRecordset rows;
    const auto expectQuiet = [&rows] {
        EXPECT_TRUE(rows.IsEmpty());
        EXPECT_EQ(rows.Count(), 0);
        EXPECT_FALSE(rows.MoveNext() || rows.BindField(1, u"ID") || rows.AddNew() || rows.Edit() ||
                     rows.Update() || rows.SetIndex(u"iID") || rows.SeekEqual(u"r1"));
        EXPECT_FALSE(rows.GetString(1) || rows.GetBool(1) || rows.GetLong(1) != 0);
        EXPECT_FALSE(rows.SetString(1, u"a") || rows.SetLong(1, 1) || rows.SetBool(1, true));
    };
    expectQuiet();
    AddRows(1);
    EXPECT_TRUE(rows.Open(*database, u"Pairs", false));
    EXPECT_TRUE(rows.BindField(1, u"ID"));
    EXPECT_FALSE(rows.Open(*database, u"SELECT Nothing FROM Pairs", true));
    expectQuiet();
    EXPECT_TRUE(rows.Attach(Query(u"SELECT ID FROM Pairs")));
    EXPECT_FALSE(rows.GetString(1));  // bindings go with the recordset that they were made for
    EXPECT_FALSE(rows.Attach(nullptr));
    expectQuiet();
}

TEST_F(Dao, ReadsAndWritesByPosition) {
    AddRows(3);
    DaoRecordset rows;
    ASSERT_TRUE(rows.Open(*database, u"SELECT * FROM Pairs ORDER BY ID", true));
    EXPECT_FALSE(rows.IsEmpty());
    EXPECT_FALSE(rows.BindField(0, u"ID") || rows.BindField(INT32_MIN, u"ID"));
    EXPECT_TRUE(rows.BindField(5, u"ID") && rows.BindField(2, u"STATUS_1036") &&
                rows.BindField(3, u"Done") && rows.BindField(4, u"Target_1036"));
    EXPECT_FALSE(rows.BindField(6, u"Nothing"));
    EXPECT_EQ(rows.GetString(5), u"r1");
    EXPECT_EQ(rows.GetLong(2), 1);
    EXPECT_FALSE(rows.GetBool(3));
    // Values of another type, database null, and positions without a field.
    EXPECT_FALSE(rows.GetString(2) || rows.GetString(4) || rows.GetString(6) || rows.GetString(1));
    EXPECT_EQ(rows.GetLong(5) + rows.GetLong(3) + rows.GetLong(77) + rows.GetLong(-1), 0);
    EXPECT_FALSE(rows.GetBool(2) || rows.GetBool(5));

    EXPECT_TRUE(rows.MoveNext() && rows.Edit() && rows.SetString(4, u"t") && rows.SetLong(2, 8) &&
                rows.SetBool(3, true) && rows.Update());
    EXPECT_FALSE(rows.SetString(6, u"x"));
    EXPECT_EQ(rows.Count(), 3);
    EXPECT_EQ(rows.GetString(5), u"r1");
    EXPECT_TRUE(rows.MoveNext());
    EXPECT_EQ(rows.GetString(4), u"t");
    EXPECT_EQ(rows.GetLong(2), 8);
    EXPECT_TRUE(rows.GetBool(3));
    EXPECT_TRUE(rows.MoveNext());
    EXPECT_FALSE(rows.MoveNext() || rows.MoveNext());

    DaoRecordset table;
    ASSERT_TRUE(table.Open(*database, u"Pairs", false) && table.BindField(1, u"ID"));
    EXPECT_FALSE(table.SeekEqual(u"r2"));
    ASSERT_TRUE(table.SetIndex(u"iID"));
    EXPECT_TRUE(table.SeekEqual(u"r2"));
    EXPECT_EQ(table.GetString(1), u"r2");
    EXPECT_FALSE(table.SeekEqual(u"r9"));
    EXPECT_EQ(table.Count(), 3);
}

TEST_F(Dao, BuildsATableAndReplacesIt) {
    DaoTableBuilder builder;
    EXPECT_FALSE(builder.Create(u"Reimporting", true));
    EXPECT_FALSE(builder.Commit());
    builder.Attach(*database);
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(builder.Create(u"Reimporting", true));
        builder.AddTextField(u"ID", u"\"\"");
        builder.AddMemoField(u"Source", u"\"\"", true, true);
        builder.AddBooleanField(u"Accept", true);
        builder.AddLongField(u"Status", 3);
        EXPECT_TRUE(builder.Commit()) << Words();
        EXPECT_EQ(output,
                  u"Error in dropping table:\nRunning a query failed: no such table: Reimporting.\n"
                  u"SQLite\n");
        DaoRecordset rows;
        ASSERT_TRUE(rows.Open(*database, u"Reimporting", false));
        EXPECT_TRUE(rows.IsEmpty());
        EXPECT_TRUE(rows.BindField(1, u"Source") && rows.BindField(2, u"Accept") &&
                    rows.BindField(3, u"Status"));
        EXPECT_TRUE(rows.AddNew() && rows.Update());
        EXPECT_EQ(rows.Count(), 1);
        EXPECT_EQ(rows.GetString(1), u"");
        EXPECT_TRUE(rows.GetBool(2));
        EXPECT_EQ(rows.GetLong(3), 3);
    }
    // The drop stands in a transaction of its own inside the caller's.
    ASSERT_TRUE(database->BeginTrans());
    EXPECT_TRUE(builder.Create(u"Reimporting", true));
    ASSERT_TRUE(database->Rollback());
    EXPECT_EQ(database->TableNames().size(), 3U);
    output.clear();
    EXPECT_TRUE(builder.Create(u"Pairs", false));
    builder.AddLongField(u"a", 0);
    EXPECT_FALSE(builder.Commit());
    EXPECT_NE(output.find(u"already exists"), std::u16string::npos);
}

}  // namespace
}  // namespace generalutilities
