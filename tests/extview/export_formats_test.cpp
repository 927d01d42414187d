// The bytes of the three formats, written out by hand.

#include <generalutilities/extview/export_options.h>

#include "case_table.h"
#include "extview/html_export.h"
#include "extview/rtf_table_export.h"
#include "extview/twb_export.h"
#include "test_project.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace generalutilities {
namespace {

using testing_support::MemoryFactory;
using testing_support::PairRow;
using testing_support::TestProject;
using testing_support::Written;

constexpr ExportColors Colors = {.guaranteed = 0x010203,
                                 .exact = 0x040506,
                                 .fuzzy = 0x070809,
                                 .assembled = 0x0A0B0C,
                                 .propagated = 0x0D0E0F,
                                 .autoPropagated = 0x101112,
                                 .locked = 0xFFFEFD,
                                 .pending = 0x00FF00,
                                 .machineTranslated = 0x640000};

// Exports the one row of a project and gives the pieces in which it was written.
class ExportFormats : public testing::Test {
  protected:
    std::unique_ptr<CExternalViewExport> Exporter(std::int32_t options) {
        const auto memory = [this] { return std::make_unique<MemoryFactory>(written); };
        if ((options & FormatHtml) != 0) {
            return std::make_unique<CHTMLExport>(memory);
        }
        if ((options & FormatTwb) != 0) {
            return std::make_unique<CExternalViewTWBExport>(memory);
        }
        return std::make_unique<CExternalViewRTFExport>(memory);
    }

    std::vector<std::string> Export(TestProject& project, std::int32_t options,
                                    std::int32_t language = 1036) {
        const auto exporter = Exporter(options);
        exporter->sourceFont = u"Source Font";
        exporter->targetFont = u"Target Font";
        // A second export begins anew.
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(
                exporter->RunExport(project.database(), u"out", 0, language, options, u"", Colors),
                S_OK);
        }
        EXPECT_TRUE(written.closed);
        EXPECT_TRUE(written.released);
        EXPECT_EQ(written.path, u"out");
        EXPECT_EQ(written.format,
                  (options & FormatHtml) != 0 ? TextFileFormat::Utf8 : TextFileFormat::OneByte);
        std::vector<std::string> pieces;
        for (const auto& piece : written.pieces) {
            pieces.push_back(std::filesystem::path(piece).string());  // as UTF-8
        }
        return pieces;
    }

    // The row that stands alone in a project, without head and foot.
    std::string ExportRow(const PairRow& row, std::int32_t options) {
        singleRow.RemoveRows();
        singleRow.Add({row});
        const auto pieces = Export(singleRow, options);
        EXPECT_EQ(pieces.size(), 3U);
        return pieces.size() == 3 ? pieces[1] : std::string();
    }

    TestProject singleRow;
    Written written;
};

// The files of data/ are written out by hand: every byte is looked at.
TEST_F(ExportFormats, Bytes) {
    constexpr std::int32_t WholeStatus = ShowStatusColumn | ShowStatusValue;
    const struct {
        const char* file;
        PairRow row;
        std::int32_t options;
        std::int32_t language = 1036;
    } cases[] = {
        {"plain.rtf", {u"1", u"Open {1}", u"Ouvrir\n{1}", StatusFuzzy, u"why?"}, 0},
        {"everything.rtf",
         {u"a{7}", u"\u0627", u"", StatusLocked | StatusPending | 0x40000000},
         ShowIdColumn | ColorAllRows | ShowFileColumn | UseFileSpec | HideReadOnlyColumns |
             WholeStatus,
         1037},
        {"status-colour.rtf",
         {u"1", u"s", u"t", StatusExact},
         ShowIdColumn | WholeStatus | ColorStatusCell | ShowFileColumn},
        // Hidden or not, a status cell without the number has its paragraph text alone.
        {"status-without-value.rtf", {u"1", u"s", u"t"}, ShowStatusColumn | HideReadOnlyColumns},
        // Neither direction nor hidden columns play a part in a page.
        {"everything.html",
         {u"a<7", u"\u0627  {1}<b>", u"", StatusLocked | StatusPending | 0x40000000,
          u"x &\n y   z "},
         FormatHtml | FormatTwb | ShowIdColumn | ShowFileColumn | UseFileSpec |
             HideReadOnlyColumns | WholeStatus,
         1037},
        {"perfect.twb",
         {.id = u"a{7\rx",
          .source = u"Open {12}\u0627",
          .status = StatusLocked | StatusAssembled,
          .percentage = 95},
         FormatTwb | LockedIsPerfect,
         1037},
    };
    for (const auto& test : cases) {
        TestProject project(test.language);
        if (test.language == 1037) {
            project.Execute(u"INSERT INTO Stamp (sLang, sSubLang) VALUES (1, 4)");
        }
        project.Execute(u"INSERT INTO Files (ID, FileName, FileSpec) VALUES (1, 'a.doc', 'c:\\a')");
        project.Add({test.row});
        std::string whole;
        for (const std::string& piece : Export(project, test.options, test.language)) {
            whole += piece;
        }
        EXPECT_EQ(whole, ReadFile(std::string(TEST_DATA_DIR "/") + test.file)) << test.file;
    }
}

TEST_F(ExportFormats, ColourOfATableRow) {
    struct {
        std::int32_t status;
        std::int32_t options;
        std::string fill;
    } const cases[] = {
        {0, 0, ""},
        {StatusExact, 0, ""},
        {StatusLocked, 0, R"(\clcbpat7)"},  // locked rows need no option
        {0, ColorAllRows, R"(\clcbpat0)"},
        {StatusExactExtra | 0x40, ColorAllRows, R"(\clcbpat0)"},
        {StatusExact, ColorAllRows, R"(\clcbpat2)"},
        {StatusExact | StatusFuzzy, ColorAllRows, R"(\clcbpat3)"},
        {StatusFuzzy | StatusAssembled, ColorAllRows, R"(\clcbpat4)"},
        {StatusAssembled | StatusMachineTranslated, ColorAllRows, R"(\clcbpat11)"},
        {StatusMachineTranslated | StatusPropagated, ColorAllRows, R"(\clcbpat5)"},
        {StatusPropagated | StatusAutoPropagated, ColorAllRows, R"(\clcbpat6)"},
        {StatusAutoPropagated | StatusLocked, 0, R"(\clcbpat7)"},
        {StatusLocked | StatusPending, 0, R"(\clcbpat8)"},
        {-1, 0, R"(\clcbpat9)"},
    };
    for (const auto& [status, options, fill] : cases) {
        const auto row = ExportRow({.id = u"1", .source = u"s", .status = status}, options);
        for (const std::string edge : {"\\cellx3583", "\\cellx7166", "\\cellx8599{\\pard"}) {
            EXPECT_NE(row.find("\\brdrcf10" + fill + edge), row.npos) << status << row;
        }
    }
}

TEST_F(ExportFormats, CellsOfAPage) {
    const std::string uncoloured =
        "<tr>\n<td valign=\"top\"><p class=msoNormalSource>s</p></td>\n"
        "<td valign=\"top\"><p class=msoNormalTarget></p></td>\n"
        "<td valign=\"top\"><p class=msoNormal></p></td>\n";
    const std::string blank = "><p class=msoNormal>&nbsp;&nbsp;&nbsp;&nbsp;</p></td>\n</tr>\n";
    const struct {
        std::int32_t status;
        std::int32_t options;
        std::string row;
    } cases[] = {
        {StatusExact, 0, uncoloured + "</tr>\n"},
        {StatusExact, ShowStatusColumn, uncoloured + "<td valign=\"top\"" + blank},
        {StatusExact, ShowStatusColumn | ColorStatusCell,
         uncoloured + "<td bgcolor=#040506 valign=\"top\"" + blank},
        {0, ShowStatusColumn | ColorStatusCell, uncoloured + "<td bgcolor= valign=\"top\"" + blank},
        {0, ColorAllRows,
         "<tr>\n<td bgcolor= valign=\"top\"><p class=msoNormalSource>s</p></td>\n<td bgcolor= "
         "valign=\"top\"><p class=msoNormalTarget></p></td>\n<td bgcolor= valign=\"top\"><p "
         "class=msoNormal></p></td>\n</tr>\n"},
    };
    for (const auto& [status, options, row] : cases) {
        EXPECT_EQ(ExportRow({.id = u"1", .source = u"s", .status = status}, options | FormatHtml),
                  row);
    }
}

TEST_F(ExportFormats, MatchValueOfABilingualRow) {
    constexpr std::int32_t Both = LockedIsPerfect | GuaranteedIsPerfect;
    const struct {
        std::int32_t status;
        std::int32_t options;
        const char* value;
    } cases[] = {
        {StatusFuzzy, Both, "95"},
        {StatusLocked | StatusGuaranteed, 0, "95"},
        {StatusLocked, GuaranteedIsPerfect, "95"},
        {StatusAssembled, Both, "0"},
        {StatusMachineTranslated | StatusGuaranteed, LockedIsPerfect, "0"},
        {StatusMachineTranslated | StatusGuaranteed, Both, "101"},
    };
    for (const auto& [status, options, value] : cases) {
        const PairRow row = {.id = u"1", .source = u"s", .status = status, .percentage = 95};
        EXPECT_NE(ExportRow(row, options | FormatTwb)
                      .find("<\\}" + std::string(value) + "\\{>}\n{\\fs20\\f3\\lang1036 }\n"),
                  std::string::npos)
            << status;
    }
}

TEST_F(ExportFormats, CellEdges) {
    struct {
        std::int32_t options;
        std::vector<std::string> edges;
    } const cases[] = {
        {0, {"3583", "7166", "8599"}},
        {ShowIdColumn, {"1228", "4299", "7370", "8598"}},
        {ShowStatusColumn, {"3071", "6142", "7370", "8598"}},
        {ShowIdColumn | ShowStatusColumn, {"1075", "3762", "6449", "7524", "8599"}},
        {ShowFileColumn, {"2687", "5374", "6449", "8599"}},
        {ShowIdColumn | ShowFileColumn, {"955", "3343", "5731", "6686", "8597"}},
        {ShowStatusColumn | ShowFileColumn, {"2388", "4776", "5731", "6686", "8597"}},
        {ShowIdColumn | ShowStatusColumn | ShowFileColumn,
         {"860", "3010", "5160", "6020", "6880", "8600"}},
    };
    for (const auto& [options, edges] : cases) {
        const auto row = ExportRow({.id = u"1", .source = u"s"}, options);
        std::vector<std::string> found;
        constexpr std::string_view Word = "\\cellx";
        for (auto at = row.find(Word); at != row.npos; at = row.find(Word, at + 1)) {
            const auto first = at + Word.size();
            found.push_back(row.substr(first, row.find_first_of("\\{", first) - first));
        }
        EXPECT_EQ(found, edges) << options;
    }
}

// Font names go out as they are: the low byte of each unit.
TEST_F(ExportFormats, ThroughTheBuiltInWriter) {
    const TemporaryFolder folder;
    singleRow.Add({{.id = u"1", .source = u"s"}});
    CExternalViewRTFExport exporter;
    exporter.sourceFont = u"\u00C4 {\u5B8B";
    EXPECT_EQ(
        exporter.RunExport(singleRow.database(), folder.Path(u"out"), 1, 1036, 0, u"", Colors),
        S_OK);
    const std::string bytes = ReadFile(folder / "out");
    EXPECT_TRUE(bytes.starts_with("{\\rtf1"));
    EXPECT_TRUE(bytes.ends_with("\\cell \\row}\n}\n"));
    EXPECT_NE(bytes.find("\\fprq0 \xC4 {\x8B;}\n"), bytes.npos);
}

}  // namespace
}  // namespace generalutilities
