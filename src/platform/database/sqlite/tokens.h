#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The words of a query in the Jet dialect. Knowing literals and bracketed names as wholes is what
/// keeps a backslash or "Mod" inside a text from being taken for an operator.
namespace generalutilities::sqlite {

enum class TokenKind : std::uint8_t {
    Name,        ///< a word as it stands: a name, a keyword, True, False or Mod
    Bracketed,   ///< [a name of any characters]
    Text,        ///< 'text' or "text", the delimiter doubled inside
    Number,      ///< without a sign
    Operator,    ///< one of + - * / \ &
    Comparison,  ///< = <> < > <= >=
    Open,
    Close,
    Comma,
    Dot,
    Semicolon,
};

struct Token {
    TokenKind kind;
    char16_t symbol;      ///< first code unit, or 'M' for a Mod that was found to be an operator
    std::uint32_t begin;  ///< of the whole token in the query, delimiters included
    std::uint32_t end;
};

/// Cuts `query` into `tokens`. On a character or literal that the dialect does not have, false,
/// with the reason and its place in `problem`.
bool Tokenise(std::u16string_view query, std::vector<Token>& tokens, std::string& problem);

/// The value of a text literal, with its doubled delimiters made single.
std::u16string TextValue(std::u16string_view literal);

/// " (character 12)" for messages; positions count from 1.
std::string PlaceInQuery(std::size_t offset);

/// Whether `word` is `upper`, an ASCII word in upper case, in any case.
bool IsWord(std::u16string_view word, std::string_view upper);

}  // namespace generalutilities::sqlite
