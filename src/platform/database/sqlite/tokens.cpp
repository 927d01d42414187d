#include "platform/database/sqlite/tokens.h"

#include <cstddef>

namespace generalutilities::sqlite {

namespace {

bool IsDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

bool IsNameStart(char16_t unit) {
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') || unit == u'_' ||
           unit >= 0xA1;
}

class Tokeniser {
  public:
    Tokeniser(std::u16string_view text, std::vector<Token>& result, std::string& reason)
        : query(text), tokens(result), problem(reason) {}

    bool Run() {
        while (position < query.size()) {
            const char16_t unit = query[position];
            if (unit == u' ' || (unit >= u'\t' && unit <= u'\r')) {
                ++position;
            } else if (!Next(unit)) {
                return false;
            }
        }
        return true;
    }

  private:
    char16_t At(std::size_t index) const { return index < query.size() ? query[index] : u'\0'; }

    void Add(TokenKind kind, std::size_t end) {
        tokens.push_back({kind, query[position], static_cast<std::uint32_t>(position),
                          static_cast<std::uint32_t>(end)});
        position = end;
    }

    bool Next(char16_t unit) {
        if (IsNameStart(unit)) {
            std::size_t end = position + 1;
            while (end < query.size() && (IsNameStart(query[end]) || IsDigit(query[end]))) {
                ++end;
            }
            Add(TokenKind::Name, end);
            return true;
        }
        switch (unit) {
            case u'\'':
            case u'"':
                return AddText(unit);
            case u'[':
                return AddBracketed();
            case u'.':
                if (!IsDigit(At(position + 1)) || BehindName()) {
                    Add(TokenKind::Dot, position + 1);
                    return true;
                }
                break;
            case u'(':
                Add(TokenKind::Open, position + 1);
                return true;
            case u')':
                Add(TokenKind::Close, position + 1);
                return true;
            case u',':
                Add(TokenKind::Comma, position + 1);
                return true;
            case u';':
                Add(TokenKind::Semicolon, position + 1);
                return true;
            case u'=':
            case u'<':
            case u'>':
                AddComparison(unit);
                return true;
            case u'+':
            case u'-':
            case u'*':
            case u'/':
            case u'\\':
            case u'&':
                Add(TokenKind::Operator, position + 1);
                return true;
            default:
                break;
        }
        if (IsDigit(unit) || unit == u'.') {
            AddNumber();
            return true;
        }
        problem = unit == u'#' ? "dates between # signs are not supported"
                               : "a character that has no meaning in a query";
        problem += PlaceInQuery(position);
        return false;
    }

    bool BehindName() const {
        return !tokens.empty() && tokens.back().end == position &&
               (tokens.back().kind == TokenKind::Name ||
                tokens.back().kind == TokenKind::Bracketed);
    }

    bool AddText(char16_t delimiter) {
        std::size_t end = position;
        do {
            end = query.find(delimiter, end + 1);
            if (end == std::u16string_view::npos) {
                problem = "a text without its closing quote" + PlaceInQuery(position);
                return false;
            }
            ++end;
        } while (At(end) == delimiter);
        Add(TokenKind::Text, end);
        return true;
    }

    bool AddBracketed() {
        const std::size_t end = query.find(u']', position);
        if (end == std::u16string_view::npos || end == position + 1) {
            problem = "a name in brackets that is empty or not closed" + PlaceInQuery(position);
            return false;
        }
        Add(TokenKind::Bracketed, end + 1);
        return true;
    }

    void AddComparison(char16_t unit) {
        const char16_t second = At(position + 1);
        const bool two = (unit == u'<' && (second == u'=' || second == u'>')) ||
                         (unit == u'>' && second == u'=');
        Add(TokenKind::Comparison, position + (two ? 2 : 1));
    }

    void AddNumber() {
        std::size_t end = position;
        const auto skipDigits = [&] {
            while (IsDigit(At(end))) {
                ++end;
            }
        };
        skipDigits();
        if (At(end) == u'.') {
            ++end;
            skipDigits();
        }
        if (At(end) == u'e' || At(end) == u'E') {
            const bool sign = At(end + 1) == u'+' || At(end + 1) == u'-';
            if (IsDigit(At(end + (sign ? 2 : 1)))) {
                end += sign ? 2 : 1;
                skipDigits();
            }
        }
        Add(TokenKind::Number, end);
    }

    std::u16string_view query;
    std::vector<Token>& tokens;
    std::string& problem;
    std::size_t position = 0;
};

}  // namespace

bool Tokenise(std::u16string_view query, std::vector<Token>& tokens, std::string& problem) {
    tokens.clear();
    if (query.size() > 0x7FFFFFFF) {
        problem = "a query of more than 2,147,483,647 characters";
        return false;
    }
    return Tokeniser(query, tokens, problem).Run();
}

std::u16string TextValue(std::u16string_view literal) {
    const char16_t delimiter = literal.front();
    std::u16string_view rest = literal.substr(1, literal.size() - 2);
    std::u16string value;
    value.reserve(rest.size());
    for (std::size_t quote; (quote = rest.find(delimiter)) != std::u16string_view::npos;) {
        value += rest.substr(0, quote + 1);
        rest.remove_prefix(quote + 2);
    }
    value += rest;
    return value;
}

std::string PlaceInQuery(std::size_t offset) {
    return " (character " + std::to_string(offset + 1) + ")";
}

bool IsWord(std::u16string_view word, std::string_view upper) {
    if (word.size() != upper.size()) {
        return false;
    }
    for (std::size_t i = 0; i < word.size(); ++i) {
        const char16_t unit = word[i];
        const bool lower = unit >= u'a' && unit <= u'z';
        if ((lower ? unit - 0x20 : unit) != static_cast<unsigned char>(upper[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace generalutilities::sqlite
