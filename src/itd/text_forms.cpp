#include <generalutilities/itd/text_forms.h>

#include "text/decimal.h"

namespace generalutilities {

namespace {

struct Entity {
    char16_t character;
    std::u16string_view name;  ///< behind the "&"
};
constexpr Entity Entities[] = {{u'&', u"amp;"}, {u'<', u"lt;"}, {u'>', u"gt;"}};

void AppendEscaped(std::u16string& result, std::u16string_view text) {
    for (std::size_t start = 0;;) {
        const std::size_t special = text.find_first_of(u"&<>", start);
        result += text.substr(start, special - start);
        if (special == text.npos) {
            return;
        }
        for (const Entity& entity : Entities) {
            if (text[special] == entity.character) {
                (result += u'&') += entity.name;
            }
        }
        start = special + 1;
    }
}

void AppendField(std::u16string& text, std::u16string_view name, std::uint32_t value) {
    ((text += u'<') += name) += u'>';
    AppendDecimal(text, value);
    ((text += u"</") += name) += u'>';
}

}  // namespace

std::u16string EscapeMarkup(std::u16string_view text) {
    std::u16string result;
    AppendEscaped(result, text);
    return result;
}

std::u16string UnescapeMarkup(std::u16string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char16_t unit = text[i];
        if (unit == u'&') {
            for (const Entity& entity : Entities) {
                if (text.substr(i + 1).starts_with(entity.name)) {
                    unit = entity.character;
                    i += entity.name.size();
                    break;
                }
            }
        }
        result += unit;
    }
    return result;
}

std::u16string EscapeBraces(std::u16string_view text) {
    std::u16string result;
    for (std::size_t start = 0;;) {
        const std::size_t special = text.find_first_of(u"\\{}", start);
        result += text.substr(start, special - start);
        if (special == text.npos) {
            return result;
        }
        (result += u'\\') += text[special];
        start = special + 1;
    }
}

void AppendBlockTag(std::u16string& text, const ItdBlock& block) {
    text += u"<itbh>";
    AppendField(text, u"pid", block.pid);
    AppendField(text, u"f2", block.f2);
    AppendField(text, u"f3", block.f3);
    AppendField(text, u"sid", block.sid);
    text += u"</itbh>";
}

void AppendCodeText(std::u16string& text, std::u16string_view code) {
    text += u"<ut>";
    AppendEscaped(text, code);
    text += u"</ut>";
}

std::u16string BinaryElement(std::u16string_view name, std::string_view bytes) {
    constexpr std::u16string_view Digits = u"0123456789ABCDEF";
    std::u16string text;
    text.reserve(2 * bytes.size() + 2 * name.size() + 5);
    ((text += u'<') += name) += u'>';
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        (text += Digits[value >> 4]) += Digits[value & 15];
    }
    ((text += u"</") += name) += u'>';
    return text;
}

}  // namespace generalutilities
