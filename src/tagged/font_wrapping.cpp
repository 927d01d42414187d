#include <generalutilities/tagged/font_tags.h>
#include <generalutilities/tagged/font_wrapping.h>
#include <generalutilities/tagged/tag_scan.h>

#include "tagged/tag_units.h"

#include <algorithm>
#include <bitset>
#include <memory>

namespace generalutilities {

class FontWrapper::Page {
  public:
    Page(std::uint32_t codePage, std::u16string_view fontDef)
        : number(codePage), openingTag(u"<df ") {
        openingTag.append(fontDef) += u'>';
    }

    /// `unit` is the first of the character.
    bool Carries(char16_t unit, std::u16string_view character, CodePageQuestion question) {
        if (answers == nullptr) {
            answers = std::make_unique<Answers>();
        }
        if (!answers->known[unit]) {
            answers->carried[unit] = question(character, number);
            answers->known[unit] = true;
        }
        return answers->carried[unit];
    }
    const std::u16string& OpeningTag() const { return openingTag; }

  private:
    struct Answers {
        std::bitset<0x10000> known;
        std::bitset<0x10000> carried;
    };

    std::uint32_t number;
    std::u16string openingTag;
    std::unique_ptr<Answers> answers;  ///< 16 KB from the first question on
};

/// A stretch of the plain text, never empty, that gets a font of its own.
struct FontWrapper::Run {
    std::size_t start;
    std::size_t end;
    std::size_t page;
};

namespace {

constexpr std::u16string_view ClosingTag = u"</df>";

/// Writes the tags round runs, and keeps spans nested: spans of the text that overlap a run at one
/// end are cut there.
class SpanWriter {
  public:
    explicit SpanWriter(std::u16string& result) : out(result) {}

    bool IsOpen() const { return !opening.empty(); }

    /// `openingTag` must live until `Close`.
    void Open(std::u16string_view openingTag) {
        opening = openingTag;
        out += opening;
    }

    /// Writes a tag of the text, inside a run or not.
    void Tag(std::u16string_view tag) {
        out += tag;
        if (!IsOpen()) {
            return;
        }
        if (HasLettersAt(tag, 0, u"<df")) {
            inner.push_back(tag);
        } else if (tag.size() == ClosingTag.size() && HasLettersAt(tag, 0, ClosingTag)) {
            if (!inner.empty()) {
                inner.pop_back();
                return;
            }
            // This closes a span from before the run, which ends with it and begins anew.
            out += ClosingTag;
            out += opening;
        }
    }

    void Close() {
        out += ClosingTag;
        for (std::size_t i = 0; i < inner.size(); ++i) {
            out += ClosingTag;
        }
        for (const std::u16string_view tag : inner) {
            out += tag;
        }
        inner.clear();
        opening = {};
    }

  private:
    std::u16string& out;
    std::u16string_view opening;             ///< of the run that is open
    std::vector<std::u16string_view> inner;  ///< opening tags of spans begun in the run
};

}  // namespace

FontWrapper::FontWrapper(CodePageQuestion question) : carries(question) {}
FontWrapper::~FontWrapper() = default;

void FontWrapper::AddCodePage(std::uint32_t codePage, std::u16string_view fontDef) {
    pages.emplace_back(codePage, fontDef);
}

void FontWrapper::Reset() {
    pages.clear();
}

std::size_t FontWrapper::FindPage(char16_t unit, std::u16string_view character) {
    for (std::size_t page = 0; page < pages.size(); ++page) {
        if (pages[page].Carries(unit, character, carries)) {
            return page;
        }
    }
    return pages.size() - 1;
}

std::vector<FontWrapper::Run> FontWrapper::FindRuns(std::u16string_view plain) {
    std::vector<Run> runs;
    std::size_t current = 0;
    for (std::size_t position = 0; position < plain.size();) {
        const char16_t unit = plain[position];
        const std::size_t length = unit >= 0xD800 && unit <= 0xDBFF ? 2 : 1;
        const std::u16string_view character = plain.substr(position, length);
        if (!pages[current].Carries(unit, character, carries)) {
            const std::size_t page = FindPage(unit, character);
            if (page != current) {
                if (!runs.empty()) {
                    runs.back().end = position;
                }
                runs.push_back({position, plain.size(), page});
                current = page;
            }
        }
        position += character.size();
    }
    return runs;
}

std::u16string FontWrapper::AddFonts(std::u16string_view text) {
    TagScan scan;
    const std::u16string stripped = IsEmpty() ? std::u16string() : StripFontAttributes(text);
    if (IsEmpty() || ScanTags(stripped, scan)) {
        return std::u16string(text);
    }
    std::u16string plain;
    plain.reserve(stripped.size());
    for (const std::u16string_view run : scan.texts) {
        plain += run;
    }
    const std::vector<Run> runs = FindRuns(plain);

    std::u16string result;
    result.reserve(stripped.size());
    SpanWriter writer(result);
    auto run = runs.begin();
    std::size_t position = 0;  // in the plain text
    for (std::size_t i = 0; i < scan.texts.size(); ++i) {
        const std::size_t end = position + scan.texts[i].size();
        // A run begins right in front of its first character, and ends right behind its last.
        while (position < end) {
            if (run != runs.end() && run->start == position) {
                writer.Open(pages[run->page].OpeningTag());
            }
            const std::size_t border = run == runs.end() ? end
                                       : writer.IsOpen() ? run->end
                                                         : run->start;
            const std::size_t stop = std::min(border, end);
            result.append(plain, position, stop - position);
            position = stop;
            if (writer.IsOpen() && run->end == position) {
                writer.Close();
                ++run;
            }
        }
        if (i < scan.tags.size()) {
            writer.Tag(scan.tags[i]);
        }
    }
    return result;
}

}  // namespace generalutilities
