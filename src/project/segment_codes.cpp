// Plain text becomes segment text and plain text again; codes as shown are found and compared.

#include <generalutilities/project/segment_codes.h>

#include "project/placeholders.h"

#include <algorithm>
#include <unordered_map>

namespace generalutilities {
namespace {

constexpr char16_t ShownBegin = 0x0006;
constexpr char16_t HiddenBegin = 0x0007;
constexpr char16_t HiddenEnd = 0x0008;

bool IsEscaped(char16_t unit) {
    return unit == u'\\' || unit == u'{' || unit == u'}';
}

/// Calls `literal` with the stretches of a plain text and `placeholder` with what stands between.
template <class Literal, class Placeholder>
void CutAtPlaceholders(std::u16string_view text, Literal literal, Placeholder placeholder) {
    std::size_t literalFirst = 0;
    std::size_t position = 0;
    while (position < text.size()) {
        const std::size_t length = ProgramPlaceholderLength(text, position);
        if (length == 0) {
            ++position;
            continue;
        }
        literal(text.substr(literalFirst, position - literalFirst));
        placeholder(text.substr(position, length));
        position += length;
        literalFirst = position;
    }
    literal(text.substr(literalFirst));
}

void AppendEscaped(std::u16string& segment, std::u16string_view text) {
    for (const char16_t unit : text) {
        if (IsEscaped(unit)) {
            segment += u'\\';
        }
        segment += unit;
    }
}

void AppendCode(std::u16string& segment, std::size_t number, std::u16string_view hidden) {
    const std::string digits = std::to_string(number);
    segment.append({ShownBegin, u'{'}).append(digits.begin(), digits.end());
    segment.append({u'}', HiddenBegin}).append(hidden);
    segment += HiddenEnd;
}

}  // namespace

std::u16string SegmentTextMaker::Source(std::u16string_view text) {
    sourcePlaceholders.clear();
    if (form == TextForm::Placeholders) {
        CutAtPlaceholders(
            text, [](std::u16string_view) {},
            [this](std::u16string_view placeholder) {
                sourcePlaceholders.emplace_back(placeholder);
            });
    }
    return Translation(text);
}

std::u16string SegmentTextMaker::Translation(std::u16string_view text) const {
    if (form == TextForm::Segment) {
        return std::u16string(text);
    }
    std::u16string segment;
    segment.reserve(text.size());
    if (form == TextForm::Plain) {
        AppendEscaped(segment, text);
        return segment;
    }
    // The numbers of the source's placeholders by their text, the first one at the back.
    std::unordered_map<std::u16string_view, std::vector<std::size_t>> numbers;
    for (std::size_t k = sourcePlaceholders.size(); k > 0; --k) {
        numbers[sourcePlaceholders[k - 1]].push_back(k);
    }
    std::size_t nextFree = sourcePlaceholders.size();
    CutAtPlaceholders(
        text, [&](std::u16string_view literal) { AppendEscaped(segment, literal); },
        [&](std::u16string_view placeholder) {
            const auto known = numbers.find(placeholder);
            if (known == numbers.end() || known->second.empty()) {
                AppendCode(segment, ++nextFree, placeholder);
                return;
            }
            AppendCode(segment, known->second.back(), placeholder);
            known->second.pop_back();
        });
    return segment;
}

std::u16string PlainText(std::u16string_view segmentText) {
    std::u16string plain;
    plain.reserve(segmentText.size());
    bool marksAreComplete = true;  // until one has been found without its end
    for (std::size_t i = 0; i < segmentText.size(); ++i) {
        const char16_t unit = segmentText[i];
        if (unit == ShownBegin && marksAreComplete) {
            const std::size_t end = segmentText.find(HiddenEnd, i);
            marksAreComplete = end != std::u16string_view::npos;
            if (marksAreComplete) {
                const std::u16string_view code = segmentText.substr(i + 1, end - i - 1);
                const std::size_t hidden = code.find(HiddenBegin);
                plain.append(hidden == std::u16string_view::npos ? code : code.substr(hidden + 1));
                i = end;
            }
        } else if (unit == u'\\' && i + 1 < segmentText.size() && IsEscaped(segmentText[i + 1])) {
            plain += segmentText[++i];
        } else if (unit < ShownBegin || unit > HiddenEnd) {
            plain += unit;
        }
    }
    return plain;
}

bool HasCodeMarkers(std::u16string_view text) {
    return std::any_of(text.begin(), text.end(),
                       [](char16_t unit) { return unit >= ShownBegin && unit <= HiddenEnd; });
}

std::vector<std::u16string_view> CodesOf(std::u16string_view shownText) {
    std::vector<std::u16string_view> codes;
    bool escaped = false;  // an odd number of backslashes stands right before
    for (std::size_t i = 0; i < shownText.size(); ++i) {
        if (shownText[i] == u'{' && !escaped) {
            const std::size_t end = shownText.find(u'}', i);
            if (end == std::u16string_view::npos) {
                break;
            }
            codes.push_back(shownText.substr(i, end + 1 - i));
            i = end;
        }
        escaped = shownText[i] == u'\\' && !escaped;
    }
    return codes;
}

std::vector<CodeDifference> CompareCodes(std::u16string_view shownSource,
                                         std::u16string_view shownTarget) {
    const std::vector<std::u16string_view> sourceCodes = CodesOf(shownSource);
    const std::vector<std::u16string_view> targetCodes = CodesOf(shownTarget);
    std::vector<CodeDifference> differences;
    if (sourceCodes == targetCodes) {
        return differences;
    }
    struct Counts {
        std::int32_t source = 0;
        std::int32_t target = 0;
        bool told = false;
    };
    std::unordered_map<std::u16string_view, Counts> counts;
    for (const auto code : sourceCodes) {
        ++counts[code].source;
    }
    for (const auto code : targetCodes) {
        ++counts[code].target;
    }
    using Kind = CodeDifference::Kind;
    for (const auto code : sourceCodes) {
        Counts& count = counts[code];
        if (count.source > count.target && !count.told) {
            differences.push_back({Kind::Lost, std::u16string(code), count.source - count.target});
            count.told = true;
        }
    }
    for (const auto code : targetCodes) {
        Counts& count = counts[code];
        if (count.target > count.source && !count.told) {
            differences.push_back({count.source == 0 ? Kind::Added : Kind::Doubled,
                                   std::u16string(code), count.target - count.source});
            count.told = true;
        }
    }
    return differences;
}

}  // namespace generalutilities
