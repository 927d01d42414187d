// Marks and codes are found as soon as their last character comes, so that it is always known where
// in a segment the walk is. What stands before them in their style is decided at that moment; text
// behind an end mark, which a word processor shows at the end of the target, at the end of the run.

#include "extview/rtf/twb_review.h"

#include "extview/rtf/control_word.h"
#include "extview/rtf/hyphens.h"

#include <algorithm>
#include <utility>

namespace generalutilities::rtf {

namespace {

template <class Characters>
std::u16string TextOf(const Characters& characters) {
    std::u16string text;
    for (const auto& character : characters) {
        text += character.unit;
    }
    return text;
}

bool IsBlank(std::u16string_view text) {
    return text.find_first_not_of(u" \t\r\n\u00A0") == text.npos;
}

bool IsDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

/// A style that is none of the three.
std::int32_t PlainStyle(const TwbStyles& styles) {
    std::int32_t style = 0;
    while (style == styles.mark || style == styles.external || style == styles.internal) {
        ++style;
    }
    return style;
}

}  // namespace

TwbReview::TwbReview(const TwbStyles& numbers, RtfFilePager& file, ReviewCopy& edits, Report sink)
    : styles(numbers),
      pager(file),
      copy(edits),
      report(std::move(sink)),
      plainStart("{\\cs" + std::to_string(PlainStyle(numbers)) + " "),
      endMark("{\\cs" + std::to_string(numbers.mark) + " <0\\}}") {
    copy.Hold();
}

TwbReview::Kind TwbReview::KindOf(std::int32_t style) const {
    return style == styles.mark       ? Kind::Mark
           : style == styles.external ? Kind::External
           : style == styles.internal ? Kind::Internal
                                      : Kind::Plain;
}

std::uint32_t TwbReview::Cell() const {
    return place == Place::Source ? 1 : place == Place::Target ? 2 : 0;
}

void TwbReview::Begin(Kind kind) {
    if (kind != runKind) {
        EndRun();
        runKind = kind;
    }
}

bool TwbReview::Text(std::int32_t style, std::uint32_t from, std::uint32_t to,
                     std::optional<char16_t> character) {
    const Kind kind = KindOf(style);
    Begin(kind);
    textEnd = to;
    if (kind == Kind::Plain) {
        TakePlain(from, to, character);
        return IsInText();
    }
    if (character) {
        TakeStyled({*character, from, to});
    } else {
        pager.Read(from, to - from, bytes);
        for (const char byte : bytes) {
            TakeStyled({static_cast<unsigned char>(byte), from, from + 1});
            ++from;
        }
    }
    return false;
}

bool TwbReview::Keeps(std::int32_t style) {
    const Kind kind = KindOf(style);
    Begin(kind);
    return kind == Kind::Plain && IsInText();
}

/// Text between the identifier and the source would be a cell of its own.
void TwbReview::TakePlain(std::uint32_t from, std::uint32_t to, std::optional<char16_t> character) {
    if (IsInText()) {
        const bool isLineEnd = character == u'\r' || character == u'\n';
        const std::uint32_t begin = lineEnds.value_or(from);
        AddText();
        lineEnds = isLineEnd ? std::optional(begin) : std::nullopt;
    }
    if (place != Place::Identifier && (place != Place::Between || toldOutside)) {
        return;
    }
    pager.Read(from, to - from, bytes);
    if (character ? !IsBlank({&*character, 1}) : bytes.find_first_not_of(' ') != bytes.npos) {
        TellOutside(from);
    }
    if (place == Place::Identifier) {
        Leave({{u' ', from, to}});
    }
}

/// A fallback belongs to its character, and goes with it. Where it is parted from that, it is an
/// empty text of its own to the reader, which can make a cell.
void TwbReview::Fallback(std::int32_t style, std::uint32_t from, std::uint32_t to) {
    const Kind kind = KindOf(style);
    const std::uint32_t textBefore = std::exchange(textEnd, to);
    const bool isParted =
        kind != runKind || textBefore != from || (emptyEnd != 0 && textBefore == emptyEnd);
    if (isParted) {
        if (place == Place::Ended && !run.empty()) {
            // The end mark cannot go behind this text: its first character would be the fallback.
            TellOutside(run.front().from);
            Leave(std::exchange(run, {}));
        }
        EndRun();
    } else if (!run.empty() && run.back().end == from) {
        run.back().end = to;
        return;
    }
    if (textBefore != 0 && textBefore == leftEnd) {
        Leave({{u' ', from, to}});
    } else if (isParted) {
        TakeEmpty(kind, {u' ', from, to});
    }
}

/// Takes a text of no characters.
void TwbReview::TakeEmpty(Kind kind, const Character& empty) {
    emptyEnd = empty.end;
    if (place == Place::Identifier && kind == Kind::External) {
        identifier.push_back(empty);
    } else if (place == Place::Identifier) {
        place = Place::Damaged;
    } else if (IsInText() ? kind != Kind::Plain : kind == Kind::External) {
        PutInPlainStyle({empty});
    }
    if (IsInText()) {
        AddText();
    }
}

/// The source or target that is being read has text.
void TwbReview::AddText() {
    hasText = true;
    lineEnds.reset();
}

void TwbReview::TellOutside(std::uint32_t offset) {
    if (!toldOutside) {
        toldOutside = true;
        report(ReviewFinding::OutsideText, offset);
    }
}

bool TwbReview::KeepBreak(std::uint32_t at) {
    EndRun();
    if (!IsInText()) {
        return false;
    }
    AddText();
    copy.Insert(at, plainStart + "\\par }");
    return true;
}

void TwbReview::TakeStyled(const Character& character) {
    run.push_back(character);
    if (runKind == Kind::Mark) {
        if (const std::size_t length = MarkLength(); length > 0) {
            TakeMark(length);
        }
    } else if (runKind == Kind::Internal) {
        constexpr std::u16string_view Start = u"<c:";
        if (character.unit == u'>' && codeStart) {
            TakeCode();
        } else if (character.unit == Start.back() && !codeStart && run.size() >= Start.size() &&
                   run[run.size() - 2].unit == Start[1] && run[run.size() - 3].unit == Start[0]) {
            codeStart = run.size() - Start.size();
        }
    }
}

/// Decides on styled text that ends without a mark or a code.
void TwbReview::EndRun() {
    if (runKind == Kind::External) {
        TakeExternal();
    } else if (place == Place::Ended) {
        EndSegment();
    } else {
        TakeStretch(std::exchange(run, {}));
    }
    run.clear();
    codeStart.reset();
    runKind = Kind::Plain;
    isBehindEnd = false;
}

/// The length of the mark that the run ends in: "{0>", "<}", a number, "{>", or "<0}".
std::size_t TwbReview::MarkLength() const {
    const auto unit = [this](std::size_t fromEnd) {
        return fromEnd < run.size() ? run[run.size() - 1 - fromEnd].unit : u'\0';
    };
    if (unit(0) == u'}') {
        return unit(1) == u'0' && unit(2) == u'<' ? 3 : 0;
    }
    if (unit(0) != u'>') {
        return 0;
    }
    if (unit(1) == u'0' && unit(2) == u'{') {
        return 3;
    }
    std::size_t digits = 2;
    while (IsDigit(unit(digits))) {
        ++digits;
    }
    const bool isOne =
        unit(1) == u'{' && digits > 2 && unit(digits) == u'}' && unit(digits + 1) == u'<';
    return isOne ? digits + 2 : 0;
}

void TwbReview::TakeMark(std::size_t length) {
    const auto first = run.end() - static_cast<std::ptrdiff_t>(length);
    const Characters mark(first, run.end());
    run.erase(first, run.end());
    if (place == Place::Ended) {
        EndSegment();
    } else {
        TakeStretch(run);
    }
    run.clear();

    const bool isEnd = mark.back().unit == u'}';
    const bool isStart = !isEnd && mark.front().unit == u'{';
    if (place == Place::Between) {
        if (isBehindEnd) {
            TellOutside(mark.front().from);
            Leave(mark);
        }
    } else if (isStart && place == Place::Identifier) {
        place = Place::Source;
        hasText = false;
        lineEnds.reset();
    } else if (!isStart && !isEnd && place == Place::Source) {
        if (!hasText) {
            MendMatchValue(mark);
        }
        place = Place::Target;
        hasText = false;
        lineEnds.reset();
    } else if (isEnd && place == Place::Target) {
        place = Place::Ended;
        isBehindEnd = true;
        end = mark;
    } else {
        place = Place::Damaged;
    }
}

/// The reader cuts two marks with nothing between them apart only where the number is 0. Nobody
/// reads the number.
void TwbReview::MendMatchValue(const Characters& mark) {
    const Characters number(mark.begin() + 2, mark.end() - 2);
    if (number.size() == 1 && number[0].unit == u'0') {
        return;
    }
    report(ReviewFinding::EmptySource, mark.front().from);
    copy.Insert(number.front().from, "0");
    Leave(number);
}

/// Takes the end of a segment, with the text behind its end mark in the same style: that is text of
/// the target, and the mark goes behind it. Line ends at its end are no text.
void TwbReview::EndSegment() {
    Characters text = std::exchange(run, {});
    Characters breaks;
    while (!text.empty() && (text.back().unit == u'\r' || text.back().unit == u'\n')) {
        breaks.push_back(text.back());
        text.pop_back();
    }
    std::reverse(breaks.begin(), breaks.end());
    if (IsBlank(TextOf(text))) {
        KeepWordAt(!breaks.empty() ? breaks.back().end
                   : !text.empty() ? text.back().end
                                   : end.back().end);
        CloseSegment(end.back().end);
        Leave(text);
    } else {
        place = Place::Target;
        report(ReviewFinding::StyledText, text.front().from);
        Leave(end);
        PutInPlainStyle(text);
        copy.Insert(text.back().end, endMark);
        CloseSegment(text.back().end);
    }
    Leave(breaks);
}

/// The reader loses a control word that ends the run of an end mark, which an empty group prevents.
void TwbReview::KeepWordAt(std::uint32_t at) {
    while (pager.ByteAt(at) == '\r' || pager.ByteAt(at) == '\n') {
        ++at;
    }
    if (pager.ByteAt(at) == '\\') {
        const WordKind kind = MeaningOf(ReadControlWord(pager, at + 1, bytes).name).kind;
        if (kind == WordKind::Style || kind == WordKind::Font || kind == WordKind::Destination) {
            copy.Insert(end.back().end, "{}");
        }
    }
}

/// A segment is complete at `at`.
void TwbReview::CloseSegment(std::uint32_t at) {
    copy.Release(at);
    ++rowsDone;
    if (copy.Shift() != (shifts.empty() ? 0 : shifts.back().bytes)) {
        shifts.push_back({rowsDone, copy.Shift()});
    }
    place = Place::Between;
    toldOutside = false;
}

void TwbReview::TakeCode() {
    const Characters text(run.begin(), run.begin() + static_cast<std::ptrdiff_t>(*codeStart));
    const Characters code(run.begin() + static_cast<std::ptrdiff_t>(*codeStart), run.end());
    TakeStretch(text);
    if (place == Place::Identifier) {
        TakeStretch(code);
    }
    if (IsInText()) {
        AddText();
    }
    run.clear();
    codeStart.reset();
}

/// Takes text in the style of a mark or a code that is neither.
void TwbReview::TakeStretch(const Characters& stretch) {
    if (stretch.empty()) {
        return;
    }
    if (IsInText()) {
        report(ReviewFinding::StyledText, stretch.front().from);
        PutInPlainStyle(stretch);
        AddText();
    } else if (place == Place::Identifier || place == Place::Between) {
        if (!IsBlank(TextOf(stretch))) {
            TellOutside(stretch.front().from);
        }
        if (place == Place::Identifier || isBehindEnd) {
            Leave(stretch);
        }
    }
}

/// Takes text in the style of an identifier.
void TwbReview::TakeExternal() {
    const std::u16string text = TextOf(run);
    const std::size_t idEnd = text.rfind(u'>');
    const std::size_t idStart = text.find(u"<ID");
    if (idEnd != text.npos && idStart < idEnd) {
        TakeIdentifier();
    } else if (IsInText() || place == Place::Identifier) {
        TakeStretch(run);
    } else {
        // An identifier to the reader, whatever it says.
        if (place == Place::Between && !IsBlank(text)) {
            TellOutside(run.front().from);
        }
        PutInPlainStyle(run);
    }
}

/// A segment begins. One before it that has not ended ends here or is taken out.
void TwbReview::TakeIdentifier() {
    const std::uint32_t from = run.front().from;
    if (place == Place::Target) {
        report(ReviewFinding::MissingMark, from);
        const std::uint32_t textEndsAt = lineEnds.value_or(from);
        copy.Insert(textEndsAt, endMark);
        CloseSegment(textEndsAt);
    } else if (place != Place::Between) {
        TakeOut();
        copy.Release(from);
    }
    place = Place::Identifier;
    toldOutside = false;
    identifier = std::exchange(run, {});
    // The reader takes everything up to the last ">" for the identifier, and nothing behind it.
    auto behind = identifier.end();
    while (behind[-1].unit != u'>') {
        --behind;
    }
    const Characters typed(behind, identifier.end());
    if (!IsBlank(TextOf(typed))) {
        TellOutside(typed.front().from);
        Leave(typed);
        identifier.erase(behind, identifier.end());
    }
}

/// The reader drops everything up to the next identifier.
void TwbReview::TakeOut() {
    report(ReviewFinding::DamagedRow, identifier.front().from);
    PutInPlainStyle(identifier);
}

void TwbReview::Finish() {
    EndRun();
    if (place == Place::Damaged) {
        TakeOut();
    }
}

/// Calls `action` with the bytes of each piece that nothing interrupts.
template <class Action>
void TwbReview::ForEachPiece(const Characters& stretch, Action action) {
    for (std::size_t i = 0; i < stretch.size();) {
        const std::uint32_t from = stretch[i].from;
        std::uint32_t to = stretch[i].end;
        while (++i < stretch.size() && stretch[i].from == to) {
            to = stretch[i].end;
        }
        action(from, to);
    }
}

void TwbReview::PutInPlainStyle(const Characters& stretch) {
    for (const Character& character : stretch) {
        for (const Hyphen& hyphen : {SoftHyphen, NonBreakingHyphen}) {
            if (character.unit == hyphen.character &&
                character.end - character.from == HyphenEscapeLength) {
                report(hyphen.finding, character.from);
                copy.Drop(character.from, character.end);
                copy.Insert(character.end, hyphen.asRead);
            }
        }
    }
    ForEachPiece(stretch, [this](std::uint32_t from, std::uint32_t to) {
        copy.Insert(from, plainStart);
        copy.Insert(to, "}");
    });
}

void TwbReview::Leave(const Characters& stretch) {
    ForEachPiece(stretch, [this](std::uint32_t from, std::uint32_t to) {
        copy.Drop(from, to);
        leftEnd = to;
    });
}

}  // namespace generalutilities::rtf
