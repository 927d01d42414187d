// XLIFF 1.2. A code is a <ph> whose content is what it stands for; only its number counts when it
// comes back. A unit that XML cannot carry is a <ph> as well, with the unit's number as content.

#include <generalutilities/error.h>

#include "itd/exchange/forms.h"
#include "platform/files/utf8.h"
#include "platform/xml/xml.h"
#include "text/decimal.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ostream>

namespace generalutilities {
namespace {

constexpr std::u16string_view UnitType = u"x-unit";

bool IsCarriedAt(std::u16string_view text, std::size_t position, std::size_t& length) {
    return !IsHalfPair(text, position, length) && (length == 2 || xml::IsCarried(text[position]));
}

/// For texts that are looked at and not read back.
std::u16string CarriedText(std::u16string_view text) {
    std::u16string carried;
    std::size_t length = 1;
    for (std::size_t i = 0; i < text.size(); i += length) {
        const bool isCarried = IsCarriedAt(text, i, length) || text[i] == u'\r';
        carried += !isCarried        ? std::u16string_view(u"\uFFFD")
                   : text[i] == '\r' ? std::u16string_view()
                                     : text.substr(i, length);
    }
    return carried;
}

class XliffWriter final : public ExchangeWriter {
  public:
    XliffWriter(std::ostream& stream, const ExchangeHeading& heading) : output(stream) {
        document.Open("xliff");
        document.Attribute("version", u"1.2");
        document.Attribute("xmlns", u"urn:oasis:names:tc:xliff:document:1.2");
        document.Attribute("xmlns:itd", u"urn:generalutilities:itd");
        Open("file", u"\n");
        document.Attribute("original", CarriedText(heading.original));
        document.Attribute("datatype", u"x-itd");
        document.Attribute("source-language", CarriedText(heading.sourceLanguage));
        document.Attribute("target-language", CarriedText(heading.targetLanguage));
        Open("body", u"\n");
    }

    void Write(const ExchangeSegment& segment) override {
        Open("trans-unit", u"\n ");
        document.Attribute("id", Decimal(segment.number));
        document.Attribute("xml:space", u"preserve");
        document.Attribute("itd:status", Decimal(segment.status));
        document.Attribute("itd:score", files::FromUtf8(ScoreText(segment.score)));
        WriteText("source", segment.source, segment.codes);
        if (!segment.target.empty()) {
            WriteText("target", segment.target, segment.codes);
        }
        if (!segment.comment.empty()) {
            Open("note", u"\n  ");
            document.Text(CarriedText(segment.comment));
            document.Close();
        }
        Close(u"\n ");
    }

    void Finish() override {
        for (int open = 3; open > 0; --open) {
            Close(u"\n");
        }
        document.Save(output);
        output.flush();
    }

  private:
    /// An element on a line of its own. Blanks stand only where they are no text.
    void Open(const char* name, std::u16string_view lineEnd) {
        document.Text(lineEnd);
        document.Open(name);
    }
    void Close(std::u16string_view lineEnd) {
        document.Text(lineEnd);
        document.Close();
    }

    void WriteText(const char* name, const SegmentPieces& pieces,
                   const std::vector<std::u16string>& codes) {
        Open(name, u"\n  ");
        std::int64_t unitCount = 0;
        for (const SegmentPiece& piece : pieces) {
            if (piece.code != 0) {
                document.Open("ph");
                document.Attribute("id", Decimal(piece.code));
                document.Text(CarriedText(codes[piece.code - 1]));
                document.Close();
            }
            WriteCharacters(piece.text, unitCount);
        }
        document.Close();
    }

    void WriteCharacters(std::u16string_view text, std::int64_t& unitCount) {
        std::size_t carriedFirst = 0;
        std::size_t length = 1;
        for (std::size_t i = 0; i <= text.size(); i += length) {
            length = 1;
            if (i < text.size() && IsCarriedAt(text, i, length)) {
                continue;
            }
            if (i > carriedFirst) {
                document.Text(text.substr(carriedFirst, i - carriedFirst));
            }
            carriedFirst = i + 1;
            if (i < text.size()) {
                char digits[8];
                std::snprintf(digits, sizeof digits, "%04X", static_cast<unsigned>(text[i]));
                document.Open("ph");
                document.Attribute("id", u"u" + Decimal(++unitCount));
                document.Attribute("ctype", UnitType);
                document.Text(files::FromUtf8(digits));
                document.Close();
            }
        }
    }

    std::ostream& output;
    xml::Writer document;
};

/// Takes the <trans-unit> elements, wherever they stand; of each the <source> and the <target> of
/// its own. Marks of a translator's tool (<mrk>) are passed through.
class XliffReader final : public ExchangeReader {
  public:
    explicit XliffReader(std::u16string_view path)
        : walk(xml::Read(ReadWholeFile(path), files::ToUtf8Lossy(path))) {
        if (!walk->Next() || walk->Name() != "xliff") {
            throw Error(ErrorInvalidData, files::ToUtf8Lossy(path) + ": its root is no <xliff>");
        }
    }

    bool Next(TranslationRow& row) override {
        while (walk->Next()) {
            if (IsStart("trans-unit")) {
                row = {};
                row.place = "unit " + std::to_string(++units);
                row.segment = walk->Attribute("id").value_or(u"");
                ReadUnit(row);
                return true;
            }
        }
        return false;
    }

    int Percent() const override { return walk->Percent(); }

  private:
    bool IsStart(std::string_view name) const {
        return walk->Kind() == xml::Walk::Event::Start && walk->Name() == name;
    }

    void ReadUnit(TranslationRow& row) {
        while (walk->Next() && walk->Kind() != xml::Walk::Event::End) {
            if (IsStart("source")) {
                ReadText(row.source.emplace(), row.fault);
            } else if (IsStart("target")) {
                row.target.clear();
                ReadText(row.target, row.fault);
            } else if (walk->Kind() == xml::Walk::Event::Start) {
                SkipElement();  // <seg-source>, <alt-trans>, <note> ...
            }
        }
    }

    void ReadText(SegmentPieces& pieces, std::string& fault) {
        for (std::size_t depth = 1; depth > 0 && walk->Next();) {
            if (walk->Kind() == xml::Walk::Event::Text) {
                AppendText(pieces, walk->Text());
            } else if (walk->Kind() == xml::Walk::Event::End) {
                --depth;
            } else if (walk->Name() == "mrk") {
                ++depth;
            } else {
                ReadInline(pieces, fault);
            }
        }
    }

    void ReadInline(SegmentPieces& pieces, std::string& fault) {
        const std::string name(walk->Name());
        const std::u16string id = walk->Attribute("id").value_or(u"");
        const bool isUnit = walk->Attribute("ctype") == UnitType;
        const std::u16string content = SkipElement();
        const std::uint32_t code = name == "ph" || name == "x" ? ParseNumber(id) : 0;
        if (isUnit && content.size() == 4 &&
            content.find_first_not_of(u"0123456789ABCDEF") == content.npos) {
            const char16_t unit = static_cast<char16_t>(
                std::strtoul(files::ToUtf8Lossy(content).c_str(), nullptr, 16));
            AppendText(pieces, {&unit, 1});
        } else if (code != 0 && !isUnit) {
            AppendCode(pieces, code);
        } else if (fault.empty()) {
            fault = "<" + name + " id=\"" + files::ToUtf8Lossy(id) +
                    "\"> is no code of the document: these are <ph> elements with a number";
        }
    }

    /// Goes to the end of the element that has just started; gives the texts in it.
    std::u16string SkipElement() {
        std::u16string texts;
        for (std::size_t depth = 1; depth > 0 && walk->Next();) {
            switch (walk->Kind()) {
                case xml::Walk::Event::Start:
                    ++depth;
                    break;
                case xml::Walk::Event::End:
                    --depth;
                    break;
                case xml::Walk::Event::Text:
                    texts += walk->Text();
                    break;
            }
        }
        return texts;
    }

    std::unique_ptr<xml::Walk> walk;
    std::uint64_t units = 0;
};

}  // namespace

std::unique_ptr<ExchangeWriter> CreateXliffWriter(std::ostream& output,
                                                  const ExchangeHeading& heading) {
    return std::make_unique<XliffWriter>(output, heading);
}

std::unique_ptr<ExchangeReader> OpenXliff(std::u16string_view path) {
    return std::make_unique<XliffReader>(path);
}

}  // namespace generalutilities
