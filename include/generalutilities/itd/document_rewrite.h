#pragma once

#include <generalutilities/itd/text_part.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

/// New text in the segments of a document: what `ITDWriter` does.
namespace generalutilities {

/// A placeholder of segment text: its number, and where it stands, in code units.
struct Placeholder {
    std::int32_t number = 0;  ///< its low 32 bits; 0 for "{}"
    std::size_t start = 0;
    std::size_t end = 0;
};

/// The first placeholder, "{", digits and "}", that begins at `position` or behind it. A backslash
/// takes the meaning from the character behind it.
std::optional<Placeholder> FindPlaceholder(std::u16string_view text, std::size_t position);

/// Codes by the numbers of their placeholders.
using CodeMap = std::map<std::int32_t, std::u16string>;

/// The records of a segment that is put together of a text and the code strings around and in it,
/// as `LoadColumn` gives them. Characters of the text are taken as they are, backslashes too.
///
/// Heads and texts of the code strings should alternate. Where they do not, a stream that can be
/// read comes out all the same:
/// - a head without a text gets an empty one;
/// - a text without a head, as on both sides of a placeholder that has no code, belongs to the
///   record before it; but behind a code it gets the head of the former segment's first
///   translatable record, if there is one, and with no record before it that of the first record;
/// - a segment of no record at all keeps its former first head, with an empty text.
ItdSegment RebuildSegment(ItdDocument& document, const ItdSegment& former, std::u16string_view text,
                          const CodeMap& codes, std::u16string_view codeBefore,
                          std::u16string_view codeAfter);

/// What `ReplaceTargetLanguage` answers.
enum class LanguageChange {
    Done,
    UnknownHeader,
    NoFileLine,
    NoLanguageCode,  ///< the file line names no language
    TooLong,         ///< more than the 255 characters that the header has room for
};

/// Replaces the target language in the header and in the file line of the target column; the
/// columns stand as in the file. Unless it is done nothing has changed.
LanguageChange ReplaceTargetLanguage(ItdDocument& document, std::u16string_view language);

/// The words of a change that was not done.
const char16_t* LanguageChangeText(LanguageChange change);

/// Walks a document forward and puts new text into its segments.
class ItdRewrite {
  public:
    /// Starts anew. Texts, codes and what stands around them stay as they were set.
    void Open(ItdDocument opened, const ItdTextHeader& header);
    /// Only the document goes.
    void Close() { document = {}; }

    std::size_t SegmentCount() const { return document.sourceSegments.size(); }
    const std::u16string& SourceLanguage() const { return sourceLanguage; }
    const std::u16string& TargetLanguage() const { return targetLanguage; }
    /// Takes effect when the document is serialised.
    void SetTargetLanguage(std::u16string_view language);

    void SetSourceText(std::u16string_view text) { Set(sourceText, text); }
    void SetTargetText(std::u16string_view text) { Set(targetText, text); }
    void SetCodeBefore(std::u16string_view code) { Set(codeBefore, code); }
    void SetCodeAfter(std::u16string_view code) { Set(codeAfter, code); }
    /// Of equal numbers the first stays.
    void AddSourceCode(std::int32_t number, std::u16string_view code) {
        Add(sourceCodes, number, code);
    }
    void AddTargetCode(std::int32_t number, std::u16string_view code) {
        Add(targetCodes, number, code);
    }

    /// Commits what was set since the last call, to both columns of the current segment, and goes
    /// on to the next one. With nothing set, or behind the last segment, no segment changes. Texts
    /// and what stands around them stay for the next segment; its codes are to be added anew.
    void Next();
    /// Swaps the columns.
    void ReverseLanguages();

    /// The text part with its columns in the order of the file and the target language that was
    /// set. Unless the answer is `Done`, there is none.
    LanguageChange Serialize(std::string& bytes);

  private:
    void Set(std::u16string& value, std::u16string_view text) {
        value = text;
        isDirty = true;
    }
    void Add(CodeMap& codes, std::int32_t number, std::u16string_view code) {
        codes.try_emplace(number, code);
        isDirty = true;
    }
    void Commit();

    ItdDocument document;
    std::u16string sourceLanguage;
    std::u16string targetLanguage;
    std::u16string sourceText;
    std::u16string targetText;
    std::u16string codeBefore;
    std::u16string codeAfter;
    CodeMap sourceCodes;
    CodeMap targetCodes;
    std::size_t index = 0;
    bool isReversed = false;  ///< the columns are swapped against the file
    bool isDirty = false;
    bool languageChanged = false;
};

}  // namespace generalutilities
