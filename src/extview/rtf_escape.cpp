// The text goes through a buffer, since a string that grows by a few units at a time spends most of
// its time on growing. Only long runs of plain units, whose ends vectors find, are appended as they
// are.
//
// No processor foresees which letter of a word is beyond ASCII. So a block of units is first turned
// into bits, and then each unit that has to be escaped is written in the same steps, behind the
// plain units before it.

#include "extview/rtf_escape.h"

#include "platform/cpu.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
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

/// The decimal digits of a number, one behind the other from the lowest bits on, and their count in
/// the uppermost 16 bits.
constexpr std::uint64_t DigitsOf(unsigned number, unsigned atLeast) {
    std::uint64_t digits = 0;
    std::uint64_t count = 0;
    for (; number != 0 || count < atLeast; number /= 10) {
        digits = digits << 16 | (u'0' + number % 10);
        ++count;
    }
    return digits | count << 48;
}

constexpr auto Hundreds = [] {
    std::array<std::uint64_t, 0xFFFF / 100 + 1> numbers{};
    for (unsigned number = 0; number < numbers.size(); ++number) {
        numbers[number] = DigitsOf(number, 1);
    }
    return numbers;
}();

constexpr auto TwoDigits = [] {
    std::array<std::uint32_t, 100> numbers{};
    for (unsigned number = 0; number < numbers.size(); ++number) {
        numbers[number] = static_cast<std::uint32_t>(DigitsOf(number, 2));
    }
    return numbers;
}();

/// Of 128 and more, so there are hundreds.
char16_t* WriteUnicode(char16_t unit, char16_t* out) {
    static_assert(std::endian::native == std::endian::little);
    out = Write(u"\\uc0\\u", out);
    const std::uint64_t hundreds = Hundreds[unit / 100u];
    const std::uint32_t rest = TwoDigits[unit % 100u];
    std::memcpy(out, &hundreds, sizeof hundreds);
    out += hundreds >> 48;
    std::memcpy(out, &rest, sizeof rest);
    out[2] = u' ';
    return out + 3;
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

constexpr std::size_t BufferSize = 1024;
constexpr std::size_t LongText = 256;

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
    /// Escapes as much of the text from `position` on as the buffer holds, up to a placeholder or a
    /// block of plain units; where it ends.
    std::size_t Read(std::u16string_view text, std::size_t position) {
        end = buffer.data();
        while (position < text.size() && buffer.data() + buffer.size() - end >= LongestBlock &&
               !IsPlaceholder(text.substr(position))) {
            const std::uint32_t escapes = FindEscapes(text, position);
            if (escapes == 0 && !afterWord) {
                break;
            }
            std::size_t blockEnd = std::min(position + EscapeBlock, text.size());
            if (text[blockEnd - 1] == u'\r' && blockEnd - position > 1) {
                --blockEnd;  // a LF may follow
            }
            position = ReadBlock(text, position, blockEnd, escapes);
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
    /// Twelve units for each, and what a copy writes beyond the end.
    static constexpr std::ptrdiff_t LongestBlock = 12 * EscapeBlock + 16;

    /// A bit for each unit of the block at `position`, or of what is left of the text.
    static std::uint32_t FindEscapes(std::u16string_view text, std::size_t position) {
        constexpr std::size_t Few = 12;
        if (text.size() < EscapeBlock || text.size() - position < Few) {
            std::uint32_t escapes = 0;
            for (std::size_t i = position; i < text.size(); ++i) {
                escapes |= static_cast<std::uint32_t>(!IsPlain(text[i])) << (i - position);
            }
            return escapes;
        }
        const std::size_t block = std::min(position, text.size() - EscapeBlock);
        const char16_t* const units = text.data() + block;
        return (HasAvx2() ? FindEscapesByBlocks(units) : FindEscapesUnitByUnit(units)) >>
               (position - block);
    }

    /// Escapes a block, up to a placeholder, and the LF of a last CR; where it ends.
    std::size_t ReadBlock(std::u16string_view text, std::size_t position, std::size_t blockEnd,
                          std::uint32_t escapes) {
        for (const std::size_t first = position; escapes != 0; escapes &= escapes - 1) {
            const std::size_t next = first + static_cast<std::size_t>(std::countr_zero(escapes));
            if (next >= blockEnd) {
                break;
            }
            if (next < position) {
                continue;  // the LF of a CR LF
            }
            char16_t* const out = CopyPlain(text, position, next);
            if (text[next] >= 0x80) {
                end = WriteUnicode(text[next], out);
                escaped = afterWord = false;
                position = next + 1;
                continue;
            }
            end = out;
            position = next;
            if (IsPlaceholder(text.substr(next))) {
                return position;
            }
            position += EscapeAscii(text.substr(next));
        }
        end = CopyPlain(text, position, std::max(position, blockEnd));
        return std::max(position, blockEnd);
    }

    /// Copies plain units, which may be none: whether there are some is not foreseen either. Where
    /// they end in the buffer.
    char16_t* CopyPlain(std::u16string_view text, std::size_t first, std::size_t last) {
        char16_t* out = end;
        if (afterWord || escaped) {
            if (first == last) {
                return out;
            }
            if (afterWord) {
                *out++ = u' ';
            }
            afterWord = escaped = false;
        }
        constexpr std::size_t AtOnce = 16;
        if (last - first <= AtOnce && first + AtOnce <= text.size()) {
            std::memcpy(out, text.data() + first, AtOnce * sizeof(char16_t));
        } else {
            std::copy_n(text.data() + first, last - first, out);
        }
        return out + (last - first);
    }

    /// Escapes one unit, or a CR LF; how many units.
    std::size_t EscapeAscii(std::u16string_view text) {
        const char16_t unit = text[0];
        escaped = unit == u'\\' && !escaped;
        if (unit == u'\r' || unit == u'\n') {
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

    std::array<char16_t, BufferSize> buffer;
    char16_t* end = buffer.data();
    bool afterWord = false;
    bool escaped = false;  ///< an odd number of backslashes stands directly before
};

/// Has the memory that is written next fetched while the buffer is filled.
[[gnu::always_inline]] inline void FetchEnd(const std::u16string& output) {
    constexpr std::size_t Line = 32;
    const std::size_t last = std::min(output.size() + BufferSize, output.capacity());
    for (std::size_t place = output.size(); place < last; place += Line) {
        __builtin_prefetch(output.data() + place, 1);
    }
}

template <class Kind>
void Append(std::u16string& output, std::u16string_view text) {
    Escapes<Kind> escapes;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t plain = escapes.AfterWord() ? 0 : PlainRun(text.substr(position));
        output.append(text, position, plain);
        escapes.Pass(plain);
        if (text.size() - position > LongText) {
            FetchEnd(output);
        }
        position = escapes.Read(text, position + plain);
        output.append(escapes.Text());
        if (escapes.IsPlaceholder(text.substr(position))) {
            const std::size_t length = PlaceholderLength(text.substr(position));
            output.append(u"{\\cs6\\f1\\cf6\\lang1024<c:");
            output.append(text, position + 1, length - 2).append(u">}");
            position += length;
        }
    }
}

}  // namespace

std::size_t PlainRunUnitByUnit(std::u16string_view text) noexcept {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsPlain) -
                                    text.begin());
}

std::uint32_t FindEscapesUnitByUnit(const char16_t* block) noexcept {
    std::uint32_t escapes = 0;
    for (std::size_t i = 0; i < EscapeBlock; ++i) {
        escapes |= static_cast<std::uint32_t>(!IsPlain(block[i])) << i;
    }
    return escapes;
}

void AppendEscaped(std::u16string& output, std::u16string_view text) {
    Append<Table>(output, text);
}

void AppendSegment(std::u16string& output, std::u16string_view text) {
    Append<Segment>(output, text);
}

}  // namespace generalutilities::rtf
