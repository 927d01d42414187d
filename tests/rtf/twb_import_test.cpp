#include "extview/rtf/twb_import.h"

#include "case_table.h"
#include "sample_head.h"
#include "twb_document.h"

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

}  // namespace
}  // namespace generalutilities
