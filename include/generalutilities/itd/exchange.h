#pragma once

#include <generalutilities/itd/segment_pieces.h>

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The forms in which the segments of a bilingual document go to a translator and come back.
namespace generalutilities {

/// The forms in which segments are exchanged.
enum class ExchangeForm {
    Tsv,        ///< a table with a heading: segment, source, target, status, score, comment
    JsonLines,  ///< an object a line with the same names
    Xliff,      ///< XLIFF 1.2; codes are its `ph` elements
};

/// The form that a file's ending tells: .tsv, .jsonl, .xlf or .xliff.
std::optional<ExchangeForm> FormOfEnding(std::u16string_view path);

/// What stands above the segments.
struct ExchangeHeading {
    std::u16string original;  ///< the document's file
    std::u16string sourceLanguage;
    std::u16string targetLanguage;
};

/// A segment as it goes out.
struct ExchangeSegment {
    std::uint32_t number = 0;  ///< in the order of the document, from 1
    SegmentPieces source;
    SegmentPieces target;
    /// What the code n of the two texts stands for is at n - 1.
    std::vector<std::u16string> codes;
    std::uint32_t status = 0;
    double score = 0;
    std::u16string comment;
};

/// Writes segments as they come. Texts come back as they went; what a file of text cannot hold in a
/// comment or in what a code stands for becomes U+FFFD.
class ExchangeWriter {
  public:
    virtual ~ExchangeWriter() = default;
    virtual void Write(const ExchangeSegment& segment) = 0;
    virtual void Finish() = 0;
};

/// `output` must outlive the writer; a failed write shows in its state.
std::unique_ptr<ExchangeWriter> CreateExchangeWriter(ExchangeForm form, std::ostream& output,
                                                     const ExchangeHeading& heading);

/// A row as it came back.
struct TranslationRow {
    std::string place;       ///< where it stands in its file: "line 7"
    std::u16string segment;  ///< the number of its segment as it is written
    std::optional<SegmentPieces> source;
    SegmentPieces target;  ///< empty for a row without a translation
    std::string fault;     ///< why the row cannot be used; empty for a good one
};

/// Reads rows as they come.
class ExchangeReader {
  public:
    virtual ~ExchangeReader() = default;
    /// Fills in the next row; false behind the last one. Throws `Error` for a file that is broken
    /// as a whole.
    virtual bool Next(TranslationRow& row) = 0;
    /// How far the reading is.
    virtual int Percent() const = 0;
};

/// Opens a file. Throws `Error` when that fails or the file is nothing of this form.
std::unique_ptr<ExchangeReader> OpenExchange(ExchangeForm form, std::u16string_view path);

}  // namespace generalutilities
