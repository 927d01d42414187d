// The file is made of fixed pieces. Those of the cells depend on the options, fonts and languages
// of the export alone, so they are put together once, in PrepareLayout, and a row is the row
// definition followed by piece, text, piece, text.

#include "extview/rtf_table_export.h"

#include "extview/rtf_escape.h"
#include "text/decimal.h"

namespace generalutilities {

namespace {

constexpr std::u16string_view RowHead = u"\\trowd\\trkeep\\ltrrow\\trgaph108\\trleft0\\trbrdrt";
constexpr std::u16string_view CellEdge = u"\\cellx";
constexpr std::int32_t Blue = 0x0000FF;

std::u16string_view Direction(bool rightToLeft) {
    return rightToLeft ? u"\\rtlch\\rtlpar " : u"\\ltrch\\ltrpar ";
}

std::u16string_view Alignment(bool rightToLeft) {
    return rightToLeft ? std::u16string_view(u"\\qr") : std::u16string_view();
}

std::int32_t Cut(float width) {
    return static_cast<std::int32_t>(width);
}

}  // namespace

bool CExternalViewRTFExport::OpenOutput() {
    colorTable.clear();
    return OpenFile(TextFileFormat::OneByte);
}

void CExternalViewRTFExport::AddColor(std::int32_t rgb) {
    colorTable.append(u"\\red");
    AppendDecimal(colorTable, (rgb >> 16) & 0xFF);
    colorTable.append(u"\\green");
    AppendDecimal(colorTable, (rgb >> 8) & 0xFF);
    colorTable.append(u"\\blue");
    AppendDecimal(colorTable, rgb & 0xFF);
    colorTable.append(u";");
}

void CExternalViewRTFExport::PrepareLayout() {
    ComputeCellEdges();
    const std::u16string color = Decimal(statusColors.at(BorderColorKey));
    border.clear();
    for (const char16_t side : {u't', u'l', u'b', u'r'}) {
        border.append(u"\\clbrdr").append(1, side).append(u"\\brdrs\\brdrw1\\brdrcf").append(color);
    }
    rowPrefix.clear();
    AppendRowDefinition(rowPrefix, {});
    BuildCellStarts();
}

void CExternalViewRTFExport::ComputeCellEdges() {
    float total = ColumnShare::SourceAndTarget;
    total += flags.showIdColumn ? ColumnShare::Id : 0.0F;
    total += ColumnShare::Comments;
    total += flags.showStatusColumn ? ColumnShare::Status : 0.0F;
    total += flags.showFileColumn ? ColumnShare::File : 0.0F;
    const auto width = [total](float share) { return Cut(share / total * tableWidth); };

    const std::int32_t half = Cut(ColumnShare::SourceAndTarget / total * 0.5F * tableWidth);
    std::int32_t edge = flags.showIdColumn ? width(ColumnShare::Id) : 0;
    cellRightEdge[IdColumn] = edge;
    cellRightEdge[SourceColumn] = edge += half;
    cellRightEdge[TargetColumn] = edge += half;
    cellRightEdge[CommentsColumn] = edge += width(ColumnShare::Comments);
    if (flags.showStatusColumn) {
        cellRightEdge[StatusColumn] = edge += width(ColumnShare::Status);
    }
    if (flags.showFileColumn) {
        cellRightEdge[FileColumn] = edge + width(ColumnShare::File);
    }
}

std::u16string CExternalViewRTFExport::Para(int font) {
    const std::u16string number = Decimal(font);
    return u"\\ql "
           u"\\li0\\ri0\\widctlpar\\aspalpha\\aspnum\\faauto\\adjustright\\rin0\\lin0\\cgrid\\fs" +
           Decimal(fontSize) + u"\\loch\\f" + number + u"\\hich\\af" + number + u"\\dbch\\af" +
           number;
}

void CExternalViewRTFExport::AppendCellDefinition(std::u16string& text, std::u16string_view fill,
                                                  Column column) const {
    text.append(border).append(fill).append(CellEdge);
    AppendDecimal(text, cellRightEdge[column]);
}

void CExternalViewRTFExport::AppendRowDefinition(std::u16string& text,
                                                 std::u16string_view fill) const {
    text.append(RowHead);
    if (flags.showIdColumn) {
        AppendCellDefinition(text, fill, IdColumn);
    }
    AppendCellDefinition(text, fill, SourceColumn);
    AppendCellDefinition(text, fill, TargetColumn);
    AppendCellDefinition(text, fill, CommentsColumn);
}

// Hidden text keeps a reviewer's hands off what must not change: \v in front of the text.
void CExternalViewRTFExport::BuildCellStarts() {
    const bool hidden = flags.hideReadOnlyColumns;
    const std::u16string hide = hidden ? u"\\v" : u"";

    cellStart[IdColumn] =
        u"\\intbl{" + Para(0) + (hidden ? u"\\v " : u"") + u"\\noproof\\lang1024 ";

    cellStart[SourceColumn] = Alignment(sourceIsRightToLeft);
    cellStart[SourceColumn] +=
        u"\\intbl {" + Para(1) + hide + u"\\lang" + Decimal(sourceLangId) + u" ";
    cellStart[SourceColumn] += Direction(sourceIsRightToLeft);

    cellStart[TargetColumn] = Alignment(targetIsRightToLeft);
    cellStart[TargetColumn] += u"\\intbl {" + Para(2) + u"\\lang" + Decimal(targetLangId) + u" ";
    cellStart[TargetColumn] += Direction(targetIsRightToLeft);

    cellStart[CommentsColumn] = Alignment(targetIsRightToLeft);
    cellStart[CommentsColumn] += u"\\intbl {" + Para(2) + u"\\noproof ";
    cellStart[CommentsColumn] += Direction(targetIsRightToLeft);

    cellStart[StatusColumn] = u"\\pard\\intbl{" + Para(0);
    if (flags.showStatusValue) {
        cellStart[StatusColumn] += hide + u"\\noproof ";
    }
    cellStart[FileColumn] = u"\\pard\\intbl {" + Para(0) + hide + u"\\noproof ";
}

void CExternalViewRTFExport::WriteHeader() {
    AddColor(Blue);  // closes the colour table; no cell uses it
    const std::u16string para = Para(0);
    std::u16string head;
    head.append(
        u"{\\rtf1\\adeflang1025\\ansi\\ansicpg1252\\uc1\\adeff0\\deff0\\stshfdbch11\\stshfloch0"
        u"\\stshfhich0\\stshfbi0\\deflang1033\\deflangfe2052\n");
    head.append(u"{\\fonttbl{\\f0\\froman\\fcharset0\\fprq0 Tahoma;}\n");
    head.append(u"{\\f1\\froman\\fcharset0\\fprq0 ").append(sourceFont).append(u";}\n");
    head.append(u"{\\f2\\froman\\fcharset0\\fprq0 ").append(targetFont).append(u";}}\n");
    head.append(u"{\\colortbl;").append(colorTable).append(u"}\n");
    head.append(u"{\\*\\generator Quillon;}\n");
    head.append(u"{\\stylesheet{").append(para).append(u"\\snext0 Normal;}");
    head.append(u"{\\*\\cs10 ").append(para).append(u" Default Paragraph Font;}");
    head.append(u"{\\*\\ts11 ").append(para).append(u" Normal Table;}}");
    head.append(u"{\\info{\\title External View}}\n");
    head.append(u"\\pard\\cs10").append(para).append(u" \n");

    head.append(rowPrefix);
    if (flags.showStatusColumn) {
        AppendCellDefinition(head, {}, StatusColumn);
    }
    if (flags.showFileColumn) {
        AppendCellDefinition(head, {}, FileColumn);
    }
    head.append(u"\n{\\pard\\intbl{");
    if (flags.showIdColumn) {
        head.append(para).append(u" ID}\n\\cell\\pard\\intbl {");
    }
    head.append(para).append(u" Source}\n\\cell\\pard\\intbl {");
    head.append(para).append(u" Target}\n\\cell\\pard\\intbl {");
    head.append(para).append(u" Comments}\n\\cell ");
    if (flags.showStatusColumn) {
        head.append(u"\\pard\\intbl{").append(para).append(u" Status}\n\\cell");
    }
    if (flags.showFileColumn) {
        head.append(u"\\pard\\intbl{").append(para).append(u" Filename}\n\\cell");
    }
    head.append(u"\\row}\n");
    output->Write(head);
}

void CExternalViewRTFExport::WriteRow(std::u16string_view id, std::u16string_view source,
                                      std::u16string_view target, std::u16string_view comments,
                                      std::int32_t status, std::u16string_view fileName,
                                      std::int32_t /*percentage*/) {
    const bool colored = IsRowColored(status);
    std::u16string fill;
    if (colored || flags.colorStatusCell) {
        fill = u"\\clcbpat";
        AppendDecimal(fill, ColorNumberOfRow(status));
    }
    const std::u16string_view rowFill = colored ? std::u16string_view(fill) : std::u16string_view();

    row.clear();
    if (colored) {
        AppendRowDefinition(row, rowFill);
    } else {
        row.append(rowPrefix);
    }
    if (flags.showStatusColumn) {
        AppendCellDefinition(row, fill, StatusColumn);
    }
    if (flags.showFileColumn) {
        AppendCellDefinition(row, rowFill, FileColumn);
    }

    row.append(u"{\\pard");
    if (flags.showIdColumn) {
        row.append(cellStart[IdColumn]);
        rtf::AppendEscaped(row, id);
        row.append(u"}\n\\cell\\pard");
    }
    row.append(cellStart[SourceColumn]);
    rtf::AppendEscaped(row, source);
    row.append(u"}\n\\cell\\pard");
    row.append(cellStart[TargetColumn]);
    rtf::AppendEscaped(row, target);
    row.append(u"}\n\\cell\\pard");
    row.append(cellStart[CommentsColumn]);
    rtf::AppendEscaped(row, comments);
    row.append(u"}\n\\cell ");
    if (flags.showStatusColumn) {
        row.append(cellStart[StatusColumn]);
        if (flags.showStatusValue) {
            AppendDecimal(row, status);
        }
        row.append(u"}\\cell \n");
    }
    if (flags.showFileColumn) {
        row.append(cellStart[FileColumn]);
        rtf::AppendEscaped(row, fileName);
        row.append(u"}\n\\cell ");
    }
    row.append(u"\\row}\n");
    output->Write(row);
}

void CExternalViewRTFExport::WriteFooter() {
    output->Write(u"}\n");
}

}  // namespace generalutilities
