// Deletions are a property of characters: `\deleted` holds until its group ends, until `\plain` or
// `\deleted0`. Their text goes, their control words and braces stay.
//
// LibreOffice has forms of its own, which are told from the generator that the file names:
// - a `\deleted` that does not begin its group belongs to the end of the paragraph and not to the
//   text behind it;
// - of a deletion from one paragraph into the next it writes the text on both sides, and nothing
//   about the break between them. So a break between two deletions is held back until the next text
//   shows on which side it is;
// - the date of a tracked change of format stands as text at the start of a group.
//
// A row that was deleted as a whole is one whose texts are all deleted. That is not known before
// its end, so the ends of its cells are held back, too: text decides whether they are written.

#include "extview/rtf/review_walk.h"

#include "extview/rtf/byte_scan.h"
#include "extview/rtf/rtf_tables.h"
#include "extview/rtf/word_block.h"

#include <algorithm>

namespace generalutilities::rtf {

namespace {

/// Groups that hold no text of the cell, and are not marked as such by a star.
struct Destination {
    std::string_view name;
    ReviewFinding finding;
};
constexpr Destination Destinations[] = {
    {"listtext", ReviewFinding::ListLabel},      {"pntext", ReviewFinding::ListLabel},
    {"pict", ReviewFinding::FallbackPicture},    {"nonshppict", ReviewFinding::FallbackPicture},
    {"shprslt", ReviewFinding::FallbackPicture}, {"footnote", ReviewFinding::Footnote},
};

/// Starred groups that a reviewer wrote. The reader skips them like all others with a star.
constexpr Destination StarredDestinations[] = {
    {"annotation", ReviewFinding::MarginComment},
    {"footnote", ReviewFinding::Footnote},
    {"shpinst", ReviewFinding::Drawing},
};

}  // namespace

ReviewWalk::ReviewWalk(RtfFilePager& file, const std::optional<TwbStyles>& styles,
                       const std::function<void(std::string_view)>& write,
                       const std::function<void(const ReviewFindingPlace&)>& sink)
    : pager(file), copy(file, write), found(sink) {
    for (const char* name : {"deleted", "mvf", "revised", "mvt", "generator"}) {
        words.Add(name);
    }
    if (styles) {
        bilingual.emplace(*styles, file, copy, [this](ReviewFinding finding, std::uint32_t offset) {
            Report(finding, offset);
        });
    } else {
        words.Add("cell");
        words.Add("row");
    }
    for (const Destination& destination : Destinations) {
        words.Add(destination.name);
    }
}

PreparedReview ReviewWalk::Run(std::uint32_t body) {
    for (std::string_view rest; position < body && !(rest = pager.BytesFrom(position)).empty();) {
        Step(rest);
    }
    position = body;
    isInBody = true;
    isFirstInGroup = false;
    skipCount = 0;
    for (std::string_view rest; !(rest = pager.BytesFrom(position)).empty();) {
        Step(rest);
    }
    WriteHeld(pager.FileSize());
    if (bilingual) {
        bilingual->Finish();
        result.shifts = bilingual->Shifts();
        row = bilingual->Row();
    }
    copy.Finish();
    if (copy.IsChanged()) {
        result.shifts.push_back({row, copy.Shift()});  // a row that the end of the file cuts off
    }
    result.isChanged = copy.IsChanged();
    return std::move(result);
}

/// Takes the token at `position`.
void ReviewWalk::Step(std::string_view rest) {
    switch (rest.front()) {
        case '{':
            OpenGroup();
            return;
        case '}':
            CloseGroup();
            break;
        case '\r':
        case '\n':
            ++position;
            return;
        case '\\':
            if (const std::uint32_t length = MeaninglessWords(rest); length > 0) {
                position += length;
            } else {
                TakeEscape(rest);
            }
            break;
        default:
            TakePlainText(rest.substr(0, PlainLength(rest)));
    }
    isFirstInGroup = false;
}

void ReviewWalk::OpenGroup() {
    groups.push_back(groups.back());
    groupOpenedAt = position++;
    isFirstInGroup = true;
}

void ReviewWalk::CloseGroup() {
    groups.pop_back();
    if (groups.empty()) {
        groups.emplace_back();
    }
    ++position;
}

/// The length of the control words at the start of the bytes that mean nothing here.
std::uint32_t ReviewWalk::MeaninglessWords(std::string_view bytes) const {
    std::size_t length = 0;
    WordShape shape;
    while (length < bytes.size() && bytes[length] == '\\') {
        const std::string_view word(bytes.data() + length + 1, bytes.size() - length - 1);
        if (!MeasureWord(word, shape) || words.MayMatter({word.data(), shape.nameLength})) {
            break;
        }
        length += 1 + shape.end;
        length += MeaninglessLength({bytes.data() + length, bytes.size() - length}, words);
    }
    return static_cast<std::uint32_t>(length);
}

void ReviewWalk::TakeEscape(std::string_view rest) {
    const char next = rest.size() > 1 ? rest[1] : pager.ByteAt(position + 1);
    switch (next) {
        case '\\':
            TakeCharacters(position + 2, u"\\");
            break;
        case '{':
            TakeCharacters(position + 2, u"{");
            break;
        case '}':
            TakeCharacters(position + 2, u"}");
            break;
        case '~':
            TakeCharacters(position + 2, u"\u00A0");
            break;
        case '\'':
            TakeHexByte();
            break;
        case '-':
            TakeHyphen(SoftHyphen);
            break;
        case '_':
            TakeHyphen(NonBreakingHyphen);
            break;
        case ':':
            TakeFallback(position + 2);
            position += 2;
            break;
        default:
            TakeControlWord();
    }
}

/// An escape with fewer than five bytes to the end of the file is no byte to the reader.
void ReviewWalk::TakeHexByte() {
    if (std::uint64_t{position} + 4 < pager.FileSize()) {
        const int value = HexByte(pager.ByteAt(position + 2), pager.ByteAt(position + 3));
        // Whatever the font says, bytes beyond ASCII are part of no mark.
        const char16_t character = value < 0x80 ? static_cast<char16_t>(value) : u'\uFFFD';
        TakeCharacters(position + 4, {&character, 1});
    } else {
        if (bilingual) {
            copy.Drop(position, position + 2);  // what is put behind it would become its digits
        }
        position += 2;
    }
}

/// Behind a `\u` an escape is its fallback and one character long, which the reader does not know
/// of the soft hyphen.
void ReviewWalk::TakeHyphen(const Hyphen& hyphen) {
    const bool isFallback = skipCount > 0;
    const std::uint32_t from = position;
    const std::uint32_t end = from + HyphenEscapeLength;
    if (!isInBody || IsGone() || (isFallback && &hyphen == &NonBreakingHyphen)) {
        TakeCharacters(end, {&hyphen.character, 1});
        return;
    }
    bool stays = true;
    if (isFallback) {
        stays = !bilingual || bilingual->Keeps(groups.back().style);
        skipCount -= stays ? 1 : 0;
        TakeFallback(end);
    } else {
        stays = KeepText(from, end, hyphen.character);
    }
    position = end;
    if (stays) {
        Report(hyphen.finding, from);
        copy.Drop(from, end);
        copy.Insert(end, isFallback ? "?" : hyphen.asRead);
    }
}

void ReviewWalk::TakePlainText(std::string_view text) {
    if (isLibreOffice && position == groupOpenedAt + 1 && StandsStrayDate()) {
        return;
    }
    TakePlainCharacters(static_cast<std::uint32_t>(text.size()));
}

/// Leaves out a date that stands directly behind the brace: a number, a blank, a control word.
bool ReviewWalk::StandsStrayDate() {
    constexpr std::uint32_t LongestNumber = 10;
    if (!isInBody || skipCount > 0) {
        return false;
    }
    std::uint32_t end = position + (pager.ByteAt(position) == '-' ? 1 : 0);
    const std::uint32_t digits = end;
    const auto isDigit = [](char byte) { return byte >= '0' && byte <= '9'; };
    while (end - digits < LongestNumber && isDigit(pager.ByteAt(end))) {
        ++end;
    }
    if (end == digits || pager.ByteAt(end) != ' ' || pager.ByteAt(end + 1) != '\\') {
        return false;
    }
    Report(ReviewFinding::StrayDate, position);
    copy.Drop(position, end + 1);
    position = end + 1;
    return true;
}

void ReviewWalk::TakeControlWord() {
    const ControlWord word = ReadControlWord(pager, position + 1, nameSpill);
    const WordMeaning meaning = MeaningOf(word.name);
    switch (meaning.kind) {
        case WordKind::Characters: {
            // These words take no argument: digits behind them are text.
            const std::uint32_t end = word.hasArgument ? word.nameEnd : word.end;
            if (word.name == "par") {
                TakeBreak(end);
            } else {
                TakeCharacters(end, meaning.characters);
            }
            return;
        }
        case WordKind::Unicode:
            TakeUnicode(word.end, word.argument);
            return;
        case WordKind::FallbackCount:
            groups.back().fallbackCount = word.argument;
            break;
        case WordKind::Destination:
            if (isInBody) {
                SkipStarred(word.end);
                return;
            }
            break;
        case WordKind::Inert:
            if (word.name == "plain") {
                groups.back().marks = 0;
            }
            break;
        case WordKind::Style:
            groups.back().style = word.argument;
            break;
        case WordKind::Font:
            break;
        case WordKind::Other:
            TakeOwnWord(word.name, word);
            return;
    }
    position = word.end;
}

void ReviewWalk::TakeOwnWord(std::string_view name, const ControlWord& word) {
    const bool isSet = !word.hasArgument || word.argument != 0;
    if (name == "cell" && isInBody) {
        TakeCell(word.end);
        return;
    }
    if (name == "row" && isInBody) {
        TakeRow(word.end);
        return;
    }
    if (isInBody && isFirstInGroup) {
        for (const Destination& destination : Destinations) {
            if (name == destination.name) {
                DropDestination(word.end, destination.finding);
                return;
            }
        }
    }
    if (name == "deleted") {
        SetMark(Deleted, isSet);
    } else if (name == "mvf") {
        SetMark(MovedAway, isSet);
    } else if (name == "revised") {
        SetMark(Inserted, isSet);
    } else if (name == "mvt") {
        SetMark(MovedHere, isSet);
    } else if (name == "generator" && !isInBody) {
        constexpr std::string_view LibreOffice = "LibreOffice";
        pager.Read(word.end, LibreOffice.size(), nameSpill);
        isLibreOffice = nameSpill == LibreOffice;
    }
    position = word.end;
}

void ReviewWalk::SetMark(std::uint32_t mark, bool isSet) {
    if (isLibreOffice && isSet && !isFirstInGroup) {
        markDeleted = markDeleted || mark == Deleted;
        return;
    }
    std::uint32_t& marks = groups.back().marks;
    marks = isSet ? marks | mark : marks & ~mark;
}

/// Goes from a star, which ends at `end`, to where the reader goes on: the closing brace of the
/// group, or the last byte of the file. What is put behind that would be skipped, too, so that the
/// copy of a bilingual document ends before such a star.
void ReviewWalk::SkipStarred(std::uint32_t end) {
    if (pager.ByteAt(end) == '\\') {
        const std::string_view name = ReadControlWord(pager, end + 1, nameSpill).name;
        for (const Destination& destination : StarredDestinations) {
            if (name == destination.name) {
                Report(destination.finding, position);
            }
        }
    }
    bool closed = false;
    const std::uint32_t behind = GroupEnd(end, closed);
    if (closed || !bilingual) {
        position = behind - 1;
    } else {
        copy.Drop(position, behind);
        position = behind;
    }
}

/// Leaves out a group from its first word up to its closing brace. A group that never ends stays,
/// with everything behind it, in a table; in a bilingual document the copy ends there, since nobody
/// would follow its segments any further.
void ReviewWalk::DropDestination(std::uint32_t from, ReviewFinding finding) {
    bool closed = false;
    const std::uint32_t behind = GroupEnd(from, closed);
    if (!closed && !bilingual) {
        position = behind;
        return;
    }
    const std::uint32_t end = closed ? behind - 1 : behind;
    Report(finding, position);
    copy.Drop(position, end);
    position = end;
}

std::uint32_t ReviewWalk::GroupEnd(std::uint32_t start, bool& closed) {
    GroupWalk walk;
    std::uint32_t offset = start;
    for (std::string_view bytes; !walk.IsClosed() && !(bytes = pager.BytesFrom(offset)).empty();) {
        offset += static_cast<std::uint32_t>(walk.Advance(bytes));
    }
    closed = walk.IsClosed();
    return offset;
}

/// Takes plain text, of which every byte is a character. What the reader drops as a fallback stays.
void ReviewWalk::TakePlainCharacters(std::uint32_t count) {
    const std::uint32_t fallback = std::min(skipCount, count);
    const std::uint32_t from = position + fallback;
    skipCount -= fallback;
    TakeFallback(from);
    position = from + count - fallback;
    if (isInBody && fallback < count) {
        Text(from, position, {});
    }
}

/// Takes an escape or a word that ends at `end` and stands for these characters.
void ReviewWalk::TakeCharacters(std::uint32_t end, std::u16string_view characters) {
    const auto count = static_cast<std::uint32_t>(characters.size());
    const std::uint32_t fallback = std::min(skipCount, count);
    const std::uint32_t from = position;
    skipCount -= fallback;
    if (fallback == count) {
        TakeFallback(end);
    }
    position = end;
    if (isInBody && fallback < count) {
        Text(from, end, characters[fallback]);
    }
}

/// Takes what the reader finds no character in, up to `end`. To it that is a text, too, though an
/// empty one.
void ReviewWalk::TakeFallback(std::uint32_t end) {
    if (bilingual && isInBody && end > position) {
        bilingual->Fallback(groups.back().style, position, end);
    }
}

void ReviewWalk::TakeUnicode(std::uint32_t end, std::int32_t argument) {
    const bool isFallback = skipCount > 0;
    const std::uint32_t from = position;
    if (isFallback) {
        TakeFallback(end);
    }
    position = end;
    if (isInBody && !isFallback) {
        Text(from, end, static_cast<char16_t>(argument));
        if (IsGone()) {
            return;  // its fallback goes as text of its own
        }
    }
    skipCount = static_cast<std::uint32_t>(groups.back().fallbackCount);
}

void ReviewWalk::TakeBreak(std::uint32_t end) {
    const bool isOwn = isInBody && isLibreOffice && skipCount == 0 && !IsGone();
    if (isOwn && markDeleted) {
        DropText(position, end);
        position = end;
    } else if (isOwn && lastTextDeleted && !breakHeld) {
        breakHeld = true;
        heldBreakAt = position;
        copy.Drop(position, end);
        position = end;
    } else {
        TakeCharacters(end, u"\r\n");
    }
    markDeleted = false;
}

void ReviewWalk::Text(std::uint32_t from, std::uint32_t end, std::optional<char16_t> character) {
    if (IsGone()) {
        breakHeld = false;  // a break between two deletions
        DropText(from, end);
    } else {
        KeepText(from, end, character);
    }
}

void ReviewWalk::DropText(std::uint32_t from, std::uint32_t end) {
    if (stretch != Stretch::Deleted) {
        Report(ReviewFinding::DeletedText, from);
    }
    stretch = Stretch::Deleted;
    lastTextDeleted = true;
    deletedInRow = true;
    copy.Drop(from, end);
}

/// Takes text that is not deleted; false if it does not stay as it is, for where it stands.
bool ReviewWalk::KeepText(std::uint32_t at, std::uint32_t end, std::optional<char16_t> character) {
    WriteHeld(at);
    const bool isInserted = (groups.back().marks & (Inserted | MovedHere)) != 0;
    if (isInserted && stretch != Stretch::Inserted) {
        Report(ReviewFinding::InsertedText, at);
    }
    stretch = isInserted ? Stretch::Inserted : Stretch::Plain;
    lastTextDeleted = false;
    keptInRow = true;
    return !bilingual || bilingual->Text(groups.back().style, at, end, character);
}

void ReviewWalk::TakeCell(std::uint32_t end) {
    if (IsRowGone()) {
        breakHeld = false;
        ++cellsHeld;
        copy.Drop(position, end);
    } else {
        WriteHeld(position);
        ++cellsWritten;
    }
    position = end;
    ++cell;
    EndOfCell();
}

void ReviewWalk::TakeRow(std::uint32_t end) {
    if (IsRowGone()) {
        breakHeld = false;
        cellsHeld = 0;
        Report(ReviewFinding::DeletedRow, position);
        copy.Drop(position, end);
    } else {
        WriteHeld(position);
        const std::int64_t before = result.shifts.empty() ? 0 : result.shifts.back().bytes;
        if (copy.Shift() != before) {
            result.shifts.push_back({row, copy.Shift()});
        }
        ++row;
    }
    position = end;
    cell = 0;
    cellsWritten = 0;
    deletedInRow = false;
    keptInRow = false;
    EndOfCell();
}

void ReviewWalk::EndOfCell() {
    stretch = Stretch::Plain;
    markDeleted = false;
    lastTextDeleted = false;
}

/// Writes what was held back, before the byte at `at`.
void ReviewWalk::WriteHeld(std::uint32_t at) {
    for (; cellsHeld > 0; --cellsHeld) {
        copy.Insert(at, "\\cell ");
        ++cellsWritten;
    }
    if (breakHeld) {
        breakHeld = false;
        if (bilingual && !bilingual->KeepBreak(at)) {
            return;
        }
        Report(ReviewFinding::KeptBreak, heldBreakAt);
        if (!bilingual) {
            copy.Insert(at, "\\par ");
        }
    }
}

void ReviewWalk::Report(ReviewFinding finding, std::uint32_t offset) {
    ++result.counts[static_cast<std::size_t>(finding)];
    if (found) {
        found(bilingual ? ReviewFindingPlace{finding, bilingual->Row(), bilingual->Cell(), offset}
                        : ReviewFindingPlace{finding, row, cell, offset});
    }
}

}  // namespace generalutilities::rtf
