#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Lines of which each is one flat JSON object.
namespace generalutilities::json {

/// A member whose value is a text, or a number as it is written.
struct Member {
    std::string name;
    std::u16string value;
    bool isNumber = false;
};

/// The members of a line's object that hold a text or a number, by name; of equal names the last
/// stays. Nothing for a line that is not exactly one object in UTF-8.
std::optional<std::vector<Member>> ReadLine(std::string_view line);

/// The object of these members, without a line end. Texts hold whole surrogate pairs alone.
std::string WriteLine(const std::vector<Member>& members);

}  // namespace generalutilities::json
