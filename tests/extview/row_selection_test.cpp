#include "extview/row_selection.h"

#include <generalutilities/extview/export_options.h>

#include <gtest/gtest.h>

namespace generalutilities {
namespace {

RowQueries Queries(std::int32_t options, std::int32_t fileId = 7, std::int32_t language = 1036,
                   std::u16string_view lexiconOrderBy = {}) {
    return BuildQueries(DecodeOptions(options), fileId, language, lexiconOrderBy);
}

TEST(BuildQueries, WholeTexts) {
    const auto file = Queries(SkipLocked | SortBySource);
    EXPECT_EQ(file.mainQuery,
              u"SELECT ID, Source, Target_1036 As Target, Status_1036 As Status, Comments_1036 As "
              u"Comments, Done, FileID, Percentage_1036 As Percentage FROM Pairs WHERE FileID = 7 "
              u"AND NOT ( ((Status_1036 \\ 512) Mod 2) = 1 )  AND Done = 0  AND Selected = -1  "
              u"ORDER BY Source2index");
    EXPECT_EQ(file.duplicateQuery,
              u"SELECT ID, Source, Target_1036 As Target, Done FROM Pairs WHERE Source2Index = '");
    EXPECT_EQ(file.duplicateTail,
              u"' AND FileID = 7 AND NOT ( ((Status_1036 \\ 512) Mod 2) = 1 )  AND Done = 0  AND "
              u"Selected = -1 ");
    EXPECT_EQ(file.whereClause, u"WHERE FileID = 7 AND NOT ( ((Status_1036 \\ 512) Mod 2) = 1 ) ");

    const auto lexicon = Queries(SortBySource, Lexicon, 1041, u"Freq DESC, 'as it is'");
    EXPECT_EQ(lexicon.mainQuery,
              u"SELECT ID, Source, Target_1041 As Target, Status_1041 As Status, Comments_1041 As "
              u"Comments, Done, FileID, Percentage_1041 As Percentage, LexWords, Freq FROM Pairs "
              u"WHERE FileID = -1 AND Done = 0  AND Selected = -1  ORDER BY Freq DESC, 'as it is'");
}

TEST(BuildQueries, SelectionByOption) {
    const std::u16string untranslated = u" AND (Target_9='' OR Target_9 IS NULL) ";
    const std::u16string translated = u" AND NOT (Target_9='' OR Target_9 IS NULL) ";
    const std::u16string comments = u" AND NOT (Comments_9 = '' OR Comments_9 IS NULL) ";
    const std::u16string pending = u" AND ( ((Status_9 \\ 1024) Mod 2) = 1 ) ";
    const std::u16string locked = u" AND NOT ( ((Status_9 \\ 512) Mod 2) = 1 ) ";
    const std::u16string guaranteed = u" AND NOT ( ((Status_9 \\ 4096) Mod 2) = 1 ) ";
    const std::u16string exact =
        u" AND NOT ( ((Status_9 \\ 1) Mod 2) = 1 ) AND NOT ( ((Status_9 \\ 65536) Mod 2) = 1 ) ";
    struct {
        std::int32_t options;
        std::u16string selection;
    } const cases[] = {
        {0, u""},
        {OnlyUntranslated, untranslated},
        {OnlyTranslated, translated},
        {OnlyWithComments, comments},
        {OnlyPending, pending},
        {OnlyUntranslated | OnlyTranslated | OnlyWithComments | OnlyPending, untranslated},
        {OnlyWithComments | OnlyPending, comments},
        {SkipExact, exact},
        {SkipExact | SkipGuaranteed | SkipLocked, locked + guaranteed + exact},
        {OnlyPending | SkipGuaranteed, pending + guaranteed},
        {~(OnlyUntranslated | OnlyTranslated | OnlyWithComments | OnlyPending | SkipLocked |
           SkipExact | SkipGuaranteed),
         u""},
    };
    for (const auto& [options, selection] : cases) {
        const auto queries = Queries(options, 5, 9);
        EXPECT_EQ(queries.whereClause, u"WHERE FileID = 5" + selection) << options;
        EXPECT_EQ(queries.duplicateTail,
                  u"' AND FileID = 5" + selection + u" AND Done = 0  AND Selected = -1 ")
            << options;
        EXPECT_NE(queries.mainQuery.find(u"FROM Pairs WHERE FileID = 5" + selection + u" AND Done"),
                  std::u16string::npos)
            << options;
    }
}

TEST(BuildQueries, FileTestAndOrder) {
    struct {
        std::int32_t fileId;
        std::int32_t options;
        std::u16string fileTest;
        std::u16string order;
    } const cases[] = {
        {-1, SortBySource, u"FileID = -1", u""},  // no order given: none, whatever the option
        {0, 0, u"FileID > -1", u" ORDER BY ID"},
        {-2, SortBySource, u"FileID > -1", u" ORDER BY Source2index"},
        {-3, 0, u"FileID <> 0", u" ORDER BY ID"},
        {-4, 0, u"FileID = -4", u" ORDER BY ID"},
        {2147483647, 0, u"FileID = 2147483647", u" ORDER BY ID"},
    };
    for (const auto& [fileId, options, fileTest, order] : cases) {
        const auto queries = Queries(options, fileId);
        const std::u16string end =
            u" FROM Pairs WHERE " + fileTest + u" AND Done = 0  AND Selected = -1 " + order;
        EXPECT_TRUE(queries.mainQuery.ends_with(end)) << testing::PrintToString(queries.mainQuery);
        EXPECT_EQ(queries.mainQuery.find(u"LexWords") != std::u16string::npos, fileId == -1);
        EXPECT_EQ(queries.duplicateTail.find(u"ORDER"), std::u16string::npos);
    }
    EXPECT_EQ(Queries(0, 7, 1036, u"Freq").mainQuery.find(u"Freq"), std::u16string::npos);
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
