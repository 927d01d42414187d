// The main loop. It looks at one token at a time: the byte at `position` decides what it is. A
// token that turns a code run into a text run first reports the code run and is then looked at
// again, which is also what happens when the report stopped the parse and `Parse` is called anew.

#include "extview/rtf/rtf_reader.h"

#include "extview/rtf/byte_scan.h"
#include "extview/rtf/word_block.h"
#include "platform/code_pages/code_pages.h"

#include <algorithm>

namespace generalutilities {

using rtf::WordKind;

CRTFReader::CRTFReader() = default;
CRTFReader::~CRTFReader() = default;

bool CRTFReader::OnText(std::u16string&, std::uint32_t, std::uint32_t) {
    return true;
}
bool CRTFReader::OnCodes(std::uint32_t, std::uint32_t, bool) {
    return true;
}
bool CRTFReader::OnControlWord(std::string_view) {
    return true;
}

bool CRTFReader::Open(std::u16string_view fileName) {
    Reset();
    return pager.Open(fileName);
}

bool CRTFReader::Open(std::unique_ptr<files::FileReader> file) {
    Reset();
    return pager.Open(std::move(file));
}

void CRTFReader::Reset() {
    Close();
    inCodes = true;
    sawControlWord = false;
    position = 0;
    runStart = 0;
    skipCount = 0;
    fontCodePages.clear();
    groups.assign(1, Group{});
}

void CRTFReader::Close() {
    pager.Close();
    runText = {};  // a long run's memory does not stay with a reader that is kept for the next file
}

bool CRTFReader::Parse() {
    for (;;) {
        const std::string_view rest = pager.BytesFrom(position);
        if (rest.empty()) {
            return false;
        }
        switch (rest.front()) {
            case '{':
                if (!inCodes && !EndText()) {
                    return true;
                }
                OpenGroup();
                ++position;
                break;
            case '}':
                if (!inCodes && !EndText()) {
                    return true;
                }
                CloseGroup();
                ++position;
                break;
            case '\r':
            case '\n':
                ++position;
                break;
            case '\\':
                if (inCodes) {
                    if (const std::uint32_t length = QuietWords(rest); length > 0) {
                        position += length;
                        break;
                    }
                }
                if (!ParseEscape(rest)) {
                    return true;
                }
                break;
            default:
                if (!inCodes) {
                    AddPlainText(rest.substr(0, rtf::PlainLength(rest)));
                } else if (!EndCodes()) {
                    return true;
                }
        }
    }
}

/// Takes the control words of a code run at the start of the bytes of which nobody is told; their
/// length. Of the others the first ends them.
std::uint32_t CRTFReader::QuietWords(std::string_view bytes) {
    constexpr int ShortSuccession = 4;
    std::size_t length = 0;
    int meaningless = 0;  // in succession
    rtf::WordShape shape;
    while (length < bytes.size() && bytes[length] == '\\') {
        if (meaningless == ShortSuccession) {
            meaningless = 0;
            length += rtf::MeaninglessLength({bytes.data() + length, bytes.size() - length},
                                             controlWords);
            continue;
        }
        const std::string_view word(bytes.data() + length + 1, bytes.size() - length - 1);
        if (!rtf::MeasureWord(word, shape)) {
            break;
        }
        const std::string_view name(word.data(), shape.nameLength);
        ++meaningless;
        if (controlWords.MayMatter(name)) {
            const WordKind kind = rtf::MeaningOf(name).kind;
            if (!rtf::IsState(kind)) {
                break;
            }
            ApplyWord(kind, rtf::ArgumentOf(word, shape));
            meaningless = 0;
        }
        length += 1 + shape.end;
    }
    return static_cast<std::uint32_t>(length);
}

/// Takes what begins with the backslash at `position`; false to stop.
bool CRTFReader::ParseEscape(std::string_view rest) {
    const char next = rest.size() > 1 ? rest[1] : pager.ByteAt(position + 1);
    switch (next) {
        case '\\':
        case '{':
        case '}':
        case '\'':
        case '~':
        case '_':
        case '-':
        case ':':
            break;
        case 'u':
            if (!inCodes) {
                if (const std::uint32_t length = AddUnicode(rest); length > 0) {
                    position += length;
                    return true;
                }
            }
            return ParseControlWord();
        default:
            return ParseControlWord();
    }
    if (inCodes) {
        return EndCodes();
    }
    if (next == '\'') {
        AddHexRun();
        return true;
    }
    if (next == '~') {
        AddCharacter(u'\u00A0');
    } else if (next == '_') {
        AddCharacter(u'-');
    } else if (next != '-' && next != ':') {
        AddCharacter(static_cast<char16_t>(next));
    }
    position += 2;
    return true;
}

/// Adds the characters of `\u` words, with the `\uc` words between them, that stand at the start of
/// the bytes in the usual form, with an argument and no sign; their length. A text in another
/// script than Latin consists of them.
std::uint32_t CRTFReader::AddUnicode(std::string_view bytes) {
    constexpr std::size_t LongestWord = 16;  // with the byte behind it
    constexpr int MostDigits = 9;
    std::size_t length = 0;
    while (bytes.size() - length >= LongestWord && bytes[length] == '\\' &&
           bytes[length + 1] == 'u') {
        std::size_t at = length + 2;
        const bool isCount = bytes[at] == 'c';
        at += isCount ? 1 : 0;
        std::int32_t value = 0;
        int digits = 0;
        for (; bytes[at] >= '0' && bytes[at] <= '9' && digits <= MostDigits; ++at, ++digits) {
            value = digits < MostDigits ? value * 10 + (bytes[at] - '0') : value;
        }
        if (digits == 0 || digits > MostDigits) {
            break;
        }
        length = at + (bytes[at] == ' ' ? 1 : 0);
        if (isCount) {
            groups.back().fallbackCount = value;
        } else {
            AddCharacter(static_cast<char16_t>(value));
            skipCount = static_cast<std::uint32_t>(groups.back().fallbackCount);
        }
    }
    return static_cast<std::uint32_t>(length);
}

/// Takes the control word whose backslash is at `position`; false to stop.
bool CRTFReader::ParseControlWord() {
    const rtf::ControlWord word = rtf::ReadControlWord(pager, position + 1, nameSpill);
    rtf::WordMeaning meaning;
    const std::string* reported = nullptr;
    if (controlWords.MayMatter(word.name)) {
        meaning = rtf::MeaningOf(word.name);
        if (meaning.kind == WordKind::Other) {
            reported = controlWords.Find(word.name);
        }
    }

    if (meaning.kind == WordKind::Characters) {
        if (inCodes) {
            return EndCodes();
        }
        for (const char16_t character : meaning.characters) {
            AddCharacter(character);
        }
        // These words take no argument: digits behind them are text.
        position = word.hasArgument ? word.nameEnd : word.end;
        return true;
    }

    position = word.end;
    if (meaning.kind == WordKind::FallbackCount) {
        ApplyWord(meaning.kind, word.argument);
        return true;
    }
    if (meaning.kind == WordKind::Unicode) {
        if (inCodes && !EndCodes()) {
            return false;
        }
        AddCharacter(static_cast<char16_t>(word.argument));
        skipCount = static_cast<std::uint32_t>(groups.back().fallbackCount);
        return true;
    }
    if (!inCodes && !EndText()) {
        return false;
    }
    if (meaning.kind == WordKind::Destination) {
        SkipDestination();
    } else if (reported != nullptr) {
        sawControlWord = true;
        return OnControlWord(*reported);
    } else {
        ApplyWord(meaning.kind, word.argument);
    }
    return true;
}

/// The words that change the state of the current group; any other word does nothing here.
void CRTFReader::ApplyWord(WordKind kind, std::int32_t argument) {
    if (kind == WordKind::FallbackCount) {
        groups.back().fallbackCount = argument;
    } else if (kind == WordKind::Font) {
        groups.back().font = argument;
    } else if (kind == WordKind::Style) {
        groups.back().style = argument;
    }
}

/// Walks over the rest of the group, to its closing brace or, without one, to the last byte.
void CRTFReader::SkipDestination() {
    bool closed = false;
    position = GroupEnd(position, closed) - 1;
}

std::uint32_t CRTFReader::GroupEnd(std::uint32_t start, bool& closed) {
    rtf::GroupWalk walk;
    std::uint32_t offset = start;
    for (std::string_view bytes; !walk.IsClosed() && !(bytes = pager.BytesFrom(offset)).empty();) {
        offset += static_cast<std::uint32_t>(walk.Advance(bytes));
    }
    closed = walk.IsClosed();
    return offset;
}

void CRTFReader::CloseGroup() {
    groups.pop_back();
    if (groups.empty()) {
        groups.push_back(Group{});
    }
}

bool CRTFReader::EndText() {
    inCodes = true;
    sawControlWord = false;
    const bool goOn = OnText(runText, runStart, position);
    runStart = position;
    return goOn;
}

bool CRTFReader::EndCodes() {
    runText.clear();
    inCodes = false;
    const bool goOn = OnCodes(runStart, position, sawControlWord);
    sawControlWord = false;
    runStart = position;
    return goOn;
}

void CRTFReader::AddCharacter(char16_t character) {
    if (skipCount > 0) {
        --skipCount;
    } else {
        runText.push_back(character);
    }
}

void CRTFReader::AddPlainText(std::string_view bytes) {
    position += static_cast<std::uint32_t>(bytes.size());
    const auto dropped = static_cast<std::uint32_t>(std::min<std::size_t>(skipCount, bytes.size()));
    skipCount -= dropped;
    rtf::AppendSignExtended(bytes.substr(dropped), runText);
}

/// Takes all escapes of the form `\'hh` that follow one another as one string of bytes: a character
/// of two bytes is two escapes. A fallback is counted in bytes here.
void CRTFReader::AddHexRun() {
    constexpr std::uint32_t EscapeLength = 4;
    const auto fits = [this] { return std::uint64_t{position} + EscapeLength < pager.FileSize(); };
    if (!fits()) {
        position += 2;  // an escape at the very end of the file gives nothing
        return;
    }
    hexBytes.clear();
    while (fits()) {
        char escape[EscapeLength];
        const std::string_view rest = pager.BytesFrom(position);
        for (std::uint32_t i = 0; i < EscapeLength; ++i) {
            escape[i] = i < rest.size() ? rest[i] : pager.ByteAt(position + i);
        }
        if (escape[0] != '\\' || escape[1] != '\'') {
            break;
        }
        position += EscapeLength;
        if (skipCount > 0) {
            --skipCount;
        } else {
            hexBytes.push_back(static_cast<char>(rtf::HexByte(escape[2], escape[3])));
        }
    }
    if (!hexBytes.empty()) {
        // A font that the table does not name has the system's ANSI code page.
        const std::int32_t codePage =
            fontCodePages.try_emplace(groups.back().font, 0).first->second;
        code_pages::AppendDecoded(static_cast<std::uint32_t>(codePage), hexBytes, runText);
    }
}

}  // namespace generalutilities
