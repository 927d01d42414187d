// The text goes through a buffer, since a string that grows by a few units at a time spends most of
// its time on growing. Only long runs of plain units, whose ends vectors find, are appended as they
// are.

#include "extview/rtf_escape.h"

#include "platform/cpu.h"

#include <algorithm>
#include <array>
#include <utility>

namespace generalutilities::rtf {

namespace {

constexpr auto PlainAscii = [] {
    std::array<bool, 128> plain{};
    for (std::size_t unit = 0x20; unit < plain.size(); ++unit) {
        plain[unit] = unit != u'{' && unit != u'}' && unit != u'\\';
    }
    return plain;
}();

constexpr bool IsPlain(char16_t unit) {
    return unit < PlainAscii.size() && PlainAscii[unit];
}

std::size_t PlainRun(std::u16string_view text) {
    return HasAvx2() ? PlainRunByBlocks(text) : PlainRunUnitByUnit(text);
}

template <std::size_t Size>
char16_t* Write(const char16_t (&literal)[Size], char16_t* out) {
    return std::copy_n(literal, Size - 1, out);
}

char16_t* WriteControlCharacter(char16_t unit, char16_t* out) {
    constexpr char16_t HexDigits[] = u"0123456789ABCDEF";
    out = Write(u"\\'", out);
    *out++ = HexDigits[unit >> 4];
    *out++ = HexDigits[unit & 0xF];
    return out;
}

char16_t Digit(unsigned value) {
    return static_cast<char16_t>(u'0' + value);
}

/// Of 128 and more, so there are three digits at least.
char16_t* WriteUnicode(char16_t unit, char16_t* out) {
    out = Write(u"\\uc0\\u", out);
    if (unit >= 10000) {
        *out++ = Digit(unit / 10000u);
    }
    if (unit >= 1000) {
        *out++ = Digit(unit / 1000u % 10);
    }
    *out++ = Digit(unit / 100u % 10);
    *out++ = Digit(unit / 10u % 10);
    *out++ = Digit(unit % 10u);
    *out++ = u' ';
    return out;
}

bool IsDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

/// The length of the placeholder at the start of a text: "{", digits, "}"; 0 if there is none.
std::size_t PlaceholderLength(std::u16string_view text) {
    if (!text.starts_with(u'{')) {
        return 0;
    }
    const auto end = std::find_if_not(text.begin() + 1, text.end(), IsDigit);
    const bool isOne = end - text.begin() > 1 && end != text.end() && *end == u'}';
    return isOne ? static_cast<std::size_t>(end - text.begin()) + 1 : 0;
}

/// What the two kinds of text do not have in common.
struct Table {
    static constexpr bool hasPlaceholders = false;
    static constexpr char16_t lineEnd[] = u"\\par";
};
struct Segment {
    static constexpr bool hasPlaceholders = true;
    static constexpr char16_t lineEnd[] = u"\\line";
};

/// The escaped text, in pieces.
template <class Kind>
class Escapes {
  public:
    /// Escapes as much of the text as the buffer holds, up to a placeholder, and of a long plain
    /// run but the start; how many units.
    std::size_t Read(std::u16string_view text) {
        end = buffer.data();
        std::size_t position = 0;
        while (position < text.size() &&
               static_cast<std::size_t>(buffer.data() + buffer.size() - end) >= Longest) {
            const char16_t unit = text[position];
            if (!IsPlain(unit)) {
                if (IsPlaceholder(text.substr(position))) {
                    break;
                }
                position += Escape(text.substr(position));
                continue;
            }
            escaped = false;
            if (std::exchange(afterWord, false)) {
                *end++ = u' ';
            }
            const std::size_t first = position;
            const std::size_t most = std::min(text.size(), position + LongRun);
            do {
                *end++ = text[position++];
            } while (position < most && IsPlain(text[position]));
            if (position - first == LongRun) {
                break;
            }
        }
        return position;
    }

    std::u16string_view Text() const { return {buffer.data(), end}; }

    /// Whether a placeholder begins here. A brace behind an odd number of backslashes begins none.
    bool IsPlaceholder(std::u16string_view text) const {
        return Kind::hasPlaceholders && !escaped && PlaceholderLength(text) > 0;
    }

    /// Tells of units that were taken without `Read`.
    void Pass(std::size_t units) { escaped = escaped && units == 0; }

    /// Whether the text ends in a control word that a letter would lengthen.
    bool AfterWord() const { return afterWord; }

  private:
    /// Longer plain runs are appended without the buffer.
    static constexpr std::size_t LongRun = 16;
    static constexpr std::size_t Longest = LongRun + 1;

    /// Escapes one unit, or a CR LF; how many units.
    std::size_t Escape(std::u16string_view text) {
        const char16_t unit = text[0];
        escaped = unit == u'\\' && !escaped;
        if (unit >= 0x80) {
            end = WriteUnicode(unit, end);
            afterWord = false;
        } else if (unit == u'\r' || unit == u'\n') {
            end = Write(Kind::lineEnd, end);
            afterWord = true;
            return text.starts_with(u"\r\n") ? 2 : 1;
        } else if (unit == u'\t' && !Kind::hasPlaceholders) {
            end = Write(u"\\tab", end);
            afterWord = true;
        } else if (unit < 0x20) {
            end = WriteControlCharacter(unit, end);
            afterWord = false;
        } else {
            *end++ = u'\\';
            *end++ = unit;
            afterWord = afterWord && Kind::hasPlaceholders;
        }
        return 1;
    }

    std::array<char16_t, 512> buffer;
    char16_t* end = buffer.data();
    bool afterWord = false;
    bool escaped = false;  ///< an odd number of backslashes stands directly before
};

template <class Kind>
void Append(std::u16string& output, std::u16string_view text) {
    Escapes<Kind> escapes;
    while (!text.empty()) {
        const std::size_t plain = escapes.AfterWord() ? 0 : PlainRun(text);
        output.append(text, 0, plain);
        escapes.Pass(plain);
        text.remove_prefix(plain);
        text.remove_prefix(escapes.Read(text));
        output.append(escapes.Text());
        if (escapes.IsPlaceholder(text)) {
            const std::size_t length = PlaceholderLength(text);
            output.append(u"{\\cs6\\f1\\cf6\\lang1024<c:");
            output.append(text, 1, length - 2).append(u">}");
            text.remove_prefix(length);
        }
    }
}

}  // namespace

std::size_t PlainRunUnitByUnit(std::u16string_view text) noexcept {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsPlain) -
                                    text.begin());
}

void AppendEscaped(std::u16string& output, std::u16string_view text) {
    Append<Table>(output, text);
}

void AppendSegment(std::u16string& output, std::u16string_view text) {
    Append<Segment>(output, text);
}

}  // namespace generalutilities::rtf
