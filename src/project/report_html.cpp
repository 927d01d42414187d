// One page that needs nothing but itself: every text is escaped, the changed words stand in <del>
// and <ins>, and each text tells its own direction (dir="auto").

#include <generalutilities/project/word_diff.h>

#include "platform/files/utf8.h"
#include "project/project_access.h"
#include "project/report_text.h"

#include <ostream>

namespace generalutilities {
namespace {

constexpr std::string_view Style = R"(<style>
body { font: 15px/1.45 system-ui, sans-serif; margin: 2em; color: #1b1b1b; background: #fff; }
table { border-collapse: collapse; width: 100%; }
th, td { border: 1px solid #c8c8c8; padding: .35em .6em; vertical-align: top; text-align: start; }
th { background: #f0f0f0; position: sticky; top: 0; }
td.text { white-space: pre-wrap; overflow-wrap: anywhere; }
tr.changed td { background: #fffbe6; }
tr.unknown-id td, tr.too-few-cells td, tr.not-read td { background: #fdeaea; }
del { background: #ffd7d5; } ins { background: #d2f4d3; text-decoration: none; }
pre { background: #f6f6f6; padding: 1em; }
@media (prefers-color-scheme: dark) {
  body { color: #e6e6e6; background: #1b1b1b; } th { background: #2c2c2c; }
  tr.changed td { background: #33301c; }
  tr.unknown-id td, tr.too-few-cells td, tr.not-read td { background: #3a2222; }
  del { background: #6b2b29; } ins { background: #1f4d22; } pre { background: #2c2c2c; }
}
</style>
)";

/// A text in UTF-8 with what HTML would read as markup escaped, and characters that HTML does not
/// allow as their pictures; line ends and tabs stay.
std::string Html(std::u16string_view text) {
    std::u16string escaped;
    escaped.reserve(text.size());
    for (const char16_t unit : text) {
        switch (unit) {
            case u'&':
                escaped += u"&amp;";
                break;
            case u'<':
                escaped += u"&lt;";
                break;
            case u'>':
                escaped += u"&gt;";
                break;
            case u'"':
                escaped += u"&quot;";
                break;
            case u'\n':
            case u'\t':
                escaped += unit;
                break;
            default:
                escaped +=
                    unit < 0x20 && unit != u'\r' ? static_cast<char16_t>(0x2400 + unit) : unit;
        }
    }
    return files::ToUtf8Lossy(escaped);
}

std::string Html(std::string_view text) {
    return Html(files::FromUtf8(text));
}

class HtmlReport final : public ReportWriter {
  public:
    HtmlReport(std::ostream& stream, const ReportHeading& heading)
        : output(stream), langId(heading.langId) {
        const std::string file = Html(heading.file);
        output << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
               << "<meta name=\"viewport\" content=\"width=device-width\">\n<title>Review of "
               << file << "</title>\n"
               << Style << "</head>\n<body>\n<h1>Review of " << file
               << "</h1>\n<p>Project: " << Html(heading.project)
               << "<br>Language: " << Html(LanguageForMessage(heading.langId))
               << (heading.dryRun ? "<br>Nothing was changed: this is what an import would do."
                                  : "")
               << "</p>\n<ul>\n";
    }

    void Met(const ReviewFindingPlace& place) override {
        output << "<li>" << DescribePlace(place) << ": " << DescribeFinding(place.finding)
               << "</li>\n";
    }

    void Row(const ReviewedRow& row) override {
        BeginRows();
        const std::string_view outcome = OutcomeName(row.outcome);
        output << "<tr class=\"" << outcome << "\"><td>" << row.number << "</td><td>"
               << Html(row.id) << "</td><td>" << outcome << "</td><td class=\"text\" dir=\"auto\">"
               << Html(row.storedSource.empty() ? row.source : row.storedSource)
               << "</td><td class=\"text\" dir=\"auto\">";
        WriteTarget(row);
        output << "</td><td>";
        std::string_view separator;
        for (const std::string& remark : RemarksOn(row)) {
            output << separator << Html(remark);
            separator = "<br>";
        }
        output << "</td></tr>\n";
    }

    void Finish(const ReviewSummary& summary) override {
        BeginRows();
        output << "</tbody>\n</table>\n<h2>Summary</h2>\n<pre>" << Html(DescribeSummary(summary))
               << "</pre>\n</body>\n</html>\n";
        output.flush();
    }

  private:
    void BeginRows() {
        if (!hasRows) {
            hasRows = true;
            output << "</ul>\n<table>\n<thead><tr><th>Row</th><th>Identifier</th><th>Result</th>"
                   << "<th>Source</th><th>Target</th><th>Remarks</th></tr></thead>\n<tbody>\n";
        }
    }

    void WriteTarget(const ReviewedRow& row) {
        if (row.outcome != RowOutcome::Changed) {
            output << Html(row.target);
            return;
        }
        for (const DiffStretch& stretch : CompareWords(row.storedTarget, row.target, langId)) {
            const std::string text = Html(row.target.substr(stretch.newFirst, stretch.newLength));
            if (stretch.same) {
                output << text;
                continue;
            }
            if (stretch.oldLength > 0) {
                output << "<del>"
                       << Html(row.storedTarget.substr(stretch.oldFirst, stretch.oldLength))
                       << "</del>";
            }
            if (stretch.newLength > 0) {
                output << "<ins>" << text << "</ins>";
            }
        }
    }

    std::ostream& output;
    std::int32_t langId;
    bool hasRows = false;
};

}  // namespace

std::unique_ptr<ReportWriter> CreateHtmlReport(std::ostream& output, const ReportHeading& heading) {
    return std::make_unique<HtmlReport>(output, heading);
}

}  // namespace generalutilities
