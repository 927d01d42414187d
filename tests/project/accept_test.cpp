#include <generalutilities/project/accept.h>

#include "project/reviewed_project.h"

#include <map>

namespace generalutilities {
namespace {

class Accept : public ReviewedProject {
  protected:
    void SetUp() override {
        Create({MakeRow(u"Open {1}", {{u"Ouvrir {1}", u"menu", 2, 0}, {u"\u00D6ffnen", u"", 0, 0}}),
                MakeRow(u"Two lines", {{u"Deux\nlignes", u"", 0, 0}, {}}),
                MakeRow(u"Locked", {{u"Bloque", u"", 0x200, 0}, {}}),
                MakeRow(u"New \u0006{1}\u0007%s\u0008", {{u"", u"", 0, 0}, {}}),
                MakeRow(u"Old \u0006{1}\u0007%s\u0008",
                        {{u"Vieux \u0006{1}\u0007%s\u0008", u"", 0, 0}, {}}),
                MakeRow(u"Same", {{u"Pareil", u"", 0, 0}, {}})},
               {1036, 1031});
    }

    AcceptSummary Run(AcceptOptions options = {}) {
        options.langId = 1036;
        reasons.clear();
        return AcceptReimportedRows(*project, options, [this](const AcceptedRow& row) {
            reasons[std::u16string(row.id)] = row.reason;
        });
    }

    std::string Snapshot() { return ReadFile(folder.Path(u"p")); }

    std::map<std::u16string, std::string> reasons;
};

TEST_F(Accept, TakesTargetsCommentsAndStatuses) {
    Edit("Ouvrir \\{1\\}", "Ouvrez {\\b \\{1\\}} vite");
    Edit(" menu}", " Note\\par two}");
    Edit(" Same}", " Same as before}");
    Edit("Pareil", "Identique");
    Edit("\\noproof 2}\\cell", "\\noproof 1}\\cell");
    Import();
    const AcceptSummary summary = Run();
    EXPECT_EQ(summary.taken, 2U);
    EXPECT_EQ(summary.unchanged, 4U);
    EXPECT_EQ(summary.sourceEdited, 1U);
    EXPECT_EQ(Stored(u"Target_1036", u"000001"), u"Ouvrez {1} vite");
    EXPECT_EQ(Stored(u"Comments_1036", u"000001"), u"Note\r\ntwo");
    EXPECT_EQ(Stored(u"Status_1036", u"000001"), u"1");
    EXPECT_EQ(Stored(u"Target_1031", u"000001"), u"\u00D6ffnen") << "another language";
    EXPECT_EQ(Stored(u"Target_1036", u"000006"), u"Identique");
    EXPECT_EQ(Stored(u"Source", u"000006"), u"Same") << "sources are not taken over";
    EXPECT_EQ(Stored(u"Target_1036", u"000002"), u"Deux\nlignes");

    const auto after = Snapshot();
    EXPECT_EQ(Run().unchanged, 6U) << "a second time there is nothing left to do";
    EXPECT_EQ(Snapshot(), after);
}

TEST_F(Accept, GivesHiddenPartsAndLineEndsBack) {
    Edit("Vieux \\{1\\}", "\\{1\\} \\'e2g\\'e9");
    Edit("Deux\\par lignes", "Trois\\par lignes\\par !");
    // The row without a translation: its target cell is empty.
    std::string bytes = ReadFile(File());
    const std::size_t target = bytes.find("\\ltrpar ", bytes.find("New \\{1\\}")) + 8;
    WriteFile(File(), bytes.insert(target, "Nouveau \\{1\\}"));
    Import();
    EXPECT_EQ(Run().taken, 3U);
    EXPECT_EQ(Stored(u"Target_1036", u"000005"), u"\u0006{1}\u0007%s\u0008 \u00E2g\u00E9");
    EXPECT_EQ(Stored(u"Target_1036", u"000002"), u"Trois\nlignes\n!");
    EXPECT_EQ(Stored(u"Target_1036", u"000004"), u"Nouveau \u0006{1}\u0007%s\u0008");
}

TEST_F(Accept, TakesCodeChangesUnlessTheyHideOrAreRefused) {
    Edit("Ouvrir \\{1\\}", "Ouvrir");
    Edit("Vieux \\{1\\}", "Ancien");
    Import();
    const auto before = Snapshot();
    AcceptOptions options;
    options.refuseCodeChanges = true;
    EXPECT_EQ(Run(options).refused, 2U);
    options = {};
    options.dryRun = true;
    EXPECT_EQ(Run(options).taken, 1U);
    EXPECT_EQ(Snapshot(), before);
    const AcceptSummary summary = Run();
    EXPECT_EQ(summary.taken, 1U);
    EXPECT_EQ(summary.refused, 1U);
    EXPECT_EQ(Stored(u"Target_1036", u"000001"), u"Ouvrir");
    EXPECT_NE(reasons[u"000005"].find("{1}"), std::string::npos) << reasons[u"000005"];
    EXPECT_EQ(Stored(u"Target_1036", u"000005"), u"Vieux \u0006{1}\u0007%s\u0008");
}

TEST_F(Accept, LeavesLockedRowsUnlessAsked) {
    Edit("Bloque", "Ouvert");
    Import();
    EXPECT_EQ(Run().notAccepted, 1U);
    EXPECT_EQ(Stored(u"Target_1036", u"000003"), u"Bloque");
    AcceptOptions options;
    options.includeLocked = true;
    EXPECT_EQ(Run(options).taken, 1U);
    EXPECT_EQ(Stored(u"Target_1036", u"000003"), u"Ouvert");
    EXPECT_EQ(Stored(u"Status_1036", u"000003"), u"512");
}

TEST_F(Accept, TakesChosenIdentifiersAndNamesUnknownOnes) {
    Edit("Pareil", "Identique");
    Edit("Ouvrir", "Ouvrez");
    Import();
    AcceptOptions options;
    options.ids = {u"000006", u"nosuch"};
    const AcceptSummary summary = Run(options);
    EXPECT_EQ(summary.rows, 1U);
    EXPECT_EQ(summary.unknownIds, std::vector<std::u16string>{u"nosuch"});
    EXPECT_EQ(Stored(u"Target_1036", u"000006"), u"Identique");
    EXPECT_EQ(Stored(u"Target_1036", u"000001"), u"Ouvrir {1}");
}

TEST_F(Accept, RefusesRowsThatChangedSinceTheImport) {
    Edit("Pareil", "Identique");
    Import();
    ASSERT_TRUE(project->Execute(u"UPDATE Pairs SET Target_1036 = 'Autre' WHERE ID = '000006'"));
    ASSERT_TRUE(
        project->Execute(u"UPDATE Pairs SET Status_1036 = 4, Target_1036 = 'Autre' "
                         u"WHERE ID = '000002'"));
    EXPECT_EQ(Run().refused, 1U);
    EXPECT_NE(reasons[u"000006"].find("since the import"), std::string::npos);
    EXPECT_EQ(Stored(u"Target_1036", u"000006"), u"Autre");
    EXPECT_EQ(Stored(u"Status_1036", u"000002"), u"4") << "a row that the reviewer left alone";
}

TEST_F(Accept, DecidesAmongRowsWithOneIdentifier) {
    // Two different changes: neither counts. A copied row, changed once: the change does.
    Edit("000006", "000001");
    Edit("Ouvrir \\{1\\}", "Ouvrez \\{1\\}");
    Import();
    EXPECT_EQ(Run().refused, 2U);
    EXPECT_NE(reasons[u"000001"].find("several rows"), std::string::npos);
    EXPECT_EQ(Stored(u"Target_1036", u"000001"), u"Ouvrir {1}");
    Edit("Pareil", "Ouvrir {\\b \\{1\\}}");
    Import();
    EXPECT_EQ(Run().taken, 1U);
    EXPECT_EQ(Stored(u"Target_1036", u"000001"), u"Ouvrez {1}");
    EXPECT_EQ(Stored(u"Status_1036", u"000001"), u"2") << "the copy brings no status of its own";
}

TEST_F(Accept, ChangesAllOrNothing) {
    Edit("Ouvrir \\{1\\}", "Ouvrez \\{1\\}");
    Edit("Pareil", "Identique");
    Import();
    const auto before = Snapshot();
    AcceptOptions options;
    options.langId = 1036;
    int rows = 0;
    EXPECT_THROW(AcceptReimportedRows(*project, options,
                                      [&](const AcceptedRow& row) {
                                          if (row.outcome == AcceptOutcome::Taken && ++rows == 2) {
                                              throw std::bad_alloc();
                                          }
                                      }),
                 std::bad_alloc);
    EXPECT_EQ(rows, 2);
    EXPECT_EQ(Snapshot(), before);
    EXPECT_EQ(Run().taken, 2U) << "and it can be done again";
}

TEST_F(Accept, KnowsTheLanguageOfTheImport) {
    Edit("Pareil", "Identique");
    Import(1031);
    EXPECT_EQ(LanguageOfReimport(*project), 1031);
    Import();
    EXPECT_EQ(LanguageOfReimport(*project), 1036);
    Run();
    EXPECT_EQ(LanguageOfReimport(*project), 1036) << "also when it has been taken over";
    AcceptOptions options;
    options.langId = 1041;
    EXPECT_NE(ErrorOf([&] { AcceptReimportedRows(*project, options, [](const AcceptedRow&) {}); }),
              "");
    ASSERT_TRUE(project->Execute(u"DROP TABLE Reimporting"));
    EXPECT_NE(ErrorOf([&] { Run(); }).find("Reimporting"), std::string::npos);
    EXPECT_NE(ErrorOf([&] { ReadReimportedRows(*project, [](const ReimportedRow&) {}); }), "");
}

}  // namespace
}  // namespace generalutilities
