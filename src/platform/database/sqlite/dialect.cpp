// One pass over the tokens writes the query; the grouping of operators was found before it.

#include "platform/database/sqlite/dialect.h"

#include "platform/database/sqlite/grouping.h"
#include "platform/database/sqlite/tokens.h"
#include "platform/files/utf8.h"

#include <charconv>
#include <optional>
#include <system_error>

namespace generalutilities::sqlite {

namespace {

class Translator {
  public:
    Translator(std::u16string_view text, Translation& result, std::string& reason)
        : query(text), translation(result), problem(reason) {}

    bool Run() {
        if (!Tokenise(query, tokens, problem) || !FindKind()) {
            return false;
        }
        GroupOperators(query, tokens, insertions);
        translation.text.reserve(query.size() + 16);
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            if (tokens[i].kind == TokenKind::Semicolon) {
                if (i + 1 == tokens.size()) {
                    break;
                }
                problem = "more than one statement" + PlaceInQuery(tokens[i].begin);
                return false;
            }
            if (!translation.text.empty()) {
                translation.text += ' ';
            }
            insertions.WriteBefore(i, [this](const char* text) { translation.text += text; });
            if (!Write(i)) {
                return false;
            }
            insertions.WriteAfter(i, [this](const char* text) { translation.text += text; });
            if (i == SetValue) {
                FindSetColumn();
            }
        }
        if (!isOneTable) {
            translation.table.clear();
        }
        return true;
    }

  private:
    std::u16string_view WordAt(std::size_t i) const {
        return query.substr(tokens[i].begin, tokens[i].end - tokens[i].begin);
    }

    bool IsWordAt(std::size_t i, std::string_view upper) const {
        return i < tokens.size() && tokens[i].kind == TokenKind::Name && IsWord(WordAt(i), upper);
    }

    bool IsNameAt(std::size_t i) const {
        return i < tokens.size() &&
               (tokens[i].kind == TokenKind::Name || tokens[i].kind == TokenKind::Bracketed);
    }

    bool IsKindAt(std::size_t i, TokenKind kind) const {
        return i < tokens.size() && tokens[i].kind == kind;
    }

    bool FindKind() {
        struct Verb {
            std::string_view word;
            Translation::Kind kind;
        };
        static constexpr Verb Verbs[] = {
            {"SELECT", Translation::Kind::Select},     {"UPDATE", Translation::Kind::Change},
            {"INSERT", Translation::Kind::Change},     {"DELETE", Translation::Kind::Change},
            {"CREATE", Translation::Kind::Definition}, {"DROP", Translation::Kind::Definition},
            {"ALTER", Translation::Kind::Definition}};
        for (const Verb& verb : Verbs) {
            if (IsWordAt(0, verb.word)) {
                translation.kind = verb.kind;
                return true;
            }
        }
        problem = "a query begins with SELECT, UPDATE, INSERT, DELETE, CREATE, DROP or ALTER";
        return false;
    }

    bool Write(std::size_t i) {
        const Token& token = tokens[i];
        switch (token.kind) {
            case TokenKind::Name:
                return WriteWord(i);
            case TokenKind::Bracketed:
                return WriteBracketed(i);
            case TokenKind::Text:
                return WriteText(i);
            case TokenKind::Number:
                return WriteNumber(i);
            case TokenKind::Operator:
                translation.text += token.symbol == u'\\'  ? "/"
                                    : token.symbol == u'/' ? "* 1.0 /"
                                    : token.symbol == u'&' ? "||"
                                    : token.symbol == u'M' ? "%"
                                                           : AsciiOf(i);
                return true;
            case TokenKind::Open:
                ++depth;
                break;
            case TokenKind::Close:
                if (--depth < orderDepth) {
                    orderDepth = NoDepth;
                }
                break;
            default:
                break;
        }
        translation.text += AsciiOf(i);
        return true;
    }

    std::string AsciiOf(std::size_t i) const {
        const std::u16string_view word = WordAt(i);
        return std::string(word.begin(), word.end());
    }

    bool WriteWord(std::size_t i) {
        const bool dotted =
            (i > 0 && tokens[i - 1].kind == TokenKind::Dot) || IsKindAt(i + 1, TokenKind::Dot);
        if (!dotted) {
            if (IsWordAt(i, "TRUE") || IsWordAt(i, "FALSE")) {
                translation.text += IsWordAt(i, "TRUE") ? "-1" : "0";
                return true;
            }
            if (IsWordAt(i, "LIKE")) {
                problem = "Like is not supported" + PlaceInQuery(tokens[i].begin);
                return false;
            }
            if (translation.kind == Translation::Kind::Definition && i > 0 && IsNameAt(i - 1) &&
                IsWordAt(i, "MEMO")) {
                // SQLite would take this type name for a numeric one and turn "007" into 7.
                translation.text += "LONGTEXT";
                return true;
            }
            LookAtClause(i);
        }
        return AppendName(WordAt(i), i);
    }

    /// Keeps account of where in a SELECT the writer is.
    void LookAtClause(std::size_t i) {
        if (IsWordAt(i, "ORDER") || IsWordAt(i, "GROUP")) {
            orderDepth = depth;
        }
        if (translation.kind != Translation::Kind::Select || depth != 0) {
            return;
        }
        if (IsWordAt(i, "FROM")) {
            FindTable(i);
        } else if (IsWordAt(i, "WHERE")) {
            translation.whereOffset = translation.text.size();
        } else if (IsWordAt(i, "ORDER")) {
            translation.orderOffset = translation.text.size();
        } else if (IsWordAt(i, "DISTINCT") || IsWordAt(i, "GROUP") || IsWordAt(i, "HAVING") ||
                   IsWordAt(i, "UNION") || IsWordAt(i, "INTERSECT") || IsWordAt(i, "EXCEPT") ||
                   IsWordAt(i, "LIMIT")) {
            isOneTable = false;
        }
    }

    void FindTable(std::size_t from) {
        if (!translation.table.empty() || !IsNameAt(from + 1)) {
            isOneTable = false;
            return;
        }
        std::size_t next = from + 2;
        if (IsWordAt(next, "AS")) {
            ++next;
        }
        const auto ends = [this](std::size_t i) {
            return i >= tokens.size() || tokens[i].kind == TokenKind::Semicolon ||
                   IsWordAt(i, "WHERE") || IsWordAt(i, "ORDER");
        };
        if (!ends(next) && IsNameAt(next)) {
            ++next;
        }
        const std::optional<std::string> name = files::ToUtf8(NameAt(from + 1));
        if (!ends(next) || !name) {
            isOneTable = false;
            return;
        }
        translation.table = *name;
        translation.fromOffset = translation.text.size();
    }

    /// Sees whether the tokens up to the value are `UPDATE table SET column = number`, and nothing
    /// but a WHERE follows.
    void FindSetColumn() {
        const bool isUpdate = IsWordAt(0, "UPDATE") && IsNameAt(1) && IsWordAt(2, "SET") &&
                              IsNameAt(3) && AsciiOf(4) == "=" &&
                              IsKindAt(SetValue, TokenKind::Number);
        const std::size_t next = SetValue + 1;
        if (!isUpdate || !(next == tokens.size() || IsWordAt(next, "WHERE"))) {
            return;
        }
        const std::optional<std::string> table = files::ToUtf8(NameAt(1));
        const std::optional<std::string> column = files::ToUtf8(NameAt(3));
        if (table && column) {
            translation.table = *table;
            translation.setColumn = *column;
            translation.setEnd = translation.text.size();
        }
    }

    std::u16string_view NameAt(std::size_t i) const {
        const std::u16string_view word = WordAt(i);
        return tokens[i].kind == TokenKind::Bracketed ? word.substr(1, word.size() - 2) : word;
    }

    bool AppendName(std::u16string_view name, std::size_t i) {
        const std::optional<std::string> bytes = files::ToUtf8(name);
        if (!bytes || bytes->find('\0') != std::string::npos) {
            problem = "a name that is no well-formed text" + PlaceInQuery(tokens[i].begin);
            return false;
        }
        translation.text += tokens[i].kind == TokenKind::Bracketed ? QuoteName(*bytes) : *bytes;
        return true;
    }

    bool WriteBracketed(std::size_t i) { return AppendName(NameAt(i), i); }

    void AppendParameter(Literal value) {
        translation.literals.push_back(std::move(value));
        translation.text += '?';
        translation.text += std::to_string(translation.literals.size());
    }

    bool WriteText(std::size_t i) {
        std::u16string value = TextValue(WordAt(i));
        if (translation.kind != Translation::Kind::Definition) {
            AppendParameter(std::move(value));
            return true;
        }
        const std::optional<std::string> bytes = files::ToUtf8(value);
        if (!bytes || bytes->find('\0') != std::string::npos) {
            problem =
                "a text in a definition that is not well-formed" + PlaceInQuery(tokens[i].begin);
            return false;
        }
        translation.text += '\'';
        for (const char byte : *bytes) {
            translation.text.append(byte == '\'' ? 2 : 1, byte);
        }
        translation.text += '\'';
        return true;
    }

    bool WriteNumber(std::size_t i) {
        const std::string digits = AsciiOf(i);
        if (translation.kind == Translation::Kind::Definition || orderDepth != NoDepth) {
            translation.ordersByPosition = orderDepth != NoDepth;
            translation.text += digits;
            return true;
        }
        const char* end = digits.data() + digits.size();
        std::int64_t integer = 0;
        const auto whole = std::from_chars(digits.data(), end, integer);
        if (whole.ec == std::errc() && whole.ptr == end) {
            AppendParameter(integer);
            return true;
        }
        double real = 0;
        if (std::from_chars(digits.data(), end, real).ec != std::errc()) {
            problem = "a number that is too large" + PlaceInQuery(tokens[i].begin);
            return false;
        }
        AppendParameter(real);
        return true;
    }

    static constexpr std::int64_t NoDepth = INT64_MIN;
    static constexpr std::size_t SetValue = 5;  ///< where the value of `FindSetColumn` stands

    std::u16string_view query;
    Translation& translation;
    std::string& problem;
    std::vector<Token> tokens;
    Insertions insertions;
    std::int64_t depth = 0;
    std::int64_t orderDepth = NoDepth;  ///< the depth of the ORDER BY or GROUP BY being written
    bool isOneTable = true;
};

}  // namespace

bool Translate(std::u16string_view query, Translation& translation, std::string& problem) {
    translation = {};
    return Translator(query, translation, problem).Run();
}

bool TranslateDefault(std::u16string_view expression, std::string& text, std::string& problem) {
    text.clear();
    std::vector<Token> tokens;
    if (!Tokenise(expression, tokens, problem)) {
        return false;
    }
    if (tokens.empty()) {
        return true;
    }
    // The definition's own rules for literals, on a definition of nothing but the default.
    static constexpr std::string_view Frame = "CREATE";
    Translation translation;
    if (!Translate(std::u16string(Frame.begin(), Frame.end()) + u" " + std::u16string(expression),
                   translation, problem)) {
        return false;
    }
    const bool isSigned =
        tokens.size() == 2 && tokens[0].symbol == u'-' && tokens[1].kind == TokenKind::Number;
    const std::u16string_view word =
        expression.substr(tokens[0].begin, tokens[0].end - tokens[0].begin);
    const bool isWord = IsWord(word, "TRUE") || IsWord(word, "FALSE") || IsWord(word, "NULL");
    const bool isLiteral = tokens.size() == 1 && (tokens[0].kind == TokenKind::Text ||
                                                  tokens[0].kind == TokenKind::Number || isWord);
    if (!isLiteral && !isSigned) {
        problem = "a default is a text, a number, True, False or Null";
        return false;
    }
    text = translation.text.substr(Frame.size() + 1);
    return true;
}

std::string QuoteName(std::string_view name) {
    std::string quoted = "\"";
    for (const char byte : name) {
        quoted.append(byte == '"' ? 2 : 1, byte);
    }
    quoted += '"';
    return quoted;
}

}  // namespace generalutilities::sqlite
