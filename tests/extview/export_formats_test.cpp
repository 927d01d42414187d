// The bytes of the three formats, written out by hand.

#include <generalutilities/extview/export_options.h>

#include "case_table.h"
#include "extview/html_export.h"
#include "extview/rtf_table_export.h"
#include "extview/twb_export.h"
#include "test_project.h"

#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <vector>

namespace generalutilities {
namespace {

constexpr ExportColors Colors = {.guaranteed = 0x010203,
                                 .exact = 0x040506,
                                 .fuzzy = 0x070809,
                                 .assembled = 0x0A0B0C,
                                 .propagated = 0x0D0E0F,
                                 .autoPropagated = 0x101112,
                                 .locked = 0xFFFEFD,
                                 .pending = 0x00FF00,
                                 .machineTranslated = 0x640000};

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

    TestProject singleRow;
    Written written;
};

// The files of data/ are written out by hand: every byte is looked at.
TEST_F(ExportFormats, Bytes) {
    for (const auto& row : CaseTable("files.tsv")) {
        const std::int32_t language = Number(row[2]);
        TestProject project(language);
        if (language == 1037) {
            project.Execute(u"INSERT INTO Stamp (sLang, sSubLang) VALUES (1, 4)");
        }
        project.Execute(u"INSERT INTO Files (ID, FileName, FileSpec) VALUES (1, 'a.doc', 'c:\\a')");
        project.Add({{.id = row[3],
                      .source = row[4],
                      .target = row[5],
                      .status = Number(row[6]),
                      .comments = row[7],
                      .percentage = Number(row[8])}});
        std::string whole;
        for (const std::string& piece : Export(project, Number(row[1]), language)) {
            whole += piece;
        }
        EXPECT_EQ(whole, ReadFile(TEST_DATA_DIR "/" + Bytes(row[0]))) << Bytes(row[0]);
    }
}

TEST_F(ExportFormats, ColoursEdgesAndMatchValues) {
    const std::regex parts(R"(\\clcbpat\d+|\\cellx\d+|<\\\}\d+\\\{>|<t[dr].*)");
    for (const auto& row : CaseTable("rows.tsv")) {
        singleRow.RemoveRows();
        singleRow.Add({{.id = u"1", .source = u"s", .status = Number(row[1]), .percentage = 95}});
        const auto pieces = Export(singleRow, Number(row[0]));
        ASSERT_EQ(pieces.size(), 3U) << "head, row and foot";
        std::string found;
        for (std::sregex_iterator part(pieces[1].begin(), pieces[1].end(), parts), end; part != end;
             ++part) {
            found += part->str();
        }
        EXPECT_EQ(found, Bytes(row[2])) << Bytes(row[0]) << " " << Bytes(row[1]);
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
