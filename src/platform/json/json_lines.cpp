#include "platform/json/json_lines.h"

#include "platform/files/utf8.h"

#include <nlohmann/json.hpp>

namespace generalutilities::json {

std::optional<std::vector<Member>> ReadLine(std::string_view line) {
    const auto object = nlohmann::json::parse(line, nullptr, false);
    if (!object.is_object()) {
        return std::nullopt;
    }
    std::vector<Member> members;
    for (const auto& [name, value] : object.items()) {
        if (value.is_string()) {
            members.push_back({name, files::FromUtf8(value.get_ref<const std::string&>()), false});
        } else if (value.is_number()) {
            members.push_back({name, files::FromUtf8(value.dump()), true});
        }
    }
    return members;
}

std::string WriteLine(const std::vector<Member>& members) {
    std::string line = "{";
    for (const Member& member : members) {
        const std::string value = files::ToUtf8Lossy(member.value);
        line += (line.size() == 1 ? "" : ", ") + nlohmann::json(member.name).dump() + ": " +
                (member.isNumber ? value : nlohmann::json(value).dump());
    }
    return line + "}";
}

}  // namespace generalutilities::json
