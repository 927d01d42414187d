// The bytes of the RTF table, written out by hand.

#include "extview/rtf_table_export.h"

#include <generalutilities/extview/export_options.h>

#include "test_project.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
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

// The paragraph texts, and a cell definition up to its fill.
#define PARA_0 \
    R"(\ql \li0\ri0\widctlpar\aspalpha\aspnum\faauto\adjustright\rin0\lin0\cgrid\fs18\loch\f0\hich\af0\dbch\af0)"
#define PARA_1 \
    R"(\ql \li0\ri0\widctlpar\aspalpha\aspnum\faauto\adjustright\rin0\lin0\cgrid\fs18\loch\f1\hich\af1\dbch\af1)"
#define PARA_2 \
    R"(\ql \li0\ri0\widctlpar\aspalpha\aspnum\faauto\adjustright\rin0\lin0\cgrid\fs18\loch\f2\hich\af2\dbch\af2)"
#define CELL                                                          \
    R"(\clbrdrt\brdrs\brdrw1\brdrcf10\clbrdrl\brdrs\brdrw1\brdrcf10)" \
    R"(\clbrdrb\brdrs\brdrw1\brdrcf10\clbrdrr\brdrs\brdrw1\brdrcf10)"
#define ROW R"(\trowd\trkeep\ltrrow\trgaph108\trleft0\trbrdrt)"

constexpr char HeadThroughStyles[] =
    R"({\rtf1\adeflang1025\ansi\ansicpg1252\uc1\adeff0\deff0\stshfdbch11\stshfloch0\stshfhich0\stshfbi0\deflang1033\deflangfe2052)"
    "\n"
    R"({\fonttbl{\f0\froman\fcharset0\fprq0 Tahoma;})"
    "\n"
    R"({\f1\froman\fcharset0\fprq0 Source Font;})"
    "\n"
    R"({\f2\froman\fcharset0\fprq0 Target Font;}})"
    "\n"
    R"({\colortbl;\red255\green255\blue255;\red4\green5\blue6;\red7\green8\blue9;)"
    R"(\red10\green11\blue12;\red13\green14\blue15;\red16\green17\blue18;)"
    R"(\red255\green254\blue253;\red0\green255\blue0;\red1\green2\blue3;\red0\green0\blue0;)"
    R"(\red100\green0\blue0;\red0\green0\blue255;})"
    "\n"
    R"({\*\generator Quillon;})"
    "\n"
    R"({\stylesheet{)" PARA_0 R"(\snext0 Normal;}{\*\cs10 )" PARA_0
    R"( Default Paragraph Font;}{\*\ts11 )" PARA_0
    R"( Normal Table;}}{\info{\title External View}})"
    "\n"
    R"(\pard\cs10)" PARA_0 " \n";

std::string Bytes(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<char>(unit));
    }
    return bytes;
}

// Exports the one row of a project and gives the pieces in which it was written.
class RtfTable : public testing::Test {
  protected:
    std::vector<std::string> Export(TestProject& project, std::int32_t options,
                                    std::int32_t language = 1036) {
        CExternalViewRTFExport exporter(
            [this] { return std::make_unique<MemoryFactory>(written); });
        exporter.sourceFont = u"Source Font";
        exporter.targetFont = u"Target Font";
        EXPECT_EQ(
            exporter.RunExport(project.database(), u"out.rtf", 0, language, options, u"", Colors),
            S_OK);
        EXPECT_TRUE(written.closed);
        EXPECT_TRUE(written.released);
        EXPECT_EQ(written.path, u"out.rtf");
        EXPECT_EQ(written.format, TextFileFormat::OneByte);
        std::vector<std::string> pieces;
        for (const auto& piece : written.pieces) {
            pieces.push_back(Bytes(piece));
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

TEST_F(RtfTable, WithoutOptions) {
    TestProject project;
    project.Add({{.id = u"1",
                  .source = u"Open {1}",
                  .target = u"Ouvrir\n{1}",
                  .status = StatusFuzzy,
                  .comments = u"why?"}});
    const auto pieces = Export(project, 0);
    ASSERT_EQ(pieces.size(), 3U);
    EXPECT_EQ(pieces[0], std::string(HeadThroughStyles) + ROW CELL
                             R"(\cellx3583)" CELL R"(\cellx7166)" CELL R"(\cellx8599)"
                             "\n"
                             R"({\pard\intbl{)" PARA_0
                             " Source}\n"
                             R"(\cell\pard\intbl {)" PARA_0
                             " Target}\n"
                             R"(\cell\pard\intbl {)" PARA_0
                             " Comments}\n"
                             R"(\cell \row})"
                             "\n");
    EXPECT_EQ(pieces[1],
              ROW CELL R"(\cellx3583)" CELL R"(\cellx7166)" CELL R"(\cellx8599)"
                       R"({\pard\intbl {)" PARA_1 R"(\lang1033 \ltrch\ltrpar Open \{1\}})"
                       "\n"
                       R"(\cell\pard\intbl {)" PARA_2 R"(\lang1036 \ltrch\ltrpar Ouvrir\par\{1\}})"
                       "\n"
                       R"(\cell\pard\intbl {)" PARA_2 R"(\noproof \ltrch\ltrpar why?})"
                       "\n"
                       R"(\cell \row})"
                       "\n");
    EXPECT_EQ(pieces[2], "}\n");
}

TEST_F(RtfTable, AllColumnsHiddenColouredRightToLeft) {
    TestProject project(1037);
    project.Execute(u"INSERT INTO Stamp (sLang, sSubLang) VALUES (1, 4)");
    project.Execute(u"INSERT INTO Files (ID, FileName, FileSpec) VALUES (1, 'a.doc', 'c:\\a')");
    project.Add({{.id = u"a{7}",
                  .source = u"\u0627",
                  .target = u"",
                  .status = StatusLocked | StatusPending | 0x40000000}});
    const auto pieces = Export(project,
                               ShowIdColumn | ColorAllRows | ShowFileColumn | UseFileSpec |
                                   HideReadOnlyColumns | ShowStatusColumn | ShowStatusValue,
                               1037);
    ASSERT_EQ(pieces.size(), 3U);
    EXPECT_EQ(pieces[0], std::string(HeadThroughStyles) + ROW CELL
                             R"(\cellx860)" CELL R"(\cellx3010)" CELL R"(\cellx5160)" CELL
                             R"(\cellx6020)" CELL R"(\cellx6880)" CELL R"(\cellx8600)"
                             "\n"
                             R"({\pard\intbl{)" PARA_0
                             " ID}\n"
                             R"(\cell\pard\intbl {)" PARA_0
                             " Source}\n"
                             R"(\cell\pard\intbl {)" PARA_0
                             " Target}\n"
                             R"(\cell\pard\intbl {)" PARA_0
                             " Comments}\n"
                             R"(\cell \pard\intbl{)" PARA_0
                             " Status}\n"
                             R"(\cell\pard\intbl{)" PARA_0
                             " Filename}\n"
                             R"(\cell\row})"
                             "\n");
    EXPECT_EQ(pieces[1],
              ROW CELL R"(\clcbpat8\cellx860)" CELL R"(\clcbpat8\cellx3010)" CELL
                       R"(\clcbpat8\cellx5160)" CELL R"(\clcbpat8\cellx6020)" CELL
                       R"(\clcbpat8\cellx6880)" CELL R"(\clcbpat8\cellx8600)"
                       R"({\pard\intbl{)" PARA_0 R"(\v \noproof\lang1024 a\{7\}})"
                       "\n"
                       R"(\cell\pard\qr\intbl {)" PARA_1 R"(\v\lang4097 \rtlch\rtlpar \uc0\u1575 })"
                       "\n"
                       R"(\cell\pard\qr\intbl {)" PARA_2 R"(\lang1037 \rtlch\rtlpar })"
                       "\n"
                       R"(\cell\pard\qr\intbl {)" PARA_2 R"(\noproof \rtlch\rtlpar })"
                       "\n"
                       R"(\cell \pard\intbl{)" PARA_0 R"(\v\noproof 1073743360}\cell )"
                       "\n"
                       R"(\pard\intbl {)" PARA_0 R"(\v\noproof c:\\a})"
                       "\n"
                       R"(\cell \row})"
                       "\n");
}

TEST_F(RtfTable, StatusCellOfAnUncolouredRow) {
    singleRow.Execute(u"INSERT INTO Files (ID, FileName, FileSpec) VALUES (1, 'a.doc', 'c:\\a')");
    EXPECT_EQ(ExportRow({.id = u"1", .source = u"s", .target = u"t", .status = StatusExact},
                        ShowIdColumn | ShowStatusColumn | ShowStatusValue | ColorStatusCell |
                            ShowFileColumn),
              ROW CELL R"(\cellx860)" CELL R"(\cellx3010)" CELL R"(\cellx5160)" CELL
                       R"(\cellx6020)" CELL R"(\clcbpat2\cellx6880)" CELL R"(\cellx8600)"
                       R"({\pard\intbl{)" PARA_0 R"(\noproof\lang1024 1})"
                       "\n"
                       R"(\cell\pard\intbl {)" PARA_1 R"(\lang1033 \ltrch\ltrpar s})"
                       "\n"
                       R"(\cell\pard\intbl {)" PARA_2 R"(\lang1036 \ltrch\ltrpar t})"
                       "\n"
                       R"(\cell\pard\intbl {)" PARA_2 R"(\noproof \ltrch\ltrpar })"
                       "\n"
                       R"(\cell \pard\intbl{)" PARA_0 R"(\noproof 1}\cell )"
                       "\n"
                       R"(\pard\intbl {)" PARA_0 R"(\noproof a.doc})"
                       "\n"
                       R"(\cell \row})"
                       "\n");
}

TEST_F(RtfTable, StatusColumnWithoutValue) {
    // Hidden or not, a cell without the number has its paragraph text alone.
    EXPECT_EQ(ExportRow({.id = u"1", .source = u"s", .target = u"t"},
                        ShowStatusColumn | HideReadOnlyColumns),
              ROW CELL R"(\cellx3071)" CELL R"(\cellx6142)" CELL R"(\cellx7370)" CELL
                       R"(\cellx8598)"
                       R"({\pard\intbl {)" PARA_1 R"(\v\lang1033 \ltrch\ltrpar s})"
                       "\n"
                       R"(\cell\pard\intbl {)" PARA_2 R"(\lang1036 \ltrch\ltrpar t})"
                       "\n"
                       R"(\cell\pard\intbl {)" PARA_2 R"(\noproof \ltrch\ltrpar })"
                       "\n"
                       R"(\cell \pard\intbl{)" PARA_0 R"(}\cell )"
                       "\n"
                       R"(\row})"
                       "\n");
}

TEST_F(RtfTable, ColourOfARow) {
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
        EXPECT_TRUE(row.starts_with(ROW CELL + fill + R"(\cellx3583)" CELL + fill +
                                    R"(\cellx7166)" CELL + fill + R"(\cellx8599{\pard)"))
            << status << '\n'
            << row;
    }
}

TEST_F(RtfTable, CellEdges) {
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
TEST_F(RtfTable, ThroughTheBuiltInWriter) {
    TestProject project;
    project.Add({{.id = u"1", .source = u"s"}});
    const auto path =
        std::filesystem::temp_directory_path() / ("rtf-table-" + std::to_string(getpid()) + ".rtf");
    CExternalViewRTFExport exporter;
    exporter.sourceFont = u"\u00C4 {\u5B8B";
    EXPECT_EQ(exporter.RunExport(project.database(), path.u16string(), 1, 1036, 0, u"", Colors),
              S_OK);
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::filesystem::remove(path);
    EXPECT_TRUE(bytes.starts_with("{\\rtf1"));
    EXPECT_TRUE(bytes.ends_with("\\cell \\row}\n}\n"));
    EXPECT_NE(bytes.find("\\fprq0 \xC4 {\x8B;}\n"), bytes.npos);
}

}  // namespace
}  // namespace generalutilities
