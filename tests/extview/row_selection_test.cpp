#include "extview/row_selection.h"

#include <generalutilities/extview/export_options.h>

#include "case_table.h"

namespace generalutilities {
namespace {

TEST(BuildQueries, Texts) {
    for (const auto& row : CaseTable("queries.tsv")) {
        const std::int32_t fileId = Number(row[1]);
        const auto queries = BuildQueries(DecodeOptions(Number(row[0])), fileId, 1036, row[2]);
        const std::u16string exported = row[3] + u" AND Done = 0  AND Selected = -1 ";
        EXPECT_EQ(queries.mainQuery,
                  u"SELECT ID, Source, Target_1036 As Target, Status_1036 As Status, Comments_1036 "
                  u"As Comments, Done, FileID, Percentage_1036 As Percentage" +
                      std::u16string(fileId == Lexicon ? u", LexWords, Freq" : u"") +
                      u" FROM Pairs WHERE " + exported + row[4]);
        EXPECT_EQ(
            queries.duplicateQuery,
            u"SELECT ID, Source, Target_1036 As Target, Done FROM Pairs WHERE Source2Index = '");
        EXPECT_EQ(queries.duplicateTail, u"' AND " + exported);
        EXPECT_EQ(queries.whereClause, u"WHERE " + row[3]);
    }
}

TEST(IsRightToLeft, LooksAtThePrimaryLanguage) {
    for (const std::int32_t langId : {1025, 2049, 1037, 1056, 1065, 1114, 1, 13}) {
        EXPECT_TRUE(IsRightToLeft(langId)) << langId;
    }
    for (const std::int32_t langId : {1033, 1031, 1041, 0, 1123 /* Pashto: not in the list */}) {
        EXPECT_FALSE(IsRightToLeft(langId)) << langId;
    }
}

}  // namespace
}  // namespace generalutilities
