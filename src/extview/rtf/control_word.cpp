#include "extview/rtf/control_word.h"

#include "extview/rtf/byte_scan.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>

namespace generalutilities::rtf {

namespace {

constexpr bool IsDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

constexpr bool EndsName(char byte) {
    return IsStructure(byte) || byte == ' ' || byte == '-' || IsDigit(byte);
}

/// How many bytes belong to the name; all of `bytes` if the name may go on behind them.
std::size_t NameLength(std::string_view bytes) {
    std::size_t i = 0;
    while (i < bytes.size() && !EndsName(bytes[i])) {
        ++i;
    }
    return i;
}

/// The value of a decimal number, digit by digit.
class ArgumentValue {
  public:
    void Negate() { negative = true; }
    void AddDigit(char digit) { magnitude = std::min(magnitude * 10 + (digit - '0'), Limit); }
    std::int32_t Value() const {
        const std::int64_t value = negative ? -magnitude : magnitude;
        return static_cast<std::int32_t>(
            std::min<std::int64_t>(value, std::numeric_limits<std::int32_t>::max()));
    }

  private:
    static constexpr std::int64_t Limit = std::int64_t{1} << 31;

    std::int64_t magnitude = 0;
    bool negative = false;
};

/// Reads a word of any form, wherever page borders lie.
ControlWord ReadAnyWord(RtfFilePager& pager, std::uint32_t offset, std::string& spill) {
    ControlWord word;
    spill.clear();
    word.end = offset;
    for (;;) {
        const std::string_view bytes = pager.BytesFrom(word.end);
        const std::size_t length = NameLength(bytes);
        spill.append(bytes.substr(0, length));
        word.end += static_cast<std::uint32_t>(length);
        if (length < bytes.size() || bytes.empty()) {
            break;
        }
    }
    word.name = spill;
    word.nameEnd = word.end;
    ArgumentValue value;
    if (pager.ByteAt(word.end) == '-') {
        value.Negate();
        ++word.end;
    }
    for (; IsDigit(pager.ByteAt(word.end)); ++word.end) {
        value.AddDigit(pager.ByteAt(word.end));
    }
    word.argument = value.Value();
    word.hasArgument = word.end != word.nameEnd;
    if (pager.ByteAt(word.end) == ' ') {
        ++word.end;
    }
    return word;
}

}  // namespace

std::int32_t ArgumentOf(std::string_view word, const WordShape& shape) {
    ArgumentValue value;
    for (std::size_t i = shape.nameLength; i < shape.argumentEnd; ++i) {
        value.AddDigit(word[i]);
    }
    return value.Value();
}

ControlWord ReadControlWord(RtfFilePager& pager, std::uint32_t offset, std::string& spill) {
    const std::string_view bytes = pager.BytesFrom(offset);
    WordShape shape;
    if (MeasureWord(bytes, shape)) {
        ControlWord word;
        word.name = bytes.substr(0, shape.nameLength);
        word.argument = ArgumentOf(bytes, shape);
        word.hasArgument = shape.argumentEnd != shape.nameLength;
        word.nameEnd = offset + static_cast<std::uint32_t>(shape.nameLength);
        word.end = offset + static_cast<std::uint32_t>(shape.end);
        return word;
    }
    return ReadAnyWord(pager, offset, spill);
}
namespace {

/// The last eight letters of a name as one number.
constexpr std::uint64_t KeyOf(std::string_view name) {
    std::uint64_t key = 0;
    for (const char letter : name) {
        key = key << 8 | static_cast<unsigned char>(letter);
    }
    return key;
}

struct MeaningRow {
    std::string_view name;
    WordMeaning meaning;
    std::uint64_t key = KeyOf(name);
};

/// In the order of their lengths.
constexpr MeaningRow Meanings[] = {
    {"u", {WordKind::Unicode}},
    {"f", {WordKind::Font}},
    {"s", {WordKind::Style}},
    {"v", {WordKind::Inert}},
    {"*", {WordKind::Destination}},
    {"af", {WordKind::Font}},
    {"uc", {WordKind::FallbackCount}},
    {"cs", {WordKind::Style}},
    {"ds", {WordKind::Style}},
    {"ts", {WordKind::Style}},
    {"par", {WordKind::Characters, u"\r\n"}},
    {"tab", {WordKind::Characters, u"\t"}},
    {"zwj", {WordKind::Characters, u"\u200D"}},
    {"line", {WordKind::Characters, u"\n"}},
    {"zwbo", {WordKind::Characters, u"\u200B"}},
    {"zwnj", {WordKind::Characters, u"\u200C"}},
    {"plain", {WordKind::Inert}},
    {"zwnbo", {WordKind::Characters, u"\uFEFF"}},
    {"lquote", {WordKind::Characters, u"\u2018"}},
    {"rquote", {WordKind::Characters, u"\u2019"}},
    {"bullet", {WordKind::Characters, u"\u2022"}},
    {"endash", {WordKind::Characters, u"\u2013"}},
    {"emdash", {WordKind::Characters, u"\u2014"}},
    {"ldblquote", {WordKind::Characters, u"\u201C"}},
    {"rdblquote", {WordKind::Characters, u"\u201D"}},
};
constexpr std::size_t LongestMeaning = 9;

/// Where the words of each length begin in the table.
constexpr auto FirstOfLength = [] {
    std::array<std::uint8_t, LongestMeaning + 2> first{};
    std::size_t row = 0;
    for (std::size_t length = 0; length < first.size(); ++length) {
        while (row < std::size(Meanings) && Meanings[row].name.size() < length) {
            ++row;
        }
        first[length] = static_cast<std::uint8_t>(row);
    }
    return first;
}();
static_assert(FirstOfLength.back() == std::size(Meanings));

}  // namespace

WordMeaning MeaningOf(std::string_view name) {
    if (!name.empty() && name.size() <= LongestMeaning) {
        const std::uint64_t key = KeyOf(name);
        const std::size_t end = FirstOfLength[name.size() + 1];
        for (std::size_t row = FirstOfLength[name.size()]; row < end; ++row) {
            if (Meanings[row].key == key && Meanings[row].name.front() == name.front()) {
                return Meanings[row].meaning;
            }
        }
    }
    return {};
}

void ControlWordSet::Clear() {
    names.clear();
    seen.fill(0);
    for (const MeaningRow& row : Meanings) {
        Note(row.name);
    }
}

void ControlWordSet::Add(std::string_view name) {
    names.emplace(name);
    if (!name.empty()) {
        Note(name);
    }
}

const std::string* ControlWordSet::Find(std::string_view name) const {
    const auto found = names.find(name);
    return found == names.end() ? nullptr : &*found;
}

}  // namespace generalutilities::rtf
