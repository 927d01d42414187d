// The main loop. It looks at one token at a time: the byte at `position` decides what it is. A
// token that turns a code run into a text run reports the code run before it is taken; where the
// report stops the parse, it is looked at again when `Parse` is called anew.

#include "extview/rtf/rtf_reader.h"

#include "extview/rtf/byte_scan.h"
#include "extview/rtf/word_block.h"
#include "platform/code_pages/code_pages.h"

#include <algorithm>

namespace generalutilities {

using rtf::WordKind;

namespace {

constexpr std::uint32_t HexEscapeLength = 4;  // of `\'hh`

static_assert(rtf::RunText::Block <= RtfFilePager::Slack);
static_assert(rtf::WordMemory::ReadBehind <= RtfFilePager::Slack);

}  // namespace

CRTFReader::CRTFReader() = default;
CRTFReader::~CRTFReader() = default;

bool CRTFReader::OnText(std::u16string_view, std::uint32_t, std::uint32_t) {
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
    memory.Clear();
    groups.assign(1, rtf::GroupState{});
}

void CRTFReader::Close() {
    pager.Close();
    runText.Release();  // a long run's memory does not stay with a reader that is kept for the next
                        // file
}

bool CRTFReader::Parse() {
    for (;;) {
        std::string_view rest = pager.BytesFrom(position);
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
            case '\\': {
                const std::size_t length = inCodes ? QuietWords(rest) : AddEscapes(rest);
                position += static_cast<std::uint32_t>(length);
                if (length == 0 && !ParseEscape(rest)) {
                    return true;
                }
                break;
            }
            default:
                if (inCodes) {
                    if (!EndCodes()) {
                        return true;
                    }
                    rest = pager.BytesFrom(position);  // the report may have turned pages
                }
                position += static_cast<std::uint32_t>(AddText(rest));
        }
    }
}

/// Adds plain text, with the escapes in it, that stands at the start of the bytes. Gives the
/// length.
std::size_t CRTFReader::AddText(std::string_view bytes) {
    std::size_t length = 0;
    for (std::size_t escapes = 1; escapes > 0; length += escapes) {
        const std::size_t plain = rtf::PlainLength(bytes.substr(length));
        AddPlainText(bytes.substr(length, plain));
        length += plain;
        escapes = AddEscapes(bytes.substr(length));
    }
    return length;
}

/// Takes the control words of a code run at the start of the bytes of which nobody is told; their
/// length.
std::uint32_t CRTFReader::QuietWords(std::string_view bytes) {
    if (const rtf::WordRun& known = memory.Find(bytes); known.length > 0) {
        known.change.ApplyTo(groups.back());
        return known.length;
    }
    const rtf::WordRun run = ReadQuietWords(bytes);
    if (run.length > 0) {
        run.change.ApplyTo(groups.back());
        memory.Keep(bytes, run);
    }
    return run.length;
}

/// Reads such words, up to the first of the others.
rtf::WordRun CRTFReader::ReadQuietWords(std::string_view bytes) const {
    constexpr int ShortSuccession = 4;
    rtf::WordRun run;
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
            run.change.Add(kind, rtf::ArgumentOf(word, shape));
            meaningless = 0;
        }
        length += 1 + shape.end;
    }
    run.length = static_cast<std::uint32_t>(length);
    return run;
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
        default:
            return ParseControlWord();
    }
    if (inCodes && !EndCodes()) {
        return false;
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

/// Adds the characters of escapes that stand at the start of the bytes, directly behind one
/// another:
/// `\u` words with an argument and no sign, their fallbacks in bytes, `\uc` words, and structure
/// that is text. A text in another script than Latin consists of them. Gives their length.
std::size_t CRTFReader::AddEscapes(std::string_view bytes) {
    constexpr std::size_t LongestEscape = 16;  // with the byte behind it
    constexpr int MostDigits = 9;
    std::size_t length = 0;
    while (bytes.size() - length >= LongestEscape && bytes[length] == '\\') {
        const char kind = bytes[length + 1];
        if (kind == 'u') {
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
        } else if (kind == '\'' && skipCount > 0) {
            --skipCount;
            length += HexEscapeLength;
        } else if (kind == '{' || kind == '}' || kind == '\\') {
            AddCharacter(static_cast<char16_t>(kind));
            length += 2;
        } else {
            break;
        }
    }
    return length;
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
        if (inCodes && !EndCodes()) {
            return false;
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
        groups.back().Set(meaning.kind, word.argument);
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
        groups.back().Set(meaning.kind, word.argument);
    }
    return true;
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
        groups.push_back(rtf::GroupState{});
    }
}

bool CRTFReader::EndText() {
    inCodes = true;
    sawControlWord = false;
    const bool goOn = OnText(runText.View(), runStart, position);
    runStart = position;
    return goOn;
}

bool CRTFReader::EndCodes() {
    runText.Clear();
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
        runText.Add(character);
    }
}

void CRTFReader::AddPlainText(std::string_view bytes) {
    const auto dropped = static_cast<std::uint32_t>(std::min<std::size_t>(skipCount, bytes.size()));
    skipCount -= dropped;
    runText.AddSignExtended(bytes.substr(dropped));
}

/// Takes all escapes of the form `\'hh` that follow one another as one string of bytes: a character
/// of two bytes is two escapes. A fallback is counted in bytes here.
void CRTFReader::AddHexRun() {
    const auto fits = [this] {
        return std::uint64_t{position} + HexEscapeLength < pager.FileSize();
    };
    if (!fits()) {
        position += 2;  // an escape at the very end of the file gives nothing
        return;
    }
    hexBytes.clear();
    while (fits()) {
        char escape[HexEscapeLength];
        const std::string_view rest = pager.BytesFrom(position);
        for (std::uint32_t i = 0; i < HexEscapeLength; ++i) {
            escape[i] = i < rest.size() ? rest[i] : pager.ByteAt(position + i);
        }
        if (escape[0] != '\\' || escape[1] != '\'') {
            break;
        }
        position += HexEscapeLength;
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
        decoded.clear();
        code_pages::AppendDecoded(static_cast<std::uint32_t>(codePage), hexBytes, decoded);
        runText.Add(decoded);
    }
}

}  // namespace generalutilities
