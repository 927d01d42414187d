// A reviewer sees the shown text of a code and returns that alone. The hidden part is put back
// where the shown text stands: a group in braces names its code wherever it went, any other shown
// text is followed through the comparison of the stored text with the returned one.

#include <generalutilities/project/segment_codes.h>
#include <generalutilities/project/word_diff.h>

#include <algorithm>
#include <unordered_map>

namespace generalutilities {
namespace {

struct HiddenCode {
    std::u16string_view whole;  ///< with its three marks
    std::u16string_view shown;
    std::size_t shownAt = 0;  ///< where `shown` stands in the text as it is shown

    /// Whether the shown text is one group in braces.
    bool IsGroup() const { return shown.starts_with(u'{') && shown.find(u'}') == shown.size() - 1; }
};

struct StoredText {
    std::u16string shown;
    std::vector<HiddenCode> codes;
    bool wellFormed = true;
};

StoredText Parse(std::u16string_view text) {
    StoredText stored;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] < 0x0006 || text[i] > 0x0008) {
            stored.shown += text[i];
            continue;
        }
        // U+0006 shown U+0007 hidden U+0008, and no mark inside either part.
        constexpr std::u16string_view Marks = u"\u0006\u0007\u0008";
        const std::size_t middle = std::min(text.find_first_of(Marks, i + 1), text.size());
        const std::size_t end = std::min(text.find_first_of(Marks, middle + 1), text.size());
        if (text[i] != 0x0006 || end == text.size() || text[middle] != 0x0007 ||
            text[end] != 0x0008) {
            stored.wellFormed = false;
            return stored;
        }
        const std::u16string_view shown = text.substr(i + 1, middle - i - 1);
        stored.codes.push_back({text.substr(i, end + 1 - i), shown, stored.shown.size()});
        stored.shown += shown;
        i = end;
    }
    return stored;
}

/// A stretch of the returned text that a whole code takes the place of.
struct Replacement {
    std::size_t first;
    std::size_t length;
    std::u16string_view code;
};

/// The codes in braces, each where the same group stands in `returned`. A group that stands there
/// more often than it was stored repeats its last code. Gives the first one that is gone.
const HiddenCode* PlaceGroups(std::u16string_view returned, const StoredText& target,
                              const StoredText& source, std::vector<Replacement>& replacements) {
    struct Known {
        std::vector<const HiddenCode*> codes;
        std::size_t used = 0;
        bool ofTarget = false;
    };
    std::unordered_map<std::u16string_view, Known> known;
    for (const HiddenCode& code : target.codes) {
        if (code.IsGroup()) {
            known[code.shown].codes.push_back(&code);
            known[code.shown].ofTarget = true;
        }
    }
    for (const HiddenCode& code : source.codes) {
        if (code.IsGroup() && !known[code.shown].ofTarget) {
            known[code.shown].codes.push_back(&code);
        }
    }
    for (const std::u16string_view group : CodesOf(returned)) {
        const auto found = known.find(group);
        if (found != known.end()) {
            Known& entry = found->second;
            const std::size_t which = std::min(entry.used, entry.codes.size() - 1);
            replacements.push_back({static_cast<std::size_t>(group.data() - returned.data()),
                                    group.size(), entry.codes[which]->whole});
            ++entry.used;
        }
    }
    for (const HiddenCode& code : target.codes) {
        if (code.IsGroup() && known[code.shown].used < known[code.shown].codes.size()) {
            return known[code.shown].codes[known[code.shown].used];
        }
    }
    return nullptr;
}

/// The other codes of the target, each in the stretch that the two texts share. Gives the first one
/// that stands in none.
const HiddenCode* PlaceInUnchangedText(std::u16string_view returned, const StoredText& target,
                                       std::vector<Replacement>& replacements) {
    const std::vector<DiffStretch> stretches = CompareWords(target.shown, returned, 0);
    auto stretch = stretches.begin();
    for (const HiddenCode& code : target.codes) {
        if (code.IsGroup()) {
            continue;
        }
        const std::size_t end = code.shownAt + code.shown.size();
        while (stretch != stretches.end() &&
               (!stretch->same || stretch->oldFirst + stretch->oldLength < end)) {
            ++stretch;
        }
        if (stretch != stretches.end() && stretch->oldFirst <= code.shownAt) {
            const std::size_t first = stretch->newFirst + code.shownAt - stretch->oldFirst;
            replacements.push_back({first, code.shown.size(), code.whole});
        } else if (code.shown.empty() && code.shownAt == 0) {
            replacements.push_back({0, 0, code.whole});
        } else if (code.shown.empty() && code.shownAt == target.shown.size()) {
            replacements.push_back({returned.size(), 0, code.whole});
        } else {
            return &code;
        }
    }
    return nullptr;
}

}  // namespace

bool RestoreHiddenCodes(std::u16string_view shown, std::u16string_view storedTarget,
                        std::u16string_view storedSource, std::u16string& restored,
                        std::u16string& missing) {
    if (!HasCodeMarkers(storedTarget) && !HasCodeMarkers(storedSource)) {
        restored = shown;
        return true;
    }
    const StoredText target = Parse(storedTarget);
    StoredText source = Parse(storedSource);
    if (!source.wellFormed) {
        source.codes.clear();
    }
    std::vector<Replacement> replacements;
    const HiddenCode* lost = nullptr;
    if (target.wellFormed) {
        lost = PlaceGroups(shown, target, source, replacements);
        if (lost == nullptr) {
            lost = PlaceInUnchangedText(shown, target, replacements);
        }
    }
    if (!target.wellFormed || lost != nullptr) {
        missing = lost == nullptr       ? std::u16string(storedTarget)
                  : lost->shown.empty() ? PlainText(lost->whole)
                                        : std::u16string(lost->shown);
        return false;
    }
    std::stable_sort(replacements.begin(), replacements.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::u16string text;
    std::size_t position = 0;
    for (const Replacement& replacement : replacements) {
        if (replacement.first < position) {  // two codes claim one place
            missing = replacement.code;
            return false;
        }
        text.append(shown, position, replacement.first - position).append(replacement.code);
        position = replacement.first + replacement.length;
    }
    restored = text.append(shown.substr(position));
    return true;
}

}  // namespace generalutilities
