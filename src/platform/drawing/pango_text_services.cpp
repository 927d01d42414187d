// Text services on Pango.
//
// A text goes to Pango in one piece as long as it is short. A long one goes piece by piece: with
// each line Pango shapes all of the paragraph that is left, which costs the square of its length. A
// piece ends at the end of a paragraph, or, in a long paragraph, where the last of the piece's
// lines begins. So memory does not grow with the text either, and drawing ends at the lower edge of
// the rectangle.

#include "platform/drawing/cairo_target.h"
#include "platform/drawing/text_services.h"
#include "platform/drawing/thread_layout.h"
#include "platform/files/utf8.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace generalutilities {
namespace {

constexpr int DeviceUnitsPerInch = 96;
/// Letters are between nothing and 1638 points high.
constexpr std::int32_t MaxTwips = 32760;
constexpr std::int32_t DefaultTwips = 240;
/// Cairo's coordinates and Pango's lengths end a little behind it.
constexpr std::int32_t MaxCoordinate = 1 << 20;
/// Bytes of UTF-8 that go to Pango at once: at first, where lines are short, and at least. A long
/// paragraph goes by some lines at once. A line with more bytes than fit any width is broken there:
/// a letter can have any number of marks, and the time that these take is the square of their
/// number.
constexpr std::size_t FirstPiece = 1024;
constexpr std::size_t LeastPiece = 64;
constexpr std::size_t LongestLine = 16384;
constexpr std::size_t LinesPerPiece = 8;
/// A square letter of three bytes makes the longest lines that there usually are.
constexpr std::size_t BytesPerLetter = 3;

/// Numbers formats, so that a thread's layout knows which one it has.
std::atomic<std::uint64_t> lastFormat = 0;

constexpr std::int64_t ToPango(std::int32_t twips) {
    return std::int64_t{twips} * DeviceUnitsPerInch * PANGO_SCALE / TwipsPerInch;
}

/// The language whose forms of Han characters a character set means. It is not the locale's, so
/// that a text looks the same wherever it is drawn.
const char* LanguageOf(std::uint8_t charSet) {
    switch (charSet) {
        case 128:
            return "ja";
        case 129:
        case 130:
            return "ko";
        case 134:
            return "zh-cn";
        case 136:
            return "zh-tw";
        default:
            return "en";
    }
}

/// What serves where the family is missing.
const char* GenericFamily(std::uint8_t pitchAndFamily) {
    const int family = pitchAndFamily >> 4;
    if ((pitchAndFamily & 3) == 1 || family == 3) {
        return "monospace";
    }
    return family == 1 ? "serif" : "sans-serif";
}

std::string FamiliesOf(const CHARFORMAT2W& format) {
    const char16_t* const end =
        std::find(std::begin(format.szFaceName), std::end(format.szFaceName), u'\0');
    return files::ToUtf8Lossy({format.szFaceName, end}) + "," +
           GenericFamily(format.bPitchAndFamily);
}

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

class PangoTextServices final : public TextServices {
  public:
    PangoTextServices(ITextHost& textHost, const DrawingLibrary& functions)
        : host(textHost), library(functions) {}

    void OnTxPropertyBitsChange(std::uint32_t mask, std::uint32_t bits) override {
        if ((mask & bits & TXTBIT_CHARFORMATCHANGE) != 0) {
            FetchFormat();
        }
    }

    void TxSetText(std::u16string_view newText) override { text = files::ToUtf8Lossy(newText); }

    void TxDraw(DeviceContext& context, const tagRECT& bounds) override;
    SIZE TxGetNaturalSize(DeviceContext* context, std::int32_t width) override;

  private:
    struct Piece {
        std::size_t end;
        bool isLast;
        bool isOpen;  ///< the paragraph goes on behind it
    };

    void FetchFormat();
    ThreadLayout& Prepare(cairo_t* cairo, std::int32_t width);
    Piece PieceAt(std::size_t start, std::size_t size, bool continued) const;
    void FindDirection(ThreadLayout& thread) const;
    template <class Use>
    void ForEachLine(ThreadLayout& thread, const Use& use);

    ITextHost& host;
    const DrawingLibrary& library;
    std::string text;
    CHARFORMAT2W format{};
    std::uint64_t formatNumber = 0;
    std::int64_t letterHeight = 0;  ///< in Pango's units
    std::size_t firstPiece = 0;     ///< of a paragraph, for the width that is set
    FontDescription font;
    Attributes attributes;
    TabArray tabs;
};

void PangoTextServices::FetchFormat() {
    const CHARFORMAT2W* given = nullptr;
    const PARAFORMAT2* paragraphs = nullptr;
    if (host.TxGetCharFormat(&given) != S_OK || host.TxGetParaFormat(&paragraphs) != S_OK) {
        return;
    }
    format.crTextColor = given->crTextColor;  // no matter for the layout
    if (formatNumber != 0 && format == *given) {
        return;
    }
    const std::string families = FamiliesOf(*given);
    format = *given;
    formatNumber = ++lastFormat;

    const std::int32_t twips = std::abs(std::clamp(format.yHeight, -MaxTwips, MaxTwips));
    letterHeight = ToPango(twips == 0 ? DefaultTwips : twips);
    font.reset(library.pango_font_description_new());
    library.pango_font_description_set_family(font.get(), families.c_str());
    library.pango_font_description_set_absolute_size(font.get(), static_cast<double>(letterHeight));
    library.pango_font_description_set_weight(
        font.get(), (format.dwEffects & CFE_BOLD) != 0 ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    library.pango_font_description_set_style(
        font.get(), (format.dwEffects & CFE_ITALIC) != 0 ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);

    attributes.reset(library.pango_attr_list_new());
    if ((format.dwEffects & CFE_UNDERLINE) != 0) {
        library.pango_attr_list_insert(attributes.get(),
                                       library.pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
    }
    if ((format.dwEffects & CFE_STRIKEOUT) != 0) {
        library.pango_attr_list_insert(attributes.get(),
                                       library.pango_attr_strikethrough_new(TRUE));
    }

    tabs.reset(library.pango_tab_array_new(paragraphs->cTabCount, FALSE));
    for (int i = 0; i < paragraphs->cTabCount; ++i) {
        library.pango_tab_array_set_tab(tabs.get(), i, PANGO_TAB_LEFT,
                                        static_cast<int>(ToPango(paragraphs->rgxTabs[i])));
    }
}

/// The thread's layout with this format, for this surface and width.
ThreadLayout& PangoTextServices::Prepare(cairo_t* cairo, std::int32_t width) {
    ThreadLayout& thread = LayoutOfThread(library);
    PangoLayout* const layout = thread.layout.get();
    library.pango_cairo_update_context(cairo != nullptr ? cairo : thread.screen.get(),
                                       thread.context.get());
    if (thread.format != formatNumber) {
        library.pango_context_set_language(
            thread.context.get(), library.pango_language_from_string(LanguageOf(format.bCharSet)));
        library.pango_layout_set_font_description(layout, font.get());
        library.pango_layout_set_attributes(layout, attributes.get());
        library.pango_layout_set_tabs(layout, tabs.get());
        thread.format = formatNumber;
    }
    std::uint32_t bits = 0;
    host.TxGetPropertyBits(TXTBIT_WORDWRAP, &bits);
    const std::int64_t length = std::int64_t{std::clamp(width, 0, MaxCoordinate)} * PANGO_SCALE;
    library.pango_layout_set_width(layout,
                                   (bits & TXTBIT_WORDWRAP) != 0 ? static_cast<int>(length) : -1);
    firstPiece = std::clamp(
        LinesPerPiece / 2 * BytesPerLetter * static_cast<std::size_t>(length / letterHeight),
        FirstPiece, 2 * LongestLine);
    return thread;
}

/// The piece at `start`: what is left of the text, or some `size` bytes of it. What continues a
/// paragraph ends with it at the latest.
PangoTextServices::Piece PangoTextServices::PieceAt(std::size_t start, std::size_t size,
                                                    bool continued) const {
    if (text.size() - start <= size && !continued) {
        return {text.size(), true, false};
    }
    std::size_t limit = std::min(start + size, text.size());
    while (limit < text.size() &&
           (IsContinuation(text[limit]) || (text[limit] == '\n' && text[limit - 1] == '\r'))) {
        ++limit;
    }
    Piece piece{limit, limit == text.size(), limit < text.size()};
    for (std::size_t at = start; at < limit;) {
        int end = 0;
        int next = 0;
        library.pango_find_paragraph_boundary(text.data() + at, static_cast<int>(limit - at), &end,
                                              &next);
        if (next == end) {
            break;  // no end up to the limit
        }
        at += static_cast<std::size_t>(next);
        piece = {at, false, false};
        if (continued) {
            break;
        }
    }
    return piece;
}

/// Each paragraph has the direction of its first letter that has one.
void PangoTextServices::FindDirection(ThreadLayout& thread) const {
    library.pango_layout_set_auto_dir(thread.layout.get(), TRUE);
    library.pango_context_set_base_dir(thread.context.get(), PANGO_DIRECTION_LTR);
}

/// Calls `use(iterator)` with each line of the text, from the top, until it says false.
///
/// The last line of a piece is laid out anew with the next one: it is the empty line behind the end
/// of a paragraph, or the beginning of a longer line.
template <class Use>
void PangoTextServices::ForEachLine(ThreadLayout& thread, const Use& use) {
    PangoLayout* const layout = thread.layout.get();
    bool goOn = true;
    bool continued = false;
    std::size_t size = firstPiece;
    for (std::size_t start = 0; goOn;) {
        const Piece piece = PieceAt(start, size, continued);
        library.pango_layout_set_text(layout, text.data() + start,
                                      static_cast<int>(piece.end - start));
        const int lines = library.pango_layout_get_line_count(layout);
        if (piece.isOpen && lines == 1 && size < LongestLine) {
            size *= 2;
            continue;
        }
        const int used = std::max(piece.isLast ? lines : lines - 1, 1);
        const LayoutIter line(library.pango_layout_get_iter(layout));
        for (int i = 0; goOn && i < used; ++i) {
            goOn = use(line.get());
            library.pango_layout_iter_next_line(line.get());
        }
        if (piece.isLast || !goOn) {
            break;
        }
        const std::size_t pieceStart = std::exchange(start, piece.end);
        size = firstPiece;
        if (used < lines) {
            const PangoLayoutLine* const next =
                library.pango_layout_iter_get_line_readonly(line.get());
            start = pieceStart + static_cast<std::size_t>(next->start_index);
            if (piece.isOpen) {
                size = std::max(LeastPiece,
                                LinesPerPiece * (start - pieceStart) / static_cast<unsigned>(used));
            }
            if (piece.isOpen && !continued) {
                // What follows runs in the direction of the whole paragraph.
                library.pango_context_set_base_dir(thread.context.get(),
                                                   static_cast<PangoDirection>(next->resolved_dir));
                library.pango_layout_set_auto_dir(layout, FALSE);
            }
        }
        if (continued && !piece.isOpen) {
            FindDirection(thread);
        }
        continued = piece.isOpen;
    }
    FindDirection(thread);
}

void PangoTextServices::TxDraw(DeviceContext& context, const tagRECT& bounds) {
    const auto within = [](std::int32_t at) {
        return std::clamp(at, -MaxCoordinate, MaxCoordinate);
    };
    const int left = within(bounds.left);
    const int top = within(bounds.top);
    const int right = within(bounds.right);
    const int bottom = within(bounds.bottom);
    if (left >= right || top >= bottom) {
        return;
    }
    DeviceContext::Target& surface = context.Surface();
    cairo_t* const cairo = surface.cairo.get();
    ThreadLayout& thread = Prepare(cairo, right - left);
    const CairoPath path(surface.borrowed ? library.cairo_copy_path(cairo) : nullptr);
    library.cairo_save(cairo);
    library.cairo_new_path(cairo);
    library.cairo_rectangle(cairo, left, top, right - left, bottom - top);
    library.cairo_clip(cairo);
    const CHARFORMAT2W* current = nullptr;
    host.TxGetCharFormat(&current);
    SetSource(library, cairo, current->crTextColor);
    double y = top;
    ForEachLine(thread, [&](PangoLayoutIter* line) {
        PangoRectangle box;
        library.pango_layout_iter_get_line_extents(line, nullptr, &box);
        const int ascent = library.pango_layout_iter_get_baseline(line) - box.y;
        library.cairo_move_to(cairo, left + static_cast<double>(box.x) / PANGO_SCALE,
                              y + static_cast<double>(ascent) / PANGO_SCALE);
        library.pango_cairo_show_layout_line(cairo,
                                             library.pango_layout_iter_get_line_readonly(line));
        y += static_cast<double>(box.height) / PANGO_SCALE;
        return y < bottom;
    });
    library.cairo_restore(cairo);
    if (path != nullptr) {
        library.cairo_new_path(cairo);
        library.cairo_append_path(cairo, path.get());
    }
}

SIZE PangoTextServices::TxGetNaturalSize(DeviceContext* context, std::int32_t width) {
    ThreadLayout& thread =
        Prepare(context != nullptr ? context->Surface().cairo.get() : nullptr, width);
    std::int64_t widest = 0;
    std::int64_t height = 0;
    ForEachLine(thread, [&](PangoLayoutIter* line) {
        PangoRectangle box;
        library.pango_layout_iter_get_line_extents(line, nullptr, &box);
        widest = std::max<std::int64_t>(widest, box.width);
        height += box.height;
        return true;
    });
    const auto units = [](std::int64_t length) {
        constexpr std::int64_t Most = std::numeric_limits<std::int32_t>::max();
        return static_cast<std::int32_t>(std::min((length + PANGO_SCALE - 1) / PANGO_SCALE, Most));
    };
    return {units(widest), units(height)};
}

}  // namespace

std::unique_ptr<TextServices> CreateTextServices(ITextHost& host) {
    const DrawingLibrary* const library = OpenDrawingLibrary();
    return library == nullptr ? nullptr : std::make_unique<PangoTextServices>(host, *library);
}

}  // namespace generalutilities
