// The rows that UniquePairsOnly leaves out, against a plain model over rows in memory.

#include "extview/duplicate_marking.h"

#include <generalutilities/extview/export_options.h>
#include <generalutilities/extview/segment_text.h>

#include "seeded_random.h"
#include "test_project.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <vector>

namespace generalutilities {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t SourceLanguage = 1033;
constexpr std::int32_t TargetLanguage = 1036;

std::vector<std::u16string> Mark(TestProject& project, std::int32_t options = UniquePairsOnly,
                                 std::int32_t fileId = AllFiles) {
    const auto flags = DecodeOptions(options);
    const auto queries = BuildQueries(flags, fileId, TargetLanguage, u"");
    EXPECT_TRUE(MarkDuplicates(project.database(), {.queries = queries,
                                                    .uniquePairsOnly = flags.uniquePairsOnly,
                                                    .sourceLangId = SourceLanguage,
                                                    .targetLangId = TargetLanguage,
                                                    .fileId = fileId}));
    return project.DoneRows();
}

// The rule in its plain form: each row not yet marked, in the order of the identifiers, against all
// rows with its key that are not yet marked, in the order of the table.
std::vector<std::u16string> MarkedByTheModel(const std::vector<PairRow>& rows) {
    const auto source = [](const PairRow& row) {
        return CompareForm(StripBraces(row.source), SourceLanguage);
    };
    const auto target = [](const PairRow& row) {
        return CompareForm(StripBraces(StripCodeMarkers(row.target.value_or(u""))), TargetLanguage);
    };
    const auto storedKey = [](const PairRow& row) {
        return row.sourceKey.value_or(MakeSourceKey(row.source, SourceLanguage));
    };
    std::vector<std::size_t> order(rows.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return rows[left].id < rows[right].id;
    });
    std::vector<bool> done(rows.size());
    for (const std::size_t outer : order) {
        if (done[outer]) {
            continue;
        }
        const std::u16string key = MakeSourceKey(rows[outer].source, SourceLanguage);
        const std::vector<bool> doneAtOpening = done;
        bool first = true;
        for (std::size_t inner = 0; inner < rows.size(); ++inner) {
            if (doneAtOpening[inner] || storedKey(rows[inner]) != key) {
                continue;
            }
            if (rows[inner].id == rows[outer].id) {
                first = false;
            } else if (source(rows[inner]) == source(rows[outer]) &&
                       target(rows[inner]) == target(rows[outer])) {
                done[inner] = !first;
                first = false;
            }
        }
    }
    std::vector<std::u16string> marked;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (done[i]) {
            marked.push_back(rows[i].id);
        }
    }
    return marked;
}

TEST(MarkDuplicates, OnlyInTheSelection) {
    TestProject project;
    project.Add({{.id = u"1", .source = u"a", .selected = false},
                 {u"2", u"a", {}, StatusLocked},
                 {u"3", u"a"},
                 {.id = u"4", .source = u"a", .fileId = 2},
                 {u"5", u"a"}});
    EXPECT_THAT(Mark(project, UniquePairsOnly | SkipLocked, 1), ElementsAre(u"5"));
    EXPECT_THAT(Mark(project, UniquePairsOnly, 1), ElementsAre(u"3", u"5"));
    EXPECT_THAT(Mark(project), ElementsAre(u"3", u"4", u"5"));
    // An export of one file clears the marks of its own rows alone.
    EXPECT_THAT(Mark(project, 0, 1), ElementsAre(u"4"));
    // One of all files clears all marks, the lexicon's too.
    for (const std::int32_t fileId : {AllFiles, EveryFile}) {
        project.Add({{.id = u"6", .source = u"a", .fileId = Lexicon}});
        project.Execute(u"UPDATE Pairs SET Done = -1");
        EXPECT_THAT(Mark(project, 0, fileId), IsEmpty());
    }
}

TEST(MarkDuplicates, AgreesWithTheModelOnRandomProjects) {
    SeededRandom random;
    const auto oneOf = [&](const std::vector<std::u16string>& values) {
        return values[random() % values.size()];
    };
    TestProject project;
    for (int round = 0; round < 300; ++round) {
        std::vector<PairRow> rows;
        const bool repeatedIds = round % 6 == 0;
        const bool strangeKeys = round % 2 == 0;
        const auto count = random() % 40;
        for (unsigned i = 0; i < count; ++i) {
            PairRow row;
            const bool inOrder = round % 4 == 1 || round % 4 == 2;
            row.id = Decimal(static_cast<std::int32_t>(inOrder ? i : i * 7919 % 41 + 1));
            if (repeatedIds && random() % 3 == 0) {
                row.id = u"5";
            }
            // Equal but for numbers, codes, the shown codes of a target, outer blanks; without a
            // word; with a quote; with code marks in a source, which count.
            row.source =
                oneOf({u"a", u"b", u"a 1", u"{2} a", u"7", u"it's", u"a{x}", u"\6a", u"A"});
            if (random() % 6 > 0) {
                row.target = oneOf({u"x", u"y", u"x 3", u"", u" x\6{7}\7y\b ", u"X"});
            }
            if (strangeKeys && random() % 4 == 0) {
                row.sourceKey = oneOf({u"a", u"b", u"", u"c", u"A"});
            }
            rows.push_back(row);
        }
        project.RemoveRows();
        project.Add(rows);
        ASSERT_EQ(Mark(project), MarkedByTheModel(rows)) << "round " << round;
    }
}

// All keys empty, every other pair equal: reading the group for each row would take hours.
TEST(MarkDuplicates, StaysLinearInTheSizeOfAGroup) {
    constexpr int Pairs = 15000;
    TestProject project;
    std::vector<PairRow> rows;
    for (int i = 0; i < 2 * Pairs; ++i) {
        rows.push_back(
            {.id = Decimal(100000 + i),
             .source = Decimal(i),
             .target = std::u16string(u"t") + static_cast<char16_t>(0x4E00 + i % Pairs)});
    }
    project.Add(rows);
    EXPECT_EQ(Mark(project).size(), static_cast<std::size_t>(Pairs));
}

}  // namespace
}  // namespace generalutilities
