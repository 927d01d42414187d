#include "itd/exchange/forms.h"
#include "platform/files/utf8.h"
#include "platform/json/json_lines.h"
#include "text/decimal.h"

#include <algorithm>
#include <cmath>
#include <ostream>

namespace generalutilities {
namespace {

class JsonLinesWriter final : public ExchangeWriter {
  public:
    explicit JsonLinesWriter(std::ostream& stream) : output(stream) {}

    void Write(const ExchangeSegment& segment) override {
        output << json::WriteLine({{"segment", Decimal(segment.number), true},
                                   {"source", SegmentTextOf(segment.source)},
                                   {"target", SegmentTextOf(segment.target)},
                                   {"status", Decimal(segment.status), true},
                                   {"score", files::FromUtf8(ScoreText(segment.score)),
                                    std::isfinite(segment.score)},
                                   {"comment", segment.comment}})
               << '\n';
    }
    void Finish() override { output.flush(); }

  private:
    std::ostream& output;
};

class JsonLinesReader final : public ExchangeReader {
  public:
    explicit JsonLinesReader(std::u16string_view path) : bytes(ReadWholeFile(path)) {}

    bool Next(TranslationRow& row) override {
        std::string_view line;
        do {
            if (position == bytes.size()) {
                return false;
            }
            const std::size_t end = std::min(bytes.find('\n', position), bytes.size());
            line = std::string_view(bytes).substr(position, end - position);
            position = std::min(end + 1, bytes.size());
            ++number;
        } while (line.find_first_not_of(" \t\r") == line.npos);
        row = {};
        row.place = "line " + std::to_string(number);
        const auto members = json::ReadLine(line);
        if (!members) {
            row.fault = "no JSON object in UTF-8 stands there";
            return true;
        }
        for (const json::Member& member : *members) {
            if (member.name == "segment") {
                row.segment = member.value;
            } else if (member.name == "source") {
                ParseCell("source", member.value, row.source.emplace(), row.fault);
            } else if (member.name == "target") {
                ParseCell("target", member.value, row.target, row.fault);
            }
        }
        return true;
    }

    int Percent() const override { return static_cast<int>(100 * position / (bytes.size() + 1)); }

  private:
    std::string bytes;
    std::size_t position = 0;
    std::uint64_t number = 0;
};

}  // namespace

std::unique_ptr<ExchangeWriter> CreateJsonLinesWriter(std::ostream& output) {
    return std::make_unique<JsonLinesWriter>(output);
}

std::unique_ptr<ExchangeReader> OpenJsonLines(std::u16string_view path) {
    return std::make_unique<JsonLinesReader>(path);
}

}  // namespace generalutilities
