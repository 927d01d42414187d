#pragma once

#include <generalutilities/itd/text_part.h>

#include <string>
#include <string_view>

/// The forms in which records travel as text: what `ITDReader` gives, and `ITDWriter` takes back.
namespace generalutilities {

/// "<" becomes "&lt;", ">" "&gt;" and "&" "&amp;".
std::u16string EscapeMarkup(std::u16string_view text);
/// The way back, by one level. A "&" before anything else stands for itself.
std::u16string UnescapeMarkup(std::u16string_view text);

/// Puts a backslash before each backslash and brace, so that "{1}" can stand for a code.
std::u16string EscapeBraces(std::u16string_view text);

/// A block, such as "<itbh><pid>1</pid><f2>32</f2><f3>0</f3><sid>7</sid></itbh>".
void AppendBlockTag(std::u16string& text, const ItdBlock& block);
/// The text of a record that is a code: "<ut>", escaped, "</ut>".
void AppendCodeText(std::u16string& text, std::u16string_view code);

/// Bytes as upper-case hexadecimal digits inside an element: "<binheader>FF00</binheader>".
std::u16string BinaryElement(std::u16string_view name, std::string_view bytes);

}  // namespace generalutilities
