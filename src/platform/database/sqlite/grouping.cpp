// Operator precedence parsing over token positions: two stacks a parenthesis level, no tree.
// Whatever is no arithmetic (keywords, comparisons, commas) ends an expression, so the grammar of
// the rest of the query need not be known here.

#include "platform/database/sqlite/grouping.h"

#include <algorithm>
#include <array>
#include <limits>

namespace generalutilities::sqlite {

void Insertions::Reset(std::size_t tokenCount) {
    entries.clear();
    first.assign(2 * tokenCount, None);
    last.assign(tokenCount, None);
}

void Insertions::Before(std::size_t token, const char* text) {
    entries.push_back({text, first[2 * token]});
    first[2 * token] = entries.size() - 1;
}

void Insertions::After(std::size_t token, const char* text) {
    entries.push_back({text, None});
    std::size_t& slot = last[token] == None ? first[2 * token + 1] : entries[last[token]].next;
    slot = entries.size() - 1;
    last[token] = entries.size() - 1;
}

namespace {

/// Words behind which an expression may begin, so that a following sign or * is no binary operator.
bool BeginsExpression(std::u16string_view word) {
    static constexpr std::array<std::string_view, 25> Words = {
        "SELECT", "DISTINCT", "ALL",  "FROM",    "WHERE",  "AND",  "OR",  "NOT",     "AS",
        "BY",     "HAVING",   "ON",   "SET",     "VALUES", "IN",   "IS",  "BETWEEN", "UNION",
        "JOIN",   "UPDATE",   "INTO", "DEFAULT", "THEN",   "ELSE", "WHEN"};
    return word.size() <= 8 &&
           std::any_of(Words.begin(), Words.end(),
                       [word](std::string_view upper) { return IsWord(word, upper); });
}

int Level(char16_t symbol) {
    switch (symbol) {
        case u'&':
            return 1;
        case u'+':
        case u'-':
            return 2;
        case u'M':
            return 3;
        case u'\\':
            return 4;
        default:
            return 5;
    }
}

class Grouper {
  public:
    Grouper(std::u16string_view text, std::vector<Token>& words, Insertions& result)
        : query(text), tokens(words), insertions(result) {}

    void Run() {
        frames.push_back({0, 0, 0});
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            Take(i);
        }
        EndExpression();
    }

  private:
    enum class Form { Primary, Integer, Text, Compound };
    struct Operand {
        std::size_t first;
        std::size_t last;
        Form form;
    };
    struct Frame {
        std::size_t start;  ///< the token that a group or call begins with
        std::size_t operandBase;
        std::size_t operatorBase;
    };
    static constexpr std::size_t None = SIZE_MAX;

    std::u16string_view WordAt(std::size_t i) const {
        return query.substr(tokens[i].begin, tokens[i].end - tokens[i].begin);
    }

    bool HasOperand() const { return operands.size() > frames.back().operandBase; }

    void Take(std::size_t i) {
        Token& token = tokens[i];
        switch (token.kind) {
            case TokenKind::Name:
                if (!afterDot && !expectsOperand && IsWord(WordAt(i), "MOD")) {
                    token.kind = TokenKind::Operator;
                    token.symbol = u'M';
                    TakeOperator(i);
                } else if (!afterDot && BeginsExpression(WordAt(i))) {
                    EndExpression();
                } else {
                    AddOperand(i, Form::Primary);
                }
                break;
            case TokenKind::Bracketed:
                AddOperand(i, Form::Primary);
                break;
            case TokenKind::Text:
                AddOperand(i, Form::Text);
                break;
            case TokenKind::Number:
                AddOperand(i, WordAt(i).find_first_of(u".eE") == std::u16string_view::npos
                                  ? Form::Integer
                                  : Form::Primary);
                break;
            case TokenKind::Operator:
                TakeOperator(i);
                break;
            case TokenKind::Open:
                TakeOpen(i);
                break;
            case TokenKind::Close:
                TakeClose(i);
                break;
            case TokenKind::Dot:
                afterDot = !expectsOperand;
                break;
            case TokenKind::Comparison:
            case TokenKind::Comma:
            case TokenKind::Semicolon:
                EndExpression();
                break;
        }
    }

    void AddOperand(std::size_t i, Form form) {
        if (afterDot && HasOperand()) {
            operands.back().last = i;
            afterDot = false;
            return;
        }
        if (!expectsOperand) {
            EndExpression();
        }
        const bool isSigned = sign != None;
        // A signed text is a number to both engines.
        operands.push_back(
            {isSigned ? sign : i, i, isSigned && form == Form::Text ? Form::Primary : form});
        sign = None;
        expectsOperand = false;
    }

    void TakeOperator(std::size_t i) {
        const char16_t symbol = tokens[i].symbol;
        if (symbol == u'*' && (expectsOperand || afterDot)) {
            AddOperand(i, Form::Primary);
        } else if (expectsOperand) {
            if (sign == None && (symbol == u'+' || symbol == u'-')) {
                sign = i;
            }
        } else {
            Reduce(Level(symbol));
            operators.push_back(symbol);
            expectsOperand = true;
        }
    }

    void TakeOpen(std::size_t i) {
        std::size_t start = sign != None ? sign : i;
        const bool isCall =
            !expectsOperand && HasOperand() && operands.back().last + 1 == i &&
            (tokens[i - 1].kind == TokenKind::Name || tokens[i - 1].kind == TokenKind::Bracketed);
        if (isCall) {
            start = operands.back().first;
            operands.pop_back();
        } else if (!expectsOperand) {
            EndExpression();
        }
        frames.push_back({start, operands.size(), operators.size()});
        BeginExpression();
    }

    void TakeClose(std::size_t i) {
        EndExpression();
        if (frames.size() == 1) {
            return;
        }
        operands.push_back({frames.back().start, i, Form::Primary});
        frames.pop_back();
        expectsOperand = false;
    }

    void BeginExpression() {
        expectsOperand = true;
        afterDot = false;
        sign = None;
    }

    void EndExpression() {
        Reduce(0);
        operands.resize(frames.back().operandBase);
        BeginExpression();
    }

    void Reduce(int level) {
        const Frame& frame = frames.back();
        while (operators.size() > frame.operatorBase && Level(operators.back()) >= level) {
            const char16_t symbol = operators.back();
            operators.pop_back();
            if (operands.size() < frame.operandBase + 2) {
                continue;  // wrong syntax
            }
            const Operand right = operands.back();
            operands.pop_back();
            operands.back() = Combine(symbol, operands.back(), right);
        }
    }

    Operand Combine(char16_t symbol, const Operand& left, const Operand& right) {
        Form form = Form::Compound;
        if (symbol == u'\\') {
            form = Form::Integer;
            WrapUnless(Form::Integer, left, "CAST(", " AS INTEGER)");
            WrapUnless(Form::Integer, right, "CAST(", " AS INTEGER)");
        } else if (symbol == u'&') {
            form = Form::Text;
            WrapUnless(Form::Text, left, "IFNULL(", ",'')");
            WrapUnless(Form::Text, right, "IFNULL(", ",'')");
        } else if (symbol == u'M') {
            form = Form::Primary;
            if (right.form == Form::Compound) {
                Wrap(right, "(", ")");
            }
        }
        const Operand whole = {left.first, right.last, form};
        if (form != Form::Compound) {
            Wrap(whole, "(", ")");
        }
        return whole;
    }

    void WrapUnless(Form form, const Operand& operand, const char* open, const char* close) {
        if (operand.form != form) {
            Wrap(operand, open, close);
        }
    }

    void Wrap(const Operand& operand, const char* open, const char* close) {
        insertions.Before(operand.first, open);
        insertions.After(operand.last, close);
    }

    std::u16string_view query;
    std::vector<Token>& tokens;
    Insertions& insertions;
    std::vector<Frame> frames;
    std::vector<Operand> operands;
    std::vector<char16_t> operators;
    bool expectsOperand = true;
    bool afterDot = false;
    std::size_t sign = None;  ///< the first sign before the operand to come
};

}  // namespace

void GroupOperators(std::u16string_view query, std::vector<Token>& tokens, Insertions& insertions) {
    insertions.Reset(tokens.size());
    const bool plain = std::none_of(tokens.begin(), tokens.end(), [&](const Token& token) {
        return token.kind == TokenKind::Operator
                   ? token.symbol == u'\\' || token.symbol == u'&'
                   : token.kind == TokenKind::Name &&
                         IsWord(query.substr(token.begin, token.end - token.begin), "MOD");
    });
    if (!plain) {
        Grouper(query, tokens, insertions).Run();
    }
}

}  // namespace generalutilities::sqlite
