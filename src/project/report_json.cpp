// The document is written as the rows come, so that its length costs no memory; it is UTF-8, and an
// unpaired surrogate stands as its escape, so that every text is exact.

#include <generalutilities/project/language_tags.h>

#include "platform/files/utf8.h"
#include "project/report_text.h"

#include <ostream>

namespace generalutilities {
namespace {

bool IsPairAt(std::u16string_view text, std::size_t position) {
    return (text[position] & 0xFC00) == 0xD800 && position + 1 < text.size() &&
           (text[position + 1] & 0xFC00) == 0xDC00;
}

/// A JSON string with its quotes.
std::string Json(std::u16string_view text) {
    constexpr char Digits[] = "0123456789abcdef";
    std::string json = "\"";
    std::size_t plainFirst = 0;
    const auto flush = [&](std::size_t end) {
        json += files::ToUtf8Lossy(text.substr(plainFirst, end - plainFirst));
        plainFirst = end + 1;
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (IsPairAt(text, i)) {
            ++i;
        } else if (unit == u'"' || unit == u'\\') {
            flush(i);
            json += {'\\', static_cast<char>(unit)};
        } else if (unit < 0x20 || (unit & 0xF800) == 0xD800) {
            flush(i);
            json += {'\\',
                     'u',
                     Digits[unit >> 12],
                     Digits[(unit >> 8) & 0xF],
                     Digits[(unit >> 4) & 0xF],
                     Digits[unit & 0xF]};
        }
    }
    flush(text.size());
    return json + '"';
}

std::string Json(std::string_view text) {
    return Json(files::FromUtf8(text));
}

std::string_view KindName(CodeDifference::Kind kind) {
    using Kind = CodeDifference::Kind;
    return kind == Kind::Lost ? "lost" : kind == Kind::Added ? "added" : "doubled";
}

class JsonReport final : public ReportWriter {
  public:
    JsonReport(std::ostream& stream, const ReportHeading& heading) : output(stream) {
        output << "{\n  \"format\": \"genutil.import/1\",\n  \"project\": " << Json(heading.project)
               << ",\n  \"file\": " << Json(heading.file) << ",\n  \"language\": " << heading.langId
               << ",\n  \"languageTag\": " << Json(TagOfLangId(heading.langId))
               << ",\n  \"dryRun\": " << Bool(heading.dryRun) << ",\n  \"met\": [";
    }

    void Met(const ReviewFindingPlace& place) override {
        BeginEntry();
        output << "{\"finding\": " << Json(ReviewFindingName(place.finding))
               << ", \"row\": " << place.row << ", \"cell\": " << place.cell
               << ", \"offset\": " << place.offset << '}';
    }

    void Row(const ReviewedRow& row) override {
        BeginRows();
        BeginEntry();
        output << "{\"row\": " << row.number << ", \"offset\": " << row.offset
               << ", \"id\": " << Json(row.id)
               << ", \"result\": " << Json(OutcomeName(row.outcome));
        if (row.outcome != RowOutcome::TooFewCells && row.outcome != RowOutcome::NotRead) {
            WriteTexts(row);
        }
        output << '}';
    }

    void Finish(const ReviewSummary& summary) override {
        BeginRows();
        EndList();
        output << "  \"summary\": {";
        const std::pair<std::string_view, std::uint64_t> counts[] = {
            {"rows", summary.rows},
            {"unchanged", summary.unchanged},
            {"lineEndsOnly", summary.lineEndsOnly},
            {"changed", summary.changed},
            {"unknownIds", summary.unknownIds},
            {"tooFewCells", summary.tooFewCells},
            {"notRead", summary.notRead},
            {"codesDiffer", summary.codesDiffer},
            {"locked", summary.locked},
            {"lockedChanged", summary.lockedChanged},
            {"sourceChanged", summary.sourceChanged},
            {"commentsChanged", summary.commentsChanged},
            {"statusChanged", summary.statusChanged},
            {"repeatedIds", summary.repeatedIds},
            {"notInFile", summary.notInFile},
        };
        for (const auto& [name, count] : counts) {
            output << '"' << name << "\": " << count << ", ";
        }
        output << "\"cutOff\": " << Bool(summary.endsInsideRow) << "}\n}\n";
        output.flush();
    }

  private:
    void BeginEntry() {
        output << (isFirst ? "\n    " : ",\n    ");
        isFirst = false;
    }

    void EndList() {
        output << (isFirst ? "],\n" : "\n  ],\n");
        isFirst = true;
    }

    void BeginRows() {
        if (!hasRows) {
            hasRows = true;
            EndList();
            output << "  \"rows\": [";
        }
    }

    static std::string_view Bool(bool value) { return value ? "true" : "false"; }

    void WriteTexts(const ReviewedRow& row) {
        if (row.firstRowOfId) {
            output << ", \"sameIdAsRow\": " << *row.firstRowOfId;
        }
        output << ", \"source\": " << Json(row.source) << ", \"target\": " << Json(row.target)
               << ", \"comments\": " << Json(row.comments);
        if (row.status) {
            output << ", \"status\": " << *row.status;
        }
        if (row.outcome == RowOutcome::UnknownId) {
            return;
        }
        output << ", \"stored\": {\"source\": " << Json(row.storedSource)
               << ", \"target\": " << Json(row.storedTarget)
               << ", \"comments\": " << Json(row.storedComments)
               << ", \"status\": " << row.storedStatus
               << "}, \"sourceChanged\": " << Bool(row.sourceChanged)
               << ", \"commentsChanged\": " << Bool(row.commentsChanged)
               << ", \"statusChanged\": " << Bool(row.statusChanged)
               << ", \"locked\": " << Bool(row.locked) << ", \"codes\": [";
        std::string_view separator;
        for (const CodeDifference& difference : row.codes) {
            output << separator << "{\"kind\": \"" << KindName(difference.kind)
                   << "\", \"code\": " << Json(difference.code)
                   << ", \"count\": " << difference.count << '}';
            separator = ", ";
        }
        output << "], \"codesDifferedBefore\": " << Bool(row.codesDifferedBefore);
    }

    std::ostream& output;
    bool isFirst = true;   ///< of the list that is being written
    bool hasRows = false;  ///< that list is the one of the rows
};

}  // namespace

std::unique_ptr<ReportWriter> CreateJsonReport(std::ostream& output, const ReportHeading& heading) {
    return std::make_unique<JsonReport>(output, heading);
}

}  // namespace generalutilities
