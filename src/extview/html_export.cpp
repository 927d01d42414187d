#include "extview/html_export.h"

#include "text/decimal.h"

namespace generalutilities {

namespace {

constexpr std::u16string_view PlainCell = u"<td valign=\"top\">";
constexpr std::u16string_view Paragraph = u"<p class=msoNormal>";
constexpr std::u16string_view CellEnd = u"</p></td>\n";

// The style sheet of a word processor's page. The names of the fonts stand between the pieces.
constexpr std::u16string_view HeadToSourceFont =
    uR"(<html>
<head>
<meta http-equiv=Content-Type content="text/html; charset=utf-8">
<title></title>
<style>
<!--
 /* Style Definitions */
 p.MsoNormal , li.MsoNormal, div.MsoNormal
  {mso-style-parent:"";
  margin:0cm;
  margin-bottom:.0001pt;
  mso-pagination:widow-orphan;
  font-size:10.0pt;
  font-family:"Tahoma";}
p.msoNormalSource , li.msoNormalSource, div.msoNormalSource
  {mso-style-name:msoNormalSource;
  mso-style-parent:"";
  margin:0cm;
  margin-bottom:.0001pt;
  mso-pagination:widow-orphan;
  font-size:12.0pt;
  font-family: ")";
constexpr std::u16string_view SourceFontToTargetFont =
    uR"(";}
p.msoNormalTarget , li.msoNormalTarget, div.msoNormalTarget
  {mso-style-name:msoNormalTarget;
  mso-style-parent:"";
  margin:0cm;
  margin-bottom:.0001pt;
  mso-pagination:widow-orphan;
  font-size:12.0pt;
  font-family: ")";
constexpr std::u16string_view TargetFontToTable =
    uR"(";}
-->
</style>
<!--[if gte mso 10]>
<style>
 /* Style Definitions */
 Table.MsoNormalTable
  {mso-style-name:"Table Normal";
  mso-tstyle-rowband-size:0;
  mso-tstyle-colband-size:0;
  mso-style-noshow:yes;
  mso-style-parent:"";
  mso-padding-alt:0cm 5.4pt 0cm 5.4pt;
  mso-para-margin:0cm;
  mso-para-margin-bottom:.0001pt;
  mso-pagination:widow-orphan;
  font-size:10.0pt;
  font-family:"Tahoma";}
</style>
<![endif]-->
</head>
<body>
<div>
)"
    u"<table border=1 cellspacing=1 cellpadding=2 style='border-collapse:collapse;border:none;"
    u"mso-border-alt:solid windowtext .1pt; mso-yfti-tbllook:480;mso-padding-alt:0.2cm 0.2cm "
    u"0.2cm 0.2cm;mso-border-insideh: .1pt solid windowtext;mso-border-insidev:.1pt solid "
    u"windowtext'>\n<tr>\n";

}  // namespace

bool CHTMLExport::OpenOutput() {
    colorTexts.assign(1, u"");  // of the rows whose status has no colour
    return OpenFile(TextFileFormat::Utf8);
}

void CHTMLExport::AddColor(std::int32_t rgb) {
    constexpr char16_t HexDigits[] = u"0123456789ABCDEF";
    std::u16string text = u"#";
    for (int shift = 20; shift >= 0; shift -= 4) {
        text += HexDigits[(rgb >> shift) & 0xF];
    }
    colorTexts.push_back(text);
}

void CHTMLExport::WriteHeader() {
    std::u16string head(HeadToSourceFont);
    head.append(sourceFont).append(SourceFontToTargetFont);
    head.append(targetFont).append(TargetFontToTable);
    const auto heading = [&head](std::u16string_view name) {
        head.append(PlainCell).append(Paragraph).append(name).append(CellEnd);
    };
    if (flags.showIdColumn) {
        heading(u"ID");
    }
    heading(u"Source");
    heading(u"Target");
    heading(u"Comments");
    if (flags.showStatusColumn) {
        heading(u"Status");
    }
    if (flags.showFileColumn) {
        heading(u"Filename");
    }
    head.append(u"</tr>\n");
    output->Write(head);
}

void CHTMLExport::WriteRow(std::u16string_view id, std::u16string_view source,
                           std::u16string_view target, std::u16string_view comments,
                           std::int32_t status, std::u16string_view fileName,
                           std::int32_t /*percentage*/) {
    const bool colored = IsRowColored(status);
    if (colored || flags.colorStatusCell) {
        const auto number = static_cast<std::size_t>(ColorNumberOfRow(status));
        coloredCell.assign(u"<td bgcolor=").append(colorTexts[number]).append(u" valign=\"top\">");
    }
    const std::u16string_view cell = colored ? std::u16string_view(coloredCell) : PlainCell;
    const auto addText = [&](std::u16string_view style, std::u16string_view text) {
        row.append(cell).append(style);
        html::AppendText(row, text);
        row.append(CellEnd);
    };

    row.assign(u"<tr>\n");
    if (flags.showIdColumn) {
        row.append(cell).append(Paragraph).append(id).append(CellEnd);
    }
    addText(u"<p class=msoNormalSource>", source);
    addText(u"<p class=msoNormalTarget>", target);
    addText(Paragraph, comments);
    if (flags.showStatusColumn) {
        row.append(flags.colorStatusCell ? coloredCell : cell).append(Paragraph);
        if (flags.showStatusValue) {
            AppendDecimal(row, status);
        } else {
            row.append(u"&nbsp;&nbsp;&nbsp;&nbsp;");
        }
        row.append(CellEnd);
    }
    if (flags.showFileColumn) {
        addText(Paragraph, fileName);
    }
    row.append(u"</tr>\n");
    output->Write(row);
}

void CHTMLExport::WriteFooter() {
    output->Write(u"</table>\n</div>\n</body>\n</html>\n");
}

void html::AppendText(std::u16string& output, std::u16string_view text) {
    bool afterBlank = false;
    std::size_t copied = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        const bool isBlank = unit == u' ';
        const std::u16string_view entity = unit == u'<'            ? u"&lt;"
                                           : unit == u'>'          ? u"&gt;"
                                           : unit == u'&'          ? u"&amp;"
                                           : isBlank && afterBlank ? u"&nbsp;"
                                                                   : u"";
        afterBlank = isBlank;
        if (!entity.empty()) {
            output.append(text, copied, i - copied).append(entity);
            copied = i + 1;
        }
    }
    output.append(text, copied);
}

}  // namespace generalutilities
