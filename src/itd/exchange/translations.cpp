#include <generalutilities/itd/document_walk.h>
#include <generalutilities/itd/translations.h>

#include <algorithm>
#include <deque>
#include <iterator>
#include <map>
#include <optional>
#include <span>
#include <utility>

namespace generalutilities {
namespace {

/// A segment as a translator sees it: texts with codes between them. What belongs to the document
/// and not to the text (up to the file line, the last record of the section) stays outside.
struct SegmentCut {
    /// What stands between two codes, or before the first or behind the last.
    struct Gap {
        std::optional<ItdBlock> head;  ///< of the translatable record there, if there is one
        std::u16string_view text;
    };

    std::vector<ItdRecord> records;  ///< all of them
    std::span<const ItdRecord> before;
    std::vector<Gap> gaps;                          ///< one more than codes
    std::vector<std::span<const ItdRecord>> codes;  ///< a record, or none between two texts
    std::vector<std::uint32_t> numbers;             ///< of the codes
    std::span<const ItdRecord> behind;

    bool IsEmpty() const {
        return std::ranges::all_of(gaps, [](const Gap& gap) { return gap.text.empty(); });
    }
    std::u16string_view CodeText(std::size_t i) const {
        return codes[i].empty() ? std::u16string_view() : codes[i].front().text;
    }
    /// The head of its first text.
    std::optional<ItdBlock> Head() const {
        const auto found =
            std::ranges::find_if(gaps, [](const Gap& gap) { return gap.head.has_value(); });
        return found == gaps.end() ? std::nullopt : found->head;
    }
};

SegmentCut Cut(const ItdSegment& segment) {
    SegmentCut cut;
    std::ranges::copy(segment, std::back_inserter(cut.records));
    auto rest = std::span<const ItdRecord>(cut.records);
    for (std::size_t i = 0; i < rest.size() && !rest[i].block.IsTranslatable(); ++i) {
        if (rest[i].block.f2 == ItdFileLine) {
            cut.before = std::span(cut.records).first(i + 1);
        }
    }
    rest = rest.subspan(cut.before.size());
    if (!rest.empty() && rest.back().block.f2 == ItdLastOfSection) {
        cut.behind = rest.last(1);
        rest = rest.first(rest.size() - 1);
    }
    cut.gaps.emplace_back();
    for (std::size_t i = 0; i < rest.size(); ++i) {
        const bool isText = rest[i].block.IsTranslatable();
        if (!isText || cut.gaps.back().head) {
            cut.codes.push_back(rest.subspan(i, isText ? 0 : 1));
            cut.gaps.emplace_back();
        }
        if (isText) {
            cut.gaps.back() = {rest[i].block, rest[i].text};
        }
    }
    return cut;
}

/// Both columns of a segment, with their codes numbered.
struct SegmentPair {
    SegmentCut source;
    SegmentCut target;

    SegmentPair(const ItdSegment& sourceSegment, const ItdSegment& targetSegment)
        : source(Cut(sourceSegment)), target(Cut(targetSegment)) {
        std::map<std::u16string_view, std::deque<std::uint32_t>> waiting;
        std::uint32_t last = 0;
        for (std::size_t i = 0; i < source.codes.size(); ++i) {
            source.numbers.push_back(++last);
            waiting[source.CodeText(i)].push_back(last);
        }
        for (std::size_t i = 0; i < target.codes.size(); ++i) {
            std::deque<std::uint32_t>& equal = waiting[target.CodeText(i)];
            if (equal.empty()) {
                target.numbers.push_back(++last);
            } else {
                target.numbers.push_back(equal.front());
                equal.pop_front();
            }
        }
    }
};

/// Nothing for a column without any text.
SegmentPieces PiecesOf(const SegmentCut& cut) {
    SegmentPieces pieces;
    for (std::size_t i = 0; i < cut.gaps.size() && !cut.IsEmpty(); ++i) {
        if (i > 0) {
            AppendCode(pieces, cut.numbers[i - 1]);
        }
        AppendText(pieces, cut.gaps[i].text);
    }
    return pieces;
}

/// The records without which the file is not what it was.
std::vector<std::u16string> NeededRecords(std::span<const ItdRecord> records) {
    std::vector<std::u16string> needed;
    for (const ItdRecord& record : records) {
        if (record.block.f2 == ItdFileLine || record.block.f2 == ItdLastOfSection) {
            needed.emplace_back(record.text);
        }
    }
    return needed;
}

/// The records of the target with a new text, whose codes are those of the source. Where their
/// order is that of the target, or else of the source, texts keep the heads that they have there,
/// and empty ones stay; otherwise every text gets the head of the first one.
std::vector<ItdRecord> BuildTarget(const SegmentPair& pair, const SegmentPieces& pieces) {
    std::map<std::uint32_t, std::span<const ItdRecord>> codes;
    for (const SegmentCut* const cut : {&pair.source, &pair.target}) {
        for (std::size_t i = 0; i < cut->codes.size(); ++i) {
            codes[cut->numbers[i]] = cut->codes[i];
        }
    }
    std::vector<std::uint32_t> order;
    std::vector<std::u16string_view> texts(1);
    for (const SegmentPiece& piece : pieces) {
        if (piece.code != 0) {
            order.push_back(piece.code);
            texts.emplace_back();
        } else {
            texts.back() = piece.text;
        }
    }
    const bool hasOwnText = pair.target.Head().has_value();
    const SegmentCut* const shape = hasOwnText && order == pair.target.numbers ? &pair.target
                                    : order == pair.source.numbers             ? &pair.source
                                                                               : nullptr;
    const ItdBlock head = (hasOwnText ? pair.target : pair.source).Head().value_or(ItdBlock());
    std::vector<ItdRecord> built(pair.target.before.begin(), pair.target.before.end());
    bool hasText = false;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i > 0) {
            std::ranges::copy(codes.at(order[i - 1]), std::back_inserter(built));
        }
        const auto kept = shape == nullptr ? std::nullopt : shape->gaps[i].head;
        const bool isLastChance = i + 1 == texts.size() && !hasText;
        if (kept || !texts[i].empty() || isLastChance) {
            built.push_back({kept.value_or(head), texts[i]});
            hasText = true;
        }
    }
    std::ranges::copy(pair.target.behind, std::back_inserter(built));
    for (ItdRecord& record : built) {
        record.block.sid = pair.target.records.front().block.sid;
    }
    return built;
}

}  // namespace

void ExtractSegments(ItdDocument& document,
                     const std::function<void(const ExchangeSegment&)>& use) {
    ItdWalk walk;
    walk.Open(std::move(document));
    struct GiveBack {
        ~GiveBack() { document = walk.Take(); }
        ItdDocument& document;
        ItdWalk& walk;
    } const giveBack{document, walk};
    const ItdDocument& opened = walk.Document();
    walk.Restart();
    for (std::size_t i = 0; i < walk.SegmentCount(); ++i, walk.Next()) {
        const ItdWalk::Segment& current = walk.Current();
        const SegmentPair pair(opened.sourceSegments[i], i < opened.targetSegments.size()
                                                             ? opened.targetSegments[i]
                                                             : ItdSegment());
        ExchangeSegment segment;
        segment.number = static_cast<std::uint32_t>(i + 1);
        segment.source = PiecesOf(pair.source);
        segment.target = PiecesOf(pair.target);
        for (const SegmentCut* const cut : {&pair.source, &pair.target}) {
            for (std::size_t code = 0; code < cut->codes.size() && !cut->IsEmpty(); ++code) {
                segment.codes.resize(
                    std::max<std::size_t>(segment.codes.size(), cut->numbers[code]));
                segment.codes[cut->numbers[code] - 1] = cut->CodeText(code);
            }
        }
        segment.status = current.status;
        segment.score = current.score;
        segment.comment = current.comment.substr(0, current.comment.find_last_not_of(u"\r\n") + 1);
        use(segment);
    }
}

TranslationApplier::TranslationApplier(ItdDocument& target)
    : document(target), seen(target.sourceSegments.size()) {}

AppliedRow TranslationApplier::Apply(const TranslationRow& row) {
    AppliedRow result;
    const auto refuse = [&result](std::string reason) {
        result.reason = std::move(reason);
        return result;
    };
    const std::uint32_t number = ParseNumber(row.segment);
    result.segment = number;
    if (!row.fault.empty()) {
        return refuse(row.fault);
    }
    if (number == 0 || number > document.sourceSegments.size() ||
        number > document.targetSegments.size()) {
        return refuse("the document has no such segment; it has " +
                      std::to_string(document.sourceSegments.size()));
    }
    if (seen[number - 1]) {
        return refuse("the segment came before; the first row counts");
    }
    const SegmentPair pair(document.sourceSegments[number - 1],
                           document.targetSegments[number - 1]);
    const SegmentPieces source = PiecesOf(pair.source);
    if (row.source && *row.source != source) {
        return refuse("its source is not that of the segment");
    }
    seen[number - 1] = true;
    if (row.target.empty() || row.target == PiecesOf(pair.target)) {
        result.outcome =
            row.target.empty() ? TranslationOutcome::NoTranslation : TranslationOutcome::Unchanged;
        return result;
    }
    if (source.empty()) {
        return refuse("the segment has no translatable text");
    }
    result.codes = CompareCodes(SegmentTextOf(source), SegmentTextOf(row.target));
    if (!result.codes.empty()) {
        return result;
    }
    const std::vector<ItdRecord> records = BuildTarget(pair, row.target);
    if (NeededRecords(records) != NeededRecords(pair.target.records)) {
        return refuse("its records hold what the document cannot lose");
    }
    document.targetSegments[number - 1] = document.Store(records);
    result.outcome = TranslationOutcome::Applied;
    return result;
}

}  // namespace generalutilities
