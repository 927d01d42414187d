#include <generalutilities/itd/element_tree.h>

#include <utility>

namespace generalutilities {

namespace {

bool IsBlank(char16_t unit) {
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

bool EndsName(char16_t unit) {
    return IsBlank(unit) || unit == u'"' || unit == u'/' || unit == u'<' || unit == u'=' ||
           unit == u'>';
}

/// A place in the text, and the steps over its parts.
class Scanner {
  public:
    explicit Scanner(std::u16string_view scanned) : text(scanned) {}

    std::uint32_t Position() const { return position; }
    bool AtEnd() const { return position >= text.size(); }
    bool At(char16_t unit) const { return !AtEnd() && text[position] == unit; }
    void Step() { ++position; }
    void SkipBlanks() {
        while (!AtEnd() && IsBlank(text[position])) {
            ++position;
        }
    }
    void SkipName() {
        while (!AtEnd() && !EndsName(text[position])) {
            ++position;
        }
    }
    /// From a "<" over the first character behind it, whatever it is, and the rest of the name.
    void SkipTagName() {
        SkipBlanks();
        if (!AtEnd()) {
            ++position;
            SkipName();
        }
    }

    /// From behind a tag's name to its ">", which is not stepped over.
    void ReadAttributes(bool& selfClosed, std::vector<ItdAttribute>& attributes) {
        bool quoted = false;
        for (SkipBlanks(); !AtEnd(); SkipBlanks()) {
            if (At(u'"')) {
                quoted = !quoted;
                Step();
            } else if (At(u'/')) {
                selfClosed = selfClosed || !quoted;
                Step();
            } else if (At(u'>') && !quoted) {
                return;
            } else {
                ReadAttribute(attributes);
            }
        }
    }

  private:
    /// A value with a blank or another unit that ends a name in it is no value. Then the tag goes
    /// on with the unit that ended it, which may be the tag's own ">".
    void ReadAttribute(std::vector<ItdAttribute>& attributes) {
        const std::uint32_t start = position;
        ItdAttribute attribute;
        attribute.nameStart = position;
        SkipName();
        attribute.nameEnd = position;
        SkipBlanks();
        if (At(u'=')) {
            Step();
            SkipBlanks();
        }
        if (At(u'"')) {
            attribute.valueStart = position;
            Step();
            SkipName();
            if (At(u'"')) {
                Step();
                attribute.valueEnd = position;
                attributes.push_back(attribute);
            }
        }
        if (position == start) {
            Step();
        }
    }

    std::u16string_view text;
    std::uint32_t position = 0;
};

}  // namespace

std::size_t ItdElementTree::Parse(std::u16string_view text) {
    elements.clear();
    openTags.clear();
    attributes.clear();
    rootName = {};
    bool first = true;
    Scanner scanner(text);
    while (!scanner.AtEnd()) {
        if (!scanner.At(u'<')) {
            scanner.Step();
            continue;
        }
        ItdElement tag;
        tag.openStart = scanner.Position();
        scanner.Step();
        scanner.SkipBlanks();
        tag.nameStart = scanner.Position();
        Scanner name = scanner;
        name.SkipName();
        tag.nameEnd = name.Position();
        const bool closing = scanner.At(u'/');
        scanner.SkipTagName();
        tag.firstAttribute = static_cast<std::uint32_t>(attributes.size());
        scanner.ReadAttributes(tag.selfClosed, attributes);
        tag.attributeCount = static_cast<std::uint32_t>(attributes.size()) - tag.firstAttribute;
        if (scanner.AtEnd()) {
            break;
        }
        scanner.Step();
        tag.openEnd = scanner.Position();
        if (std::exchange(first, false)) {
            rootName = text.substr(tag.nameStart, tag.nameEnd - tag.nameStart);
        }
        if (closing) {
            if (!openTags.empty()) {
                openTags.back().closeStart = tag.openStart;
                openTags.back().closeEnd = tag.openEnd;
                elements.push_back(openTags.back());
                openTags.pop_back();
            }
            if (openTags.empty()) {
                break;
            }
        } else if (tag.selfClosed) {
            elements.push_back(tag);
        } else {
            openTags.push_back(tag);
        }
    }
    wholeText = text.substr(0, scanner.Position());
    return scanner.Position();
}

std::u16string_view ItdElementTree::Name(const ItdElement& element) const {
    return wholeText.substr(element.nameStart, element.nameEnd - element.nameStart);
}

std::u16string_view ItdElementTree::Text(const ItdElement& element) const {
    return element.selfClosed
               ? std::u16string_view()
               : wholeText.substr(element.openEnd, element.closeStart - element.openEnd);
}

std::span<const ItdAttribute> ItdElementTree::Attributes(const ItdElement& element) const {
    return std::span(attributes).subspan(element.firstAttribute, element.attributeCount);
}

std::u16string_view ItdElementTree::Name(const ItdAttribute& attribute) const {
    return wholeText.substr(attribute.nameStart, attribute.nameEnd - attribute.nameStart);
}

std::u16string_view ItdElementTree::Value(const ItdAttribute& attribute) const {
    return wholeText.substr(attribute.valueStart + 1,
                            attribute.valueEnd - attribute.valueStart - 2);
}

const ItdElement* ItdElementTree::Find(std::u16string_view name) const {
    for (const ItdElement& element : elements) {
        if (Name(element) == name) {
            return &element;
        }
    }
    return nullptr;
}

std::uint32_t ItdElementTree::Number(std::u16string_view name) const {
    std::uint32_t number = 0;
    if (const ItdElement* const element = Find(name)) {
        for (std::size_t i = element->openEnd; i < wholeText.size(); ++i) {
            const unsigned digit = wholeText[i] - u'0';
            if (digit > 9) {
                break;
            }
            number = number * 10 + digit;
        }
    }
    return number;
}

std::size_t SkipFirstTag(std::u16string_view text) {
    Scanner scanner(text);
    scanner.Step();
    scanner.SkipTagName();
    for (bool quoted = false; !scanner.AtEnd(); scanner.Step()) {
        if (scanner.At(u'>') && !quoted) {
            return scanner.Position() + 1;
        }
        quoted = quoted != scanner.At(u'"');
    }
    return text.size();
}

}  // namespace generalutilities
