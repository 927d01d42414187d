// A table with tabs between its cells and a heading, as spreadsheet programs write and read it: a
// cell with a tab, a line end or a quote stands in quotes.

#include <generalutilities/error.h>

#include "itd/exchange/forms.h"
#include "platform/delimited_text/delimited_text.h"
#include "platform/files/utf8.h"

#include <algorithm>
#include <ostream>

namespace generalutilities {
namespace {

enum Column : std::size_t { Segment, Source, Target, Status, Score, Comment, ColumnCount };
constexpr std::u16string_view ColumnNames[ColumnCount] = {u"segment", u"source", u"target",
                                                          u"status",  u"score",  u"comment"};

class TsvWriter final : public ExchangeWriter {
  public:
    explicit TsvWriter(std::ostream& stream) : output(stream) {
        for (const std::u16string_view name : ColumnNames) {
            output << files::ToUtf8Lossy(name) << (name == ColumnNames[Comment] ? '\n' : '\t');
        }
    }

    void Write(const ExchangeSegment& segment) override {
        // A reader takes no zero, and comments are not read back.
        std::u16string comment = segment.comment;
        std::ranges::replace(comment, u'\0', u'\uFFFD');
        output << segment.number << '\t' << Cell(SegmentTextOf(segment.source)) << '\t'
               << Cell(SegmentTextOf(segment.target)) << '\t' << segment.status << '\t'
               << ScoreText(segment.score) << '\t' << Cell(comment) << '\n';
    }
    void Finish() override { output.flush(); }

  private:
    static std::string Cell(std::u16string_view text) {
        std::string plain = files::ToUtf8Lossy(text);
        if (plain.find_first_of("\t\r\n\"") == plain.npos) {
            return plain;
        }
        std::string quoted = "\"";
        for (const char byte : plain) {
            quoted.append(byte == '"' ? 2 : 1, byte);
        }
        return quoted + '"';
    }

    std::ostream& output;
};

class TsvReader final : public ExchangeReader {
  public:
    explicit TsvReader(std::u16string_view path)
        : table(delimited_text::Open(path, {.delimiter = '\t', .quoted = true})) {
        delimited_text::Row heading;
        table->Next(heading);
        for (const Column column : {Segment, Source, Target}) {
            const auto found = std::ranges::find(heading.cells, ColumnNames[column]);
            positions[column] = static_cast<std::size_t>(found - heading.cells.begin());
            if (found == heading.cells.end() && column != Source) {
                throw Error(ErrorInvalidData,
                            files::ToUtf8Lossy(path) +
                                ": no table of segments: its first line names no column \"" +
                                files::ToUtf8Lossy(ColumnNames[column]) + "\"");
            }
        }
        hasSource = positions[Source] < heading.cells.size();
    }

    bool Next(TranslationRow& row) override {
        if (!table->Next(cells)) {
            return false;
        }
        row = {};
        row.place = "line " + std::to_string(cells.line);
        row.segment = Text(Segment);
        if (hasSource) {
            ParseCell("source", Text(Source), row.source.emplace(), row.fault);
        }
        ParseCell("target", Text(Target), row.target, row.fault);
        return true;
    }

    int Percent() const override {
        return static_cast<int>(100 * cells.line / (table->RowsAtMost() + 1));
    }

  private:
    std::u16string_view Text(Column column) const {
        const std::size_t position = positions[column];
        return position < cells.cells.size() ? std::u16string_view(cells.cells[position])
                                             : std::u16string_view();
    }

    std::unique_ptr<delimited_text::Reader> table;
    delimited_text::Row cells;
    std::size_t positions[ColumnCount] = {};
    bool hasSource = false;
};

}  // namespace

std::unique_ptr<ExchangeWriter> CreateTsvWriter(std::ostream& output) {
    return std::make_unique<TsvWriter>(output);
}

std::unique_ptr<ExchangeReader> OpenTsv(std::u16string_view path) {
    return std::make_unique<TsvReader>(path);
}

}  // namespace generalutilities
