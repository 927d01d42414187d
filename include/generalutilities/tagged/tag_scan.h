#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Inline tags of segment text.
///
/// Every `<` opens a tag; a literal one has to be written as an entity, and entities are plain text
/// here. The name of a tag runs to the first space or `>`, and the tag to the first `>` from there
/// on, also inside quotes. A tag named "ut", in either case, is a code element: it runs through the
/// first `>` behind the next "</ut", and nothing in it is looked at. docs/inline-codes.md shows it
/// all with examples.
namespace generalutilities {

/// What a tag is by its name.
enum class TagKind {
    CodeElement,     ///< named "ut", with its content
    OpeningFontTag,  ///< the name begins with "df"
    ClosingFontTag,  ///< the name begins with "/df"
    Other,
};

/// What a whole tag is.
TagKind KindOfTag(std::u16string_view tag);

/// A text cut into plain runs and whole tags. One run more than tags: the text is texts[0],
/// tags[0], texts[1], ..., the last of `texts`; runs may be empty. The views point into the text
/// that was scanned.
struct TagScan {
    std::vector<std::u16string_view> texts;
    std::vector<std::u16string_view> tags;
};

/// Why a text cannot be cut.
struct TagFault {
    enum class Kind {
        CodeElementNotClosed,  ///< there is no "</ut" behind a tag named "ut"
        TagNotClosed,          ///< the name of a tag has ended, and there is no `>` from there on
    };
    Kind kind;
    std::size_t position;  ///< of the tag's `<`, in code units from 0

    /// In English, as components report it.
    const char* Words() const;
};

/// Cuts a text; at a fault `scan` holds what stands in front of it. Linear in the text. Throws
/// `std::bad_alloc`.
std::optional<TagFault> ScanTags(std::u16string_view text, TagScan& scan);

/// Puts a scan together again.
std::u16string JoinTagScan(const TagScan& scan);

}  // namespace generalutilities
