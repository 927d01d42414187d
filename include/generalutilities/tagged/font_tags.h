#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Font tags of segment text: a tag whose name begins with "df" opens a span, one whose name begins
/// with "/df" closes the innermost, both in either case.
namespace generalutilities {

/// One attribute of an opening font tag.
struct DfAttribute {
    bool isFont;               ///< its name begins with "font", in either case
    std::u16string_view text;  ///< as written, from the name through the closing quote
};

/// The attributes in what stands between the first two characters of a font tag's name and its `>`.
/// Values stand in double quotes; what does not have that form is dropped with all that follows.
/// The views point into `part`.
std::vector<DfAttribute> ParseDfAttributes(std::u16string_view part);

/// An opening font tag with these attributes.
std::u16string BuildDfTag(std::span<const DfAttribute> attributes);

/// Whether both hold the same attributes, whatever their order and repetition.
bool SameDfAttributes(std::span<const DfAttribute> a, std::span<const DfAttribute> b);

/// The text without font attributes: a font tag that has no others goes, with its closing tag, and
/// a span that becomes the same as the one that ended just before it is joined to that one. A
/// closing tag that closes nothing stays. The result taken again does not change. Time and memory
/// are linear in the text, but for the sorting of one tag's attributes. Throws `std::bad_alloc`.
std::u16string StripFontAttributes(std::u16string_view text);

}  // namespace generalutilities
