#include "project/placeholders.h"

namespace generalutilities {
namespace {

bool IsDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}
bool IsLetter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}
bool IsNameUnit(char16_t unit) {
    return IsLetter(unit) || IsDigit(unit) || unit == u'_';
}
bool IsOneOf(char16_t unit, std::u16string_view set) {
    return set.find(unit) != std::u16string_view::npos;
}

/// A place in a text that never runs behind its end.
class Cursor {
  public:
    Cursor(std::u16string_view whole, std::size_t start) : text(whole), position(start) {}

    char16_t Now() const { return position < text.size() ? text[position] : u'\0'; }
    bool Take(char16_t unit) {
        const bool found = position < text.size() && text[position] == unit;
        position += found ? 1 : 0;
        return found;
    }
    template <class Test>
    std::size_t Skip(Test test) {
        const std::size_t start = position;
        while (position < text.size() && test(text[position])) {
            ++position;
        }
        return position - start;
    }
    std::size_t Position() const { return position; }
    void MoveTo(std::size_t place) { position = place; }

  private:
    std::u16string_view text;
    std::size_t position;
};

bool SkipConversion(Cursor& at) {
    const std::size_t start = at.Position();
    if (at.Take(u'(')) {
        if (at.Skip([](char16_t unit) { return IsNameUnit(unit) || IsOneOf(unit, u".-"); }) == 0 ||
            !at.Take(u')')) {
            return false;
        }
    } else if (at.Skip(IsDigit) == 0 || !at.Take(u'$')) {
        at.MoveTo(start);
    }
    at.Skip([](char16_t unit) { return IsOneOf(unit, u"-+#0'"); });
    if (!at.Take(u'*')) {
        at.Skip(IsDigit);
    }
    if (at.Take(u'.') && !at.Take(u'*')) {
        at.Skip(IsDigit);
    }
    at.Skip([](char16_t unit) { return IsOneOf(unit, u"hlLqjzt"); });
    const bool known = IsOneOf(at.Now(), u"diouxXeEfFgGaAcCsSpnm@r");
    at.MoveTo(at.Position() + (known ? 1 : 0));
    return known;
}

bool SkipBraces(Cursor& at) {
    const auto inside = [](char16_t unit) { return unit != u'{' && unit != u'}' && unit != u'\n'; };
    if (at.Take(u'{')) {
        return at.Skip(inside) > 0 && at.Take(u'}') && at.Take(u'}');
    }
    at.Skip(IsNameUnit);
    if (IsOneOf(at.Now(), u".[!:,")) {
        at.Skip(inside);
    }
    return at.Take(u'}');
}

bool SkipTag(Cursor& at) {
    at.Take(u'/');
    if (!IsLetter(at.Now())) {
        return false;
    }
    at.Skip([](char16_t unit) { return IsNameUnit(unit) || IsOneOf(unit, u":-"); });
    if (IsOneOf(at.Now(), u" \t\n/")) {
        at.Skip([](char16_t unit) { return unit != u'<' && unit != u'>'; });
    }
    return at.Take(u'>');
}

}  // namespace

std::size_t ProgramPlaceholderLength(std::u16string_view text, std::size_t position) {
    Cursor at(text, position);
    bool found = false;
    if (at.Take(u'%')) {
        found = SkipConversion(at);
    } else if (at.Take(u'{')) {
        found = SkipBraces(at);
    } else if (at.Take(u'<')) {
        found = SkipTag(at);
    }
    return found ? at.Position() - position : 0;
}

}  // namespace generalutilities
