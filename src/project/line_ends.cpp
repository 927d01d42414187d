#include <generalutilities/project/line_ends.h>

namespace generalutilities {
namespace {

/// The length of the line end at `position`; 0 for none there.
std::size_t LineEndLength(std::u16string_view text, std::size_t position) {
    if (text[position] == u'\n') {
        return 1;
    }
    if (text[position] != u'\r') {
        return 0;
    }
    return position + 1 < text.size() && text[position + 1] == u'\n' ? 2 : 1;
}

/// The one form of all line ends of a text; empty for none or several.
std::u16string_view LineEndOf(std::u16string_view text) {
    std::u16string_view form;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = LineEndLength(text, i);
        const std::u16string_view found = text.substr(i, length);
        if (length > 0 && !form.empty() && found != form) {
            return {};
        }
        form = length > 0 ? found : form;
        i += length > 0 ? length : 1;
    }
    return form;
}

}  // namespace

bool EqualButForLineEnds(std::u16string_view a, std::u16string_view b) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        const std::size_t aEnd = LineEndLength(a, i);
        const std::size_t bEnd = LineEndLength(b, j);
        if ((aEnd > 0) != (bEnd > 0) || (aEnd == 0 && a[i] != b[j])) {
            return false;
        }
        i += aEnd > 0 ? aEnd : 1;
        j += bEnd > 0 ? bEnd : 1;
    }
    return i == a.size() && j == b.size();
}

std::u16string WithLineEndsOf(std::u16string_view text, std::u16string_view model) {
    const std::u16string_view form = LineEndOf(model);
    if (form.empty()) {
        return std::u16string(text);
    }
    std::u16string changed;
    changed.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = LineEndLength(text, i);
        changed.append(length > 0 ? form : text.substr(i, 1));
        i += length > 0 ? length : 1;
    }
    return changed;
}

}  // namespace generalutilities
