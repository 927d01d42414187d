#include <generalutilities/itd/document_walk.h>
#include <generalutilities/itd/translations.h>

#include <algorithm>
#include <deque>
#include <map>
#include <utility>

namespace generalutilities {
namespace {

/// A segment cut at its translatable records: what comes before the first text, texts with one code
/// between each two, and what comes behind the last. A code is all records behind one translatable
/// record, and the head of the next.
struct SegmentCut {
    std::vector<ItdRecord> records;
    std::vector<std::size_t> texts;      ///< the translatable records
    std::size_t first = 0;               ///< in `texts`: where the text begins to show
    std::vector<std::uint32_t> numbers;  ///< of the codes

    std::size_t CodeCount() const { return texts.empty() ? 0 : texts.size() - 1 - first; }
    bool IsEmpty() const {
        return std::ranges::all_of(texts, [&](std::size_t i) { return records[i].text.empty(); });
    }
    /// The records of code `i`, the head behind it among them.
    std::span<const ItdRecord> Code(std::size_t i) const {
        const std::size_t before = texts[first + i] + 1;
        return std::span(records).subspan(before, texts[first + i + 1] + 1 - before);
    }
    std::u16string CodeText(std::size_t i) const {
        std::u16string text;
        for (const ItdRecord& record : Code(i)) {
            text += record.block.IsTranslatable() ? std::u16string_view() : record.text;
        }
        return text;
    }
};

SegmentCut Cut(const ItdSegment& segment) {
    SegmentCut cut;
    for (const ItdRecord& record : segment) {
        if (record.block.IsTranslatable()) {
            cut.texts.push_back(cut.records.size());
        }
        cut.records.push_back(record);
    }
    const auto shown = std::ranges::find_if(
        cut.texts, [&](std::size_t i) { return !cut.records[i].text.empty(); });
    cut.first = shown == cut.texts.end() ? 0 : static_cast<std::size_t>(shown - cut.texts.begin());
    return cut;
}

/// Both columns of a segment, with their codes numbered.
struct SegmentPair {
    SegmentCut source;
    SegmentCut target;

    SegmentPair(const ItdSegment& sourceSegment, const ItdSegment& targetSegment)
        : source(Cut(sourceSegment)), target(Cut(targetSegment)) {
        if (target.IsEmpty() && target.texts.size() == source.texts.size()) {
            target.first = source.first;
        }
        std::map<std::u16string, std::deque<std::uint32_t>> waiting;
        std::uint32_t last = 0;
        for (std::size_t i = 0; i < source.CodeCount(); ++i) {
            source.numbers.push_back(++last);
            waiting[source.CodeText(i)].push_back(last);
        }
        for (std::size_t i = 0; i < target.CodeCount(); ++i) {
            const auto equal = waiting.find(target.CodeText(i));
            if (equal == waiting.end() || equal->second.empty()) {
                target.numbers.push_back(++last);
            } else {
                target.numbers.push_back(equal->second.front());
                equal->second.pop_front();
            }
        }
    }
};

SegmentPieces PiecesOf(const SegmentCut& cut) {
    SegmentPieces pieces;
    if (cut.IsEmpty()) {
        return pieces;
    }
    for (std::size_t i = cut.first; i < cut.texts.size(); ++i) {
        if (i > cut.first) {
            AppendCode(pieces, cut.numbers[i - cut.first - 1]);
        }
        AppendText(pieces, cut.records[cut.texts[i]].text);
    }
    return pieces;
}

/// The records without which the file is not what it was.
std::vector<ItdRecord> NeededRecords(std::span<const ItdRecord> records) {
    std::vector<ItdRecord> needed;
    std::ranges::copy_if(records, std::back_inserter(needed), [](const ItdRecord& record) {
        return record.block.f2 == ItdFileLine || record.block.f2 == ItdLastOfSection;
    });
    for (ItdRecord& record : needed) {
        record.block.pid = record.block.f3 = 0;
    }
    return needed;
}

/// The records of the target with a new text.
class TargetBuilder {
  public:
    explicit TargetBuilder(const SegmentPair& segments) : pair(segments) {
        const SegmentCut& around = pair.target.texts.empty() ? pair.source : pair.target;
        const auto all = std::span(around.records);
        Add(all.first(around.texts[around.first] + 1));
        behind = all.subspan(around.texts.back() + 1);
        for (const SegmentCut* const cut : {&pair.source, &pair.target}) {
            for (std::size_t i = 0; i < cut->CodeCount(); ++i) {
                codes[cut->numbers[i]] = cut->Code(i);
            }
        }
    }

    std::vector<ItdRecord> Build(const SegmentPieces& pieces) {
        for (const SegmentPiece& piece : pieces) {
            if (piece.code != 0) {
                Add(codes.at(piece.code));
            } else {
                built.back().text = piece.text;
            }
        }
        Add(behind, false);
        for (ItdRecord& record : built) {
            record.block.sid = pair.target.records.front().block.sid;
        }
        return std::move(built);
    }

  private:
    /// The last one with its head alone, which waits for its text.
    void Add(std::span<const ItdRecord> records, bool opensText = true) {
        built.insert(built.end(), records.begin(), records.end());
        if (opensText) {
            built.back().text = {};
        }
    }

    const SegmentPair& pair;
    std::map<std::uint32_t, std::span<const ItdRecord>> codes;
    std::span<const ItdRecord> behind;
    std::vector<ItdRecord> built;
};

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
            for (std::size_t code = 0; code < cut->CodeCount(); ++code) {
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
    if (pair.source.texts.empty()) {
        return refuse("the segment has no translatable text");
    }
    result.codes = CompareCodes(SegmentTextOf(source), SegmentTextOf(row.target));
    if (!result.codes.empty()) {
        return result;
    }
    const std::vector<ItdRecord> records = TargetBuilder(pair).Build(row.target);
    const bool keepsEnd = NeededRecords(records) == NeededRecords(pair.target.records) &&
                          (pair.target.records.back().block.f2 == ItdLastOfSection) ==
                              (records.back().block.f2 == ItdLastOfSection);
    if (!keepsEnd) {
        return refuse("its records hold what the document cannot lose");
    }
    document.targetSegments[number - 1] = document.Store(records);
    result.outcome = TranslationOutcome::Applied;
    return result;
}

}  // namespace generalutilities
