// The folds in their plain form, the choice between the forms, and what is built on FoldPrefix.

#include <generalutilities/text/folding.h>

#include "platform/cpu.h"
#include "text/folding_rules.h"

namespace generalutilities {

std::size_t FoldPrefixPlainly(Fold fold, std::u16string_view text, char16_t* out) noexcept {
    return WithRule(fold, [text, out]<typename Rule>(Rule) {
        return MapUnits<Rule>(text.data(), text.size(), out);
    });
}

std::size_t FoldPrefix(Fold fold, std::u16string_view text, char16_t* out) noexcept {
    return HasAvx2() ? FoldPrefixByBlocks(fold, text, out) : FoldPrefixPlainly(fold, text, out);
}

std::size_t FoldedLength(Fold fold, std::u16string_view text) noexcept {
    return WithRule(fold, [text]<typename Rule>(Rule) {
        std::size_t length = text.size();
        for (const char16_t unit : text) {
            if (Rule::Grows(unit, Rule::Map(unit))) [[unlikely]] {
                length += Rule::Length(unit) - 1;
            }
        }
        return length;
    });
}

char16_t* FoldTo(Fold fold, std::u16string_view text, char16_t* out) noexcept {
    return WithRule(fold, [fold, text, out]<typename Rule>(Rule) mutable {
        for (;;) {
            const std::size_t done = FoldPrefix(fold, text, out);
            out += done;
            if (done == text.size()) {
                return out;
            }
            out = Rule::Write(text[done], out);
            text.remove_prefix(done + 1);
        }
    });
}

namespace {

/// A string's room is written before it can be had; writing the text itself costs least.
std::u16string Folded(Fold fold, std::u16string_view text) {
    std::u16string result(text);
    const std::size_t done = FoldPrefix(fold, text, result.data());
    if (done < text.size()) {
        const std::u16string_view rest = text.substr(done);
        result.resize(done + FoldedLength(fold, rest));
        FoldTo(fold, rest, result.data() + done);
    }
    return result;
}

}  // namespace

std::u16string ToUpper(std::u16string_view text) {
    return Folded(Fold::Upper, text);
}

std::u16string ToLower(std::u16string_view text) {
    return Folded(Fold::Lower, text);
}

std::u16string DeAccentString(std::u16string_view text) {
    return Folded(Fold::DeAccent, text);
}

std::u16string DeAccentUpperCaseString(std::u16string_view text) {
    return Folded(Fold::DeAccentUpper, text);
}

}  // namespace generalutilities
