#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// The reader of the small tagged texts in and around ITD documents.
///
/// It knows tags, attributes in double quotes, and no entities. A closing tag pairs with the newest
/// open one, whatever their names. docs/itd.md tells what it makes of malformed text.
namespace generalutilities {

/// Positions count in the text that was parsed.
struct ItdAttribute {
    std::uint32_t nameStart = 0;
    std::uint32_t nameEnd = 0;
    std::uint32_t valueStart = 0;  ///< of the opening quote
    std::uint32_t valueEnd = 0;    ///< behind the closing quote
};

/// An element; `nameStart` to `closeEnd` are positions of its parts.
struct ItdElement {
    std::uint32_t nameStart = 0;
    std::uint32_t nameEnd = 0;
    std::uint32_t openStart = 0;  ///< the opening tag, from its "<" to behind its ">"
    std::uint32_t openEnd = 0;
    std::uint32_t closeStart = 0;  ///< the closing tag; 0 for an element without one
    std::uint32_t closeEnd = 0;
    std::uint32_t firstAttribute = 0;  ///< among those of all elements
    std::uint32_t attributeCount = 0;
    bool selfClosed = false;
};

/// What one root element held. It may be used again and again, which saves allocations.
class ItdElementTree {
  public:
    /// Reads one root element from the start of a text of less than 2^32 units, after which the
    /// tree holds nothing else. Gives the position behind what was read. The views that the tree
    /// gives point into `text`. A tag that the end of the text cuts off ends the reading with what
    /// came before. Linear in the text.
    std::size_t Parse(std::u16string_view text);

    /// All that was read.
    std::u16string_view WholeText() const { return wholeText; }
    /// The name of the first tag; empty when it was a closing one.
    std::u16string_view RootName() const { return rootName; }
    /// In the order in which they were completed.
    const std::vector<ItdElement>& Elements() const { return elements; }

    std::u16string_view Name(const ItdElement& element) const;
    /// What stands between the two tags of an element; empty for a self-closed one.
    std::u16string_view Text(const ItdElement& element) const;
    std::span<const ItdAttribute> Attributes(const ItdElement& element) const;
    std::u16string_view Name(const ItdAttribute& attribute) const;
    /// What stands between the quotes.
    std::u16string_view Value(const ItdAttribute& attribute) const;

    /// The first completed element of a name, or null.
    const ItdElement* Find(std::u16string_view name) const;
    /// The digits with which the first element of a name begins, as a number kept to 32 bits; 0
    /// where there is no such element or no digit.
    std::uint32_t Number(std::u16string_view name) const;

  private:
    std::u16string_view wholeText;
    std::u16string_view rootName;
    std::vector<ItdElement> elements;
    std::vector<ItdElement> openTags;
    std::vector<ItdAttribute> attributes;
};

/// Behind the first tag of a text, whatever it is: behind the first ">" outside double quotes that
/// follows the tag's name. The text's length where there is none.
std::size_t SkipFirstTag(std::u16string_view text);

}  // namespace generalutilities
