#include "extview/rtf_escape.h"

#include "extview/decimal.h"

namespace generalutilities::rtf {

namespace {

constexpr std::u16string_view LineEnd = u"\\par";
constexpr std::u16string_view Tab = u"\\tab";

bool IsPlain(char16_t unit) {
    return unit >= 0x20 && unit < 0x80 && unit != u'{' && unit != u'}' && unit != u'\\';
}

void AppendControlCharacter(std::u16string& output, char16_t unit) {
    constexpr char16_t HexDigits[] = u"0123456789ABCDEF";
    output.append(u"\\'").append(1, HexDigits[unit >> 4]).append(1, HexDigits[unit & 0xF]);
}

void AppendUnicode(std::u16string& output, char16_t unit) {
    output.append(u"\\uc0\\u");
    AppendDecimal(output, unit);
    output.push_back(u' ');
}

}  // namespace

void AppendEscaped(std::u16string& output, std::u16string_view text) {
    bool needBlank = false;  // the output ends in a control word that a letter would lengthen
    std::size_t position = 0;
    while (position < text.size()) {
        const std::size_t first = position;
        while (position < text.size() && IsPlain(text[position])) {
            ++position;
        }
        if (position > first) {
            if (needBlank) {
                output.push_back(u' ');
            }
            output.append(text, first, position - first);
            continue;
        }
        const char16_t unit = text[position++];
        needBlank = unit == u'\r' || unit == u'\n' || unit == u'\t';
        if (unit == u'\r' || unit == u'\n') {
            if (unit == u'\r' && position < text.size() && text[position] == u'\n') {
                ++position;
            }
            output.append(LineEnd);
        } else if (unit == u'\t') {
            output.append(Tab);
        } else if (unit >= 0x80) {
            AppendUnicode(output, unit);
        } else if (unit < 0x20) {
            AppendControlCharacter(output, unit);
        } else {
            output.append(1, u'\\').append(1, unit);
        }
    }
}

}  // namespace generalutilities::rtf
