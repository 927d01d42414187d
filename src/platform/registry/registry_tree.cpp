#include "platform/registry/registry.h"

namespace generalutilities::registry {

namespace {

constexpr std::string_view Signature = "Windows Registry Editor Version 5.00";
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

std::string LowerCase(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = Lower(c);
    }
    return result;
}

std::string Slot(std::string_view path) {
    std::string slot = LowerCase(path);
    for (char& c : slot) {
        c = c == '\\' ? '\x01' : c;
    }
    return slot;
}

void AppendQuoted(std::string& out, std::string_view text) {
    out.push_back('"');
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out.push_back('\\');
        }
        out.push_back(c);
    }
    out.push_back('"');
}

/// Reads a quoted text at the start of `line` and takes it away; false if there is none.
bool TakeQuoted(std::string_view& line, std::string& text) {
    if (line.empty() || line.front() != '"') {
        return false;
    }
    text.clear();
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '"') {
            line.remove_prefix(i + 1);
            return true;
        }
        if (line[i] == '\\' && ++i == line.size()) {
            return false;
        }
        text.push_back(line[i]);
    }
    return false;
}

/// Each level has a name. There are few of them, as every one is kept with its whole path.
bool IsPath(std::string_view path) {
    constexpr std::ptrdiff_t MostSeparators = 31;
    return !path.starts_with('\\') && !path.ends_with('\\') &&
           path.find("\\\\") == std::string_view::npos &&
           std::count(path.begin(), path.end(), '\\') <= MostSeparators;
}

}  // namespace

const std::string* Tree::Find(std::string_view key, std::string_view valueName) const {
    const auto entry = keys.find(Slot(key));
    if (entry == keys.end()) {
        return nullptr;
    }
    const auto value = entry->second.values.find(LowerCase(valueName));
    return value != entry->second.values.end() && value->second.isText ? &value->second.data
                                                                       : nullptr;
}

bool Tree::HasKey(std::string_view key) const {
    return keys.contains(Slot(key));
}

bool Tree::HasKeysBelow(std::string_view key) const {
    const std::string below = Slot(key) + '\x01';
    const auto next = keys.lower_bound(below);
    return next != keys.end() && next->first.starts_with(below);
}

void Tree::AddKey(std::string_view key) {
    std::size_t end = 0;
    do {
        end = key.find('\\', end);
        const std::string_view path = key.substr(0, end);
        keys.try_emplace(Slot(path), Key{std::string(path), {}});
    } while (end++ != std::string_view::npos);
}

void Tree::Set(std::string_view key, std::string_view valueName, std::string_view text) {
    AddKey(key);
    keys.find(Slot(key))->second.values.insert_or_assign(
        LowerCase(valueName), Value{std::string(valueName), std::string(text), true});
}

void Tree::RemoveKey(std::string_view key) {
    const std::string slot = Slot(key);
    keys.erase(keys.lower_bound(slot), keys.lower_bound(slot + '\x02'));
}

std::string Tree::Serialize() const {
    std::string out(Signature);
    out.push_back('\n');
    for (const auto& [slot, key] : keys) {
        out += "\n[" + key.path + "]\n";
        for (const auto& [name, value] : key.values) {
            if (value.name.empty()) {
                out.push_back('@');
            } else {
                AppendQuoted(out, value.name);
            }
            out.push_back('=');
            if (value.isText) {
                AppendQuoted(out, value.data);
            } else {
                out += value.data;
            }
            out.push_back('\n');
        }
    }
    return out;
}

bool Tree::ParseValue(std::string_view line, Key& key) {
    Value value;
    if (line.front() == '@') {
        line.remove_prefix(1);
    } else if (!TakeQuoted(line, value.name)) {
        return false;
    }
    if (line.empty() || line.front() != '=') {
        return false;
    }
    line.remove_prefix(1);
    std::string_view rest = line;
    if (TakeQuoted(rest, value.data)) {
        if (!rest.empty()) {
            return false;
        }
    } else if ((line.starts_with("dword:") || line.starts_with("hex")) &&
               line.find_first_of("\\\r") == std::string_view::npos) {  // kept as it stands
        value.data = line;
        value.isText = false;
    } else {
        return false;
    }
    const std::string slot = LowerCase(value.name);
    key.values.insert_or_assign(slot, std::move(value));
    return true;
}

std::size_t Tree::Parse(std::string_view text) {
    keys.clear();
    if (text.starts_with(ByteOrderMark)) {
        text.remove_prefix(ByteOrderMark.size());
    }
    Key* current = nullptr;
    std::size_t number = 0;
    std::string joined;  // a value that goes on behind a backslash at its line's end
    const auto fail = [&] {
        keys.clear();
        return number;
    };
    while (!text.empty()) {
        ++number;
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (number == 1) {
            if (line != Signature) {
                return fail();
            }
            continue;
        }
        while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) {
            line.remove_prefix(1);
        }
        if (joined.empty() && (line.empty() || line.front() == ';')) {
            continue;
        }
        if (joined.empty() && line.front() == '[') {
            if (line.size() < 3 || line.back() != ']') {
                return fail();
            }
            const std::string_view path = line.substr(1, line.size() - 2);
            if (!IsPath(path)) {
                return fail();
            }
            AddKey(path);
            current = &keys.find(Slot(path))->second;
            continue;
        }
        if (line.ends_with('\\')) {
            joined += line.substr(0, line.size() - 1);
            continue;
        }
        joined += line;
        if (current == nullptr || joined.empty() || !ParseValue(joined, *current)) {
            return fail();
        }
        joined.clear();
    }
    if (number == 0 || !joined.empty()) {
        number = number == 0 ? 1 : number;
        return fail();
    }
    return 0;
}

}  // namespace generalutilities::registry
