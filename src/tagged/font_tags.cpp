#include <generalutilities/tagged/font_tags.h>

#include "tagged/tag_units.h"

#include <algorithm>

namespace generalutilities {

namespace {

std::vector<std::u16string_view> SetOf(std::span<const DfAttribute> attributes) {
    std::vector<std::u16string_view> texts;
    for (const DfAttribute& attribute : attributes) {
        texts.push_back(attribute.text);
    }
    std::ranges::sort(texts);
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
    return texts;
}

/// Removes font attributes while it copies the text. What was copied is the text as it would stand
/// if tags were deleted in place, so that positions in it tell which tags have become neighbours.
class FontStripper {
  public:
    explicit FontStripper(std::u16string_view original) : text(original), units(original) {
        out.reserve(text.size());
    }

    std::u16string Run() {
        std::size_t open;
        std::size_t nameEnd;
        while ((open = units.FindOpen(position)) != NoUnit &&
               (nameEnd = units.FindNameEnd(open)) != NoUnit) {
            CopyTo(open);
            switch (ClassifyTag(text, open, nameEnd)) {
                case TagKind::CodeElement:
                    CopyTo(std::min(units.FindCodeElementEnd(nameEnd), text.size()));
                    break;
                case TagKind::OpeningFontTag: {
                    const std::size_t end = units.FindClose(nameEnd);
                    OpenSpan(end == NoUnit ? NoUnit : end + 1);
                    break;
                }
                case TagKind::ClosingFontTag:
                    CloseSpan(nameEnd + 1);
                    break;
                case TagKind::Other:
                    CopyTo(nameEnd);
                    break;
            }
        }
        CopyTo(text.size());
        return std::move(out);
    }

  private:
    static constexpr std::size_t Nowhere = static_cast<std::size_t>(-1);

    void CopyTo(std::size_t end) {
        out += text.substr(position, end - position);
        position = end;
    }

    /// At an opening font tag that ends before `end`; one without an end is where all ends.
    void OpenSpan(std::size_t end) {
        if (end == NoUnit) {
            CopyTo(text.size());
            return;
        }
        if (out.size() != lastCloseEnd) {
            lastAttributes.clear();
        }
        std::vector<DfAttribute> attributes =
            ParseDfAttributes(text.substr(position + 3, end - position - 4));
        const auto isFont = [](const DfAttribute& attribute) { return attribute.isFont; };
        const bool removed = !attributes.empty() && std::ranges::all_of(attributes, isFont);
        spanStack.push_back(removed);
        if (removed) {
            position = end;
            return;
        }
        if (std::erase_if(attributes, isFont) == 0) {
            CopyTo(end);
        } else if (SameDfAttributes(attributes, lastAttributes)) {
            // The span that has just ended goes on: its closing tag is the last that was copied.
            out.resize(lastCloseStart);
            lastCloseEnd = Nowhere;
            position = end;
        } else {
            out += BuildDfTag(attributes);
            position = end;
        }
        lastAttributes = std::move(attributes);
    }

    /// At a closing font tag, of which `end` is behind the character that ends its name.
    void CloseSpan(std::size_t end) {
        if (spanStack.empty()) {
            CopyTo(end);
            return;
        }
        if (spanStack.back()) {
            position = end;
        } else {
            lastCloseStart = out.size();
            CopyTo(end);
            lastCloseEnd = out.size();
        }
        spanStack.pop_back();
    }

    std::u16string_view text;
    TagUnits units;
    std::size_t position = 0;
    std::u16string out;
    std::vector<bool> spanStack;  ///< for each open span, whether its opening tag was removed
    std::vector<DfAttribute> lastAttributes;  ///< of the latest opening tag that was kept
    std::size_t lastCloseStart = Nowhere;     ///< of the latest closing tag that was kept, in `out`
    std::size_t lastCloseEnd = Nowhere;
};

}  // namespace

std::vector<DfAttribute> ParseDfAttributes(std::u16string_view part) {
    std::vector<DfAttribute> attributes;
    std::size_t start = part.find_first_not_of(u' ');
    while (start != part.npos) {
        const std::size_t equals = part.find(u'=', start);
        const std::size_t opening = equals == NoUnit ? NoUnit : part.find(u'"', equals + 1);
        const std::size_t closing = opening == NoUnit ? NoUnit : part.find(u'"', opening + 1);
        if (closing == NoUnit) {
            break;
        }
        attributes.push_back(
            {HasLettersAt(part, start, u"font"), part.substr(start, closing + 1 - start)});
        start = part.find_first_not_of(u' ', closing + 1);
    }
    return attributes;
}

std::u16string BuildDfTag(std::span<const DfAttribute> attributes) {
    std::u16string tag = u"<df";
    for (const DfAttribute& attribute : attributes) {
        tag += u' ';
        tag += attribute.text;
    }
    return tag += u'>';
}

bool SameDfAttributes(std::span<const DfAttribute> a, std::span<const DfAttribute> b) {
    return SetOf(a) == SetOf(b);
}

std::u16string StripFontAttributes(std::u16string_view text) {
    return FontStripper(text).Run();
}

}  // namespace generalutilities
