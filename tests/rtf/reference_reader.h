#pragma once

#include "extview/rtf/rtf_tables.h"
#include "platform/code_pages/code_pages.h"
#include "recording_reader.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace generalutilities::testing {

/// The rules of the reader in their plainest form: a whole file in a string, looked at byte by
/// byte, with every search made anew. It has no page borders and no bulk steps, and both must
/// agree. What the two tables say is read by the same functions.
class ReferenceReader {
  public:
    std::string file;
    std::set<std::string> controlWords;
    Events events;
    rtf::FontCodePages fontCodePages;
    rtf::StyleNames styleNames;
    std::size_t position = 0;

    bool Prepare() {
        std::string table;
        std::size_t end = 0;
        if (!Table("\\fonttbl", table, end)) {
            return false;
        }
        rtf::ReadFontTable(table, fontCodePages);
        if (!Table("\\stylesheet", table, end)) {
            return false;
        }
        rtf::ReadStyleSheet(table, styleNames);
        const std::size_t body = std::min(file.find("\\pard", end), file.find("\\intbl", end));
        for (position = 0; position < std::min(body, file.size());) {
            const char byte = file[position];
            if (byte == '{' || byte == '}') {
                Brace(byte);
            } else if (byte == '\\' && std::string("\\{}'~-_:").find(Next()) != std::string::npos) {
                position += 2;
            } else if (byte == '\\') {
                std::string word;
                Apply(word, ReadWord(word));
            } else {
                ++position;
            }
        }
        position = body == std::string::npos ? 0xFFFFFFFF : body;
        return true;
    }

    bool Parse() {
        while (position < file.size()) {
            const char byte = file[position];
            if (byte == '{' || byte == '}') {
                if (!inCodes && !EndText()) {
                    return true;
                }
                Brace(byte);
            } else if (byte == '\r' || byte == '\n') {
                ++position;
            } else if (byte != '\\' || Next() == '\\' || Next() == '{' || Next() == '}') {
                if (inCodes && !EndCodes()) {
                    return true;
                }
                position += byte == '\\' ? 1 : 0;
                Add(static_cast<char16_t>(static_cast<signed char>(file[position++])));
            } else if (Next() == '\'') {
                if (inCodes && !EndCodes()) {
                    return true;
                }
                HexRun();
            } else if (std::size_t length = 0; const char16_t* special = Special(length)) {
                if (inCodes && !EndCodes()) {
                    return true;
                }
                position += length;
                for (; *special != 0; ++special) {
                    Add(*special);
                }
            } else if (!CommonWord()) {
                return true;
            }
        }
        return false;
    }

  private:
    struct Group {
        std::int32_t font = 1, count = 1, style = 1;
    };

    char Next() const { return position + 1 < file.size() ? file[position + 1] : '\0'; }

    static std::size_t Matching(const std::string& text, std::size_t offset) {
        int depth = 1;
        for (; offset < text.size() && depth > 0; ++offset) {
            std::size_t backslashes = 0;
            while (backslashes < offset && text[offset - 1 - backslashes] == '\\') {
                ++backslashes;
            }
            if (backslashes % 2 == 0) {
                depth += text[offset] == '{' ? 1 : text[offset] == '}' ? -1 : 0;
            }
        }
        return depth == 0 ? offset : std::string::npos;
    }

    bool Table(const std::string& word, std::string& content, std::size_t& end) const {
        const std::size_t found = file.find(word);
        if (found == std::string::npos) {
            return false;
        }
        const std::size_t start = found + word.size();
        end = Matching(file, start);
        if (end == std::string::npos || end >= file.size()) {
            return false;
        }
        content = file.substr(start, end - 1 - start);
        return true;
    }

    static std::int32_t Number(const std::string& digits) {
        const long long value = std::strtoll(digits.c_str(), nullptr, 10);
        return static_cast<std::int32_t>(std::clamp<long long>(value, INT_MIN, INT_MAX));
    }
    static std::string Digits(const std::string& text, std::size_t offset) {
        std::size_t end = offset;
        while (end < text.size() && text[end] >= '0' && text[end] <= '9') {
            ++end;
        }
        return text.substr(offset, end - offset);
    }

    std::size_t NameEnd(std::size_t offset) const {
        return std::min(file.find_first_of(" \\\r\n{}0123456789-", offset), file.size());
    }

    std::string ReadWord(std::string& word) {
        const std::size_t start = position + 1;
        const std::size_t end = NameEnd(start);
        word = file.substr(start, end - start);
        position = end + (end < file.size() && file[end] == '-' ? 1 : 0);
        position += Digits(file, position).size();
        const std::string argument = file.substr(end, position - end);
        position += position < file.size() && file[position] == ' ' ? 1 : 0;
        return argument;
    }

    const char16_t* Special(std::size_t& length) const {
        static const std::map<std::string, const char16_t*> words = {
            {"par", u"\r\n"},   {"line", u"\n"},     {"tab", u"\t"},      {"lquote", u"‘"},
            {"rquote", u"’"},   {"ldblquote", u"“"}, {"rdblquote", u"”"}, {"bullet", u"•"},
            {"endash", u"–"},   {"emdash", u"—"},    {"zwbo", u"\u200B"}, {"zwnbo", u"\uFEFF"},
            {"zwj", u"\u200D"}, {"zwnj", u"\u200C"}};
        length = 2;
        switch (Next()) {
            case '~':
                return u"\u00A0";
            case '_':
                return u"-";
            case '-':
            case ':':
                return u"";
            default:
                break;
        }
        const std::size_t end = NameEnd(position + 1);
        const auto found = words.find(file.substr(position + 1, end - position - 1));
        length = end - position + (end < file.size() && file[end] == ' ' ? 1 : 0);
        return found == words.end() ? nullptr : found->second;
    }

    bool CommonWord() {
        std::string word;
        const std::string argument = ReadWord(word);
        if (word == "uc") {
            Apply(word, argument);
            return true;
        }
        if (word == "u") {
            if (inCodes && !EndCodes()) {
                return false;
            }
            Add(static_cast<char16_t>(Number(argument)));
            skip = static_cast<std::uint32_t>(groups.back().count);
            return true;
        }
        if (!inCodes && !EndText()) {
            return false;
        }
        if (word == "*") {
            position =
                std::min(Matching(file.substr(position), 0), file.size() - position) + position - 1;
        } else if (!Apply(word, argument) && controlWords.contains(word)) {
            sawWord = true;
            return events.OnControlWord(word, groups.back().style);
        }
        return true;
    }

    bool Apply(const std::string& word, const std::string& argument) {
        const std::int32_t number = Number(argument);
        if (word == "uc") {
            groups.back().count = number;
        } else if (word == "f" || word == "af") {
            groups.back().font = number;
        } else if (word == "s" || word == "cs" || word == "ds" || word == "ts") {
            groups.back().style = number;
        } else {
            return word == "v" || word == "plain";
        }
        return true;
    }

    void HexRun() {
        const std::string hex = "0123456789abcdef";
        std::string bytes;
        if (file.size() - position < 5) {
            position += 2;
        }
        while (position + 5 <= file.size() && file[position] == '\\' && Next() == '\'') {
            int value = 0;
            for (std::size_t i = 2; i < 4; ++i) {
                const char digit = file[position + i];
                const std::size_t found =
                    hex.find(digit >= 'A' && digit <= 'F' ? static_cast<char>(digit + 32) : digit);
                value = value * 16 + (found == std::string::npos ? 0 : static_cast<int>(found));
            }
            position += 4;
            if (skip > 0) {
                --skip;
            } else {
                bytes += static_cast<char>(value);
            }
        }
        if (!bytes.empty()) {
            const auto codePage = static_cast<std::uint32_t>(fontCodePages[groups.back().font]);
            code_pages::AppendDecoded(codePage, bytes, run);
        }
    }

    void Brace(char byte) {
        ++position;
        if (byte == '{') {
            groups.push_back(Group(groups.back()));
        } else {
            groups.pop_back();
            if (groups.empty()) {
                groups.emplace_back();
            }
        }
    }

    void Add(char16_t character) {
        if (skip > 0) {
            --skip;
        } else {
            run += character;
        }
    }

    bool EndText() {
        inCodes = true;
        sawWord = false;
        const auto at = static_cast<std::uint32_t>(position);
        const bool result = events.OnText(run, runStart, at, groups.back().style);
        runStart = at;
        return result;
    }
    bool EndCodes() {
        run.clear();
        inCodes = false;
        const auto at = static_cast<std::uint32_t>(position);
        const bool result = events.OnCodes(runStart, at, sawWord, groups.back().style);
        sawWord = false;
        runStart = at;
        return result;
    }
    std::vector<Group> groups{Group{}};
    std::u16string run;
    std::uint32_t runStart = 0;
    std::uint32_t skip = 0;
    bool inCodes = true;
    bool sawWord = false;
};

}  // namespace generalutilities::testing
