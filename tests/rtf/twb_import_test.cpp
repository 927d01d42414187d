#include "extview/rtf/twb_import.h"

#include "case_table.h"
#include "sample_head.h"
#include "twb_document.h"

#include <random>

namespace generalutilities {
namespace {

using testing::RowsOf;
using testing::TwbDocument;
using testing::TwbHead;
using testing::TwbImportOf;

TEST(TwbImport, CellsByStyle) {
    for (const auto& row : CaseTable("twb_rows.tsv")) {
        TwbImportOf import(TwbDocument(row[0]));
        EXPECT_EQ(RowsOf(import), row[1]) << import.file;
        EXPECT_EQ(RowsOf(import), row[1]) << "again";
    }
}

TEST(TwbImport, IsTwbWithTheStylesAndARow) {
    const std::string row = TwbDocument(u"x<ID 1> ¦m{0>¦ts¦m<}0{>¦tt¦m<0}").substr(TwbHead.size());
    const auto without = [&](std::string_view name) {
        std::string head = TwbHead;
        return head.replace(head.find(name), 1, "x") + row;
    };
    const struct {
        std::string file;
        bool isTwb;
    } cases[] = {
        {TwbHead + row, true},
        {without("tw4winInternal"), true},
        {without("tw4winMark"), false},
        {without("tw4winExternal"), false},
        {TwbHead + row.substr(0, row.size() - 3), false},
        {testing::Head + row, false},
        {"", false},
    };
    const TemporaryFolder folder;
    for (const auto& test : cases) {
        folder.Write("file", test.file);
        EXPECT_EQ(CTWBImport().IsTWBFile(folder.Path(u"file")), test.isTwb) << test.file;
    }
    EXPECT_FALSE(CTWBImport().IsTWBFile(folder.Path(u"none")));
}

/// The rows of styled runs, in the plainest form: cells are inserted one by one and all kept.
struct ReferenceRow {
    std::vector<std::u16string> cells;
    std::u16string codes;
    std::int32_t previous = -1;
    bool isWaiting = true;
    bool isTextOpen = false;

    void Flush() {
        for (std::size_t at = 0; (at = codes.find(u"<c:", at)) != codes.npos;) {
            const std::size_t end = codes.find(u'>', at);
            if (end == codes.npos) {
                break;
            }
            cells.back() += u"{" + codes.substr(at + 3, end - at - 3) + u"}";
            at = end;
        }
        codes.clear();
    }

    bool Add(const rtf::TwbStyles& styles, std::int32_t style, const std::u16string& text) {
        const bool isMark = style == styles.mark;
        const bool isSpecial = isMark || style == styles.external;
        if (isWaiting && style != styles.external) {
            return false;
        }
        isWaiting = isWaiting && style != styles.external;
        isTextOpen = isTextOpen && !isSpecial;
        if (style == previous) {
            (style == styles.internal ? codes : cells.back()) += text;
        } else if (style == styles.internal) {
            codes = text;
            if (!isTextOpen) {
                cells.emplace_back();
            }
            isTextOpen = true;
        } else if (isSpecial) {
            if (previous == styles.internal) {
                Flush();
            }
            cells.push_back(text);
        } else if (isTextOpen) {
            Flush();
            cells.back() += text;
        } else {
            cells.push_back(text);
            isTextOpen = true;
        }
        previous = style;
        if (!isMark) {
            return false;
        }
        for (std::size_t entry = cells.size() - 1; cells[entry].size() >= 6;) {
            std::u16string mark;
            for (const char16_t* one : {u"<0}", u"<}0{>", u"{0>"}) {
                mark = cells[entry].ends_with(one) ? one : mark;
            }
            if (mark.empty()) {
                break;
            }
            cells[entry].resize(cells[entry].size() - mark.size());
            cells.insert(cells.begin() + static_cast<std::ptrdiff_t>(entry) + 1, {u"", mark});
        }
        return cells.size() >= 5 && cells.back() == u"<0}";
    }
};

TEST(TwbImport, AgreesWithThePlainFormOnRandomRuns) {
    const std::uint32_t seed = 20261123;
    std::mt19937 random(seed);
    const rtf::TwbStyles styles{1, 5, 6};
    constexpr const char16_t* Texts[] = {u"{0>",   u"<}0{>", u"<}87{>", u"<0}", u"<ID 7> ",
                                         u"<c:1>", u"a",     u"<0}{0>", u"<c:"};
    int rowCount = 0;
    for (int round = 0; round < 20000; ++round) {
        rtf::TwbCells cells;
        cells.SetStyles(styles);
        cells.BeginRow();
        ReferenceRow reference;
        for (unsigned count = random() % 40; count > 0; --count) {
            const std::int32_t style = std::array{1, 1, 1, 5, 6, 0, 2}[random() % 7];
            std::u16string text = Texts[random() % std::size(Texts)];
            const bool ends = reference.Add(styles, style, text);
            ASSERT_EQ(cells.Add(style, text), ends) << seed << " " << round;
            ASSERT_EQ(cells.Count(), reference.cells.size()) << seed << " " << round;
            for (std::size_t i = 0; i < std::min<std::size_t>(cells.Count(), 5); ++i) {
                ASSERT_EQ(cells[i], reference.cells[i]) << seed << " " << round;
            }
            if (ends) {
                ++rowCount;
                cells.BeginRow();
                reference.cells.clear();
                reference.isWaiting = true;
            }
        }
    }
    EXPECT_GT(rowCount, 1000);
}

}  // namespace
}  // namespace generalutilities
