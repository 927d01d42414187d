#include "extview/twb_export.h"

#include <generalutilities/extview/export_options.h>

#include "extview/rtf_escape.h"
#include "text/decimal.h"

namespace generalutilities {

namespace {

/// The match value of a row that the reviewer is not meant to change.
constexpr std::int32_t Perfect = 101;

constexpr std::u16string_view MarkStart = u"{\\plain \\cs1\\v\\f1\\fs24\\sub\\cf12\\lang1024 ";

}  // namespace

bool CExternalViewTWBExport::OpenOutput() {
    return OpenFile(TextFileFormat::OneByte);
}

void CExternalViewTWBExport::WriteHeader() {
    std::u16string head =
        u"{\\rtf1 \\ansi\\ansicpg1252\\deff3\\deflang1024\n"
        u"{\\fonttbl \n"
        u"{\\f1 \\fmodern\\fprq1 \\fcharset0 Courier New;}\n"
        u"{\\f2 \\fswiss\\fprq2 \\fcharset0 ";
    head.append(sourceFont).append(u";}\n{\\f3 \\froman\\fprq2 \\fcharset0 ").append(targetFont);
    head.append(
        u";}}\n"
        u"{\\colortbl ;\\red0\\green0\\blue0;\\red0\\green0\\blue255;\\red0\\green255\\blue255;"
        u"\\red0\\green255\\blue0;\\red255\\green0\\blue255;\\red255\\green0\\blue0;"
        u"\\red255\\green255\\blue0;\\red255\\green255\\blue255;\\red0\\green0\\blue128;"
        u"\\red0\\green128\\blue128;\\red0\\green128\\blue0;\\red128\\green0\\blue128;"
        u"\\red128\\green0\\blue0;\\red128\\green128\\blue0;\\red128\\green128\\blue128;"
        u"\\red192\\green192\\blue192;}\n"
        u"{\\stylesheet \n"
        u"{\\s0 \\snext0 \\sb0\\slmult1\\widctlpar \\fs20\\f3 Normal;}\n"
        u"{\\cs1 \\additive \\v\\f1\\fs24\\sub\\cf12 tw4winMark;}\n"
        u"{\\cs2 \\cf4\\fs40\\f1 tw4winError;}\n"
        u"{\\cs3 \\f1\\cf11\\lang1024 tw4winPopup;}\n"
        u"{\\cs4 \\f1\\cf10\\lang1024 tw4winJump;}\n"
        u"{\\cs5 \\additive \\f1\\cf15\\lang1024 tw4winExternal;}\n"
        u"{\\cs6 \\additive \\f1\\cf6\\lang1024 tw4winInternal;}\n"
        u"{\\cs7 \\cf2 tw4winTerm;}\n"
        u"{\\cs8 \\f1\\cf13\\lang1024 DO_NOT_TRANSLATE;}}\n"
        u"\\paperw11907\\paperh16840 \n"
        u"\n"
        u"\\pard\\s0\\sb0\\slmult1\\widctlpar\\pard\\s0\\sb0\\slmult1\\widctlpar \\plain "
        u"\\fs20\\f1 \n");
    output->Write(head);
}

void CExternalViewTWBExport::WriteRow(std::u16string_view id, std::u16string_view source,
                                      std::u16string_view target, std::u16string_view /*comments*/,
                                      std::int32_t status, std::u16string_view /*fileName*/,
                                      std::int32_t percentage) {
    row.assign(u"{\\cs5\\f1\\cf15\\lang1024 <ID ");
    rtf::AppendEscaped(row, id);
    row.append(u"> }\n").append(MarkStart).append(u"\\{0>}\n{\\v\\fs20\\f2\\lang1024 ");
    rtf::AppendSegment(row, source);
    row.append(u"}\n").append(MarkStart).append(u"<\\}");
    AppendDecimal(row, MatchValue(status, percentage));
    row.append(u"\\{>}\n{\\fs20\\f3\\lang");
    AppendDecimal(row, targetLangId);
    row.append(u" ");
    rtf::AppendSegment(row, target);
    row.append(u"}\n").append(MarkStart).append(u"<0\\}}\n{\\f3\\par}\n");
    output->Write(row);
}

std::int32_t CExternalViewTWBExport::MatchValue(std::int32_t status,
                                                std::int32_t percentage) const {
    if ((flags.lockedIsPerfect && (status & StatusLocked) != 0) ||
        (flags.guaranteedIsPerfect && (status & StatusGuaranteed) != 0)) {
        return Perfect;
    }
    return (status & (StatusAssembled | StatusMachineTranslated)) != 0 ? 0 : percentage;
}

void CExternalViewTWBExport::WriteFooter() {
    output->Write(u"}\n");
}

}  // namespace generalutilities
