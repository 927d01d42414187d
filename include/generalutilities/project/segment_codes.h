#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Inline codes of segment text as a host handles them: made from the placeholders of plain text,
/// compared between a source and its translation, and given their hidden parts back.
///
/// Segment text holds a code as "{...}", where a backslash escapes "\", "{" and "}", or as U+0006
/// shown text U+0007 hidden text U+0008. A reviewer sees the shown text alone.
namespace generalutilities {

/// What the texts of an input are.
enum class TextForm {
    Segment,      ///< segment text already; taken as it is
    Plain,        ///< plain text: "\", "{" and "}" are escaped, and nothing is a code
    Placeholders  ///< plain text whose placeholders (`%s`, `%(name)s`, `{name}`, `<b>`) become
                  ///< codes
};

/// Makes segment text of plain texts that belong together: a source and its translations.
///
/// With `Placeholders` the k-th placeholder of the source becomes a code that shows "{k}" and hides
/// the placeholder itself. A translation's placeholder takes the number of the source's equal one,
/// repeated ones in order; one that the source does not have gets the next free number.
class SegmentTextMaker {
  public:
    explicit SegmentTextMaker(TextForm textForm) : form(textForm) {}

    std::u16string Source(std::u16string_view text);
    /// A translation of the text last given to `Source`.
    std::u16string Translation(std::u16string_view text) const;

  private:
    TextForm form;
    std::vector<std::u16string> sourcePlaceholders;
};

/// The plain text again: escapes undone, each code replaced by its hidden text, or by its own
/// characters when it hides nothing.
std::u16string PlainText(std::u16string_view segmentText);

/// True when U+0006, U+0007 or U+0008 stands in the text; in plain text they have no meaning and no
/// escape.
bool HasCodeMarkers(std::u16string_view text);

/// The codes in braces of a text as it is shown, in order, braces included. A "{" behind an odd
/// number of backslashes starts none, and one without a "}" is none.
std::vector<std::u16string_view> CodesOf(std::u16string_view shownText);

/// How the codes of a translation differ from those of its source.
struct CodeDifference {
    enum class Kind {
        Lost,     ///< the source has it, the translation has it less often
        Added,    ///< the source does not have it
        Doubled,  ///< the translation has it more often than the source
    };
    Kind kind = Kind::Lost;
    std::u16string code;
    std::int32_t count = 1;  ///< how many times too few or too many

    friend bool operator==(const CodeDifference&, const CodeDifference&) = default;
};

/// The differences between the codes of two texts as shown, in the order of the codes' first
/// appearance: the lost ones first. Their order in the text is free and not compared.
std::vector<CodeDifference> CompareCodes(std::u16string_view shownSource,
                                         std::u16string_view shownTarget);

/// Gives a returned text the hidden parts of its codes back.
///
/// `shown` is what the reviewer returned; the codes are looked up in `storedTarget` first and in
/// `storedSource` for those that it lacks. Where a code's shown text is one in braces, it may stand
/// anywhere in `shown`; any other shown text must stand there in the stored order.
/// False, with `restored` unchanged, when a code of `storedTarget` with a hidden part is gone from
/// `shown`, named in `missing`.
bool RestoreHiddenCodes(std::u16string_view shown, std::u16string_view storedTarget,
                        std::u16string_view storedSource, std::u16string& restored,
                        std::u16string& missing);

}  // namespace generalutilities
