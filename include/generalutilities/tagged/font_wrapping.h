#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Wrapping the runs of a text that leave the first of several code pages in font tags.
namespace generalutilities {

/// Whether a code page carries a character, which is one code unit, or two from a high surrogate
/// on; `FitsCodePage` (text/code_page_fit.h) is one.
using CodePageQuestion = bool (*)(std::u16string_view character, std::uint32_t codePage);

/// Code pages with fonts, in the order in which characters are tried; the first is the default.
///
/// Each page is asked about a code unit once and remembers the answer, so that all characters with
/// the same high surrogate share the answer for the first of them. To be used by one thread at a
/// time. Throws `std::bad_alloc`.
class FontWrapper {
  public:
    explicit FontWrapper(CodePageQuestion question);
    ~FontWrapper();
    FontWrapper(const FontWrapper&) = delete;
    FontWrapper& operator=(const FontWrapper&) = delete;

    /// Appends a page. `fontDef` is what stands in the font tag behind "<df "; nothing is checked.
    void AddCodePage(std::uint32_t codePage, std::u16string_view fontDef);
    void Reset();
    bool IsEmpty() const { return pages.empty(); }

    /// The text without its font attributes (`StripFontAttributes`), and with font tags round every
    /// run from the first character on that the first page does not carry. A text whose tags cannot
    /// be scanned, and any text while there are no pages, comes back unchanged. Linear in the text
    /// and in the result, times the number of pages where characters fit none.
    std::u16string AddFonts(std::u16string_view text);

  private:
    class Page;
    struct Run;

    std::size_t FindPage(char16_t unit, std::u16string_view character);
    std::vector<Run> FindRuns(std::u16string_view plain);

    CodePageQuestion carries;
    std::vector<Page> pages;
};

}  // namespace generalutilities
