#include "project/report_text.h"

#include <generalutilities/project/status_names.h>

#include "platform/files/utf8.h"
#include "project/project_access.h"

#include <ostream>

namespace generalutilities {
namespace {

std::string CodeRemark(const CodeDifference& difference) {
    using Kind = CodeDifference::Kind;
    std::string remark = difference.kind == Kind::Lost    ? "code lost: "
                         : difference.kind == Kind::Added ? "code added: "
                                                          : "code doubled: ";
    remark += OneLine(difference.code);
    if (difference.count > 1) {
        remark += " (" + std::to_string(difference.count) + " times)";
    }
    return remark;
}

class TextReport final : public ReportWriter {
  public:
    TextReport(std::ostream& stream, const ReportHeading& heading) : output(stream) {
        output << "Project:  " << OneLine(heading.project)
               << "\nReviewed: " << OneLine(heading.file)
               << "\nLanguage: " << LanguageForMessage(heading.langId) << '\n';
    }

    void Met(const ReviewFindingPlace& place) override {
        output << "Met:      " << DescribePlace(place) << ": " << DescribeFinding(place.finding)
               << '\n';
    }

    void Row(const ReviewedRow& row) override {
        BeginRows();
        output << row.number << '\t' << OneLine(row.id) << '\t' << OutcomeName(row.outcome) << '\t';
        std::string separator;
        for (const std::string& remark : RemarksOn(row)) {
            output << separator << remark;
            separator = "; ";
        }
        output << '\n';
        if (row.outcome == RowOutcome::Changed) {
            output << "\t- " << OneLine(row.storedTarget) << "\n\t+ " << OneLine(row.target)
                   << '\n';
        }
    }

    void Finish(const ReviewSummary& summary) override {
        BeginRows();
        output << '\n' << DescribeSummary(summary);
        output.flush();
    }

  private:
    void BeginRows() {
        if (!hasRows) {
            hasRows = true;
            output << "\nrow\tidentifier\tresult\tremarks\n";
        }
    }

    std::ostream& output;
    bool hasRows = false;
};

}  // namespace

std::string OneLine(std::u16string_view text) {
    std::u16string line(text);
    for (char16_t& unit : line) {
        if (unit < 0x20) {
            unit = static_cast<char16_t>(0x2400 + unit);
        } else if (unit == 0x7F) {
            unit = 0x2421;
        } else if ((unit >= 0x80 && unit < 0xA0) || unit == 0x2028 || unit == 0x2029) {
            unit = 0xFFFD;
        }
    }
    return files::ToUtf8Lossy(line);
}

std::vector<std::string> RemarksOn(const ReviewedRow& row) {
    std::vector<std::string> remarks;
    if (row.outcome == RowOutcome::NotRead) {
        remarks.push_back("stands behind the place where an import stops reading");
    }
    if (row.outcome == RowOutcome::TooFewCells) {
        remarks.push_back("ends at byte offset " + std::to_string(row.offset) +
                          " with fewer than two cells; an import reads no row behind it");
    }
    if (row.marksDamaged) {
        remarks.push_back("its marks are damaged; it holds texts of other segments");
    }
    if (row.firstRowOfId) {
        remarks.push_back("same identifier as row " + std::to_string(*row.firstRowOfId));
    }
    if (row.locked) {
        remarks.push_back("locked");
    }
    for (const CodeDifference& difference : row.codes) {
        remarks.push_back(CodeRemark(difference) +
                          (row.codesDifferedBefore ? ", as in the project" : ""));
    }
    if (row.sourceChanged) {
        remarks.push_back("source edited");
    }
    if (row.commentsChanged) {
        remarks.push_back("comment changed");
    }
    if (row.statusChanged) {
        remarks.push_back("status " + files::ToUtf8Lossy(StatusText(row.storedStatus)) + " -> " +
                          files::ToUtf8Lossy(StatusText(row.status.value_or(0))));
    }
    return remarks;
}

std::string_view OutcomeName(RowOutcome outcome) {
    switch (outcome) {
        case RowOutcome::Unchanged:
            return "unchanged";
        case RowOutcome::LineEndsOnly:
            return "line-ends-only";
        case RowOutcome::Changed:
            return "changed";
        case RowOutcome::UnknownId:
            return "unknown-id";
        case RowOutcome::TooFewCells:
            return "too-few-cells";
        case RowOutcome::NotRead:
            return "not-read";
    }
    return "unknown";
}

std::string DescribeSummary(const ReviewSummary& summary) {
    std::string text = std::to_string(summary.rows) + " rows in the file\n";
    const auto line = [&text](std::uint64_t count, std::string_view what) {
        if (count > 0) {
            text += "  " + std::to_string(count) + " " + std::string(what) + "\n";
        }
    };
    line(summary.changed, "changed");
    line(summary.unchanged, "unchanged");
    line(summary.lineEndsOnly, "differ in their line ends alone");
    line(summary.unknownIds, "have an identifier that the project does not know; left out");
    line(summary.tooFewCells, "with fewer than two cells; an import stops reading there");
    line(summary.notRead, "behind the place where an import stops reading; left out");
    text += "Of these rows\n";
    const std::size_t before = text.size();
    line(summary.codesDiffer, "have codes lost, added or doubled against the source");
    line(summary.locked, "are locked in the project");
    line(summary.lockedChanged, "are locked and changed; not accepted unless asked for");
    line(summary.sourceChanged, "have an edited source, which is not taken over");
    line(summary.commentsChanged, "have a new comment");
    line(summary.statusChanged, "have another status");
    line(summary.repeatedIds, "repeat the identifier of an earlier row");
    if (text.size() == before) {
        text.erase(text.rfind("Of these"));
    }
    if (summary.notInFile > 0) {
        text += std::to_string(summary.notInFile) + " rows of the project are not in the file\n";
    }
    if (summary.endsInsideRow) {
        text += "The end of the file is missing: it was cut off\n";
    }
    return text;
}

std::unique_ptr<ReportWriter> CreateTextReport(std::ostream& output, const ReportHeading& heading) {
    return std::make_unique<TextReport>(output, heading);
}

}  // namespace generalutilities
