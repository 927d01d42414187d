#pragma once

#include <generalutilities/tagged/font_tags.h>
#include <generalutilities/tagged/tag_scan.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

/// The operations on tags step by step, on copies and without a thought for speed, for tests and
/// fuzz targets to hold the library's own against.
namespace generalutilities::textbook {

constexpr auto Npos = std::u16string::npos;

inline std::u16string Lower(std::u16string text) {
    for (char16_t& unit : text) {
        unit = unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
    }
    return text;
}

struct Scan {
    std::vector<std::u16string> texts, tags;
};

inline std::optional<TagFault::Kind> ScanTags(const std::u16string& text, Scan& scan) {
    std::size_t start = 0;
    for (std::size_t open; (open = text.find(u'<', start)) != Npos;) {
        std::size_t at = std::min(text.find(u' ', open), text.find(u'>', open));
        if (at == Npos) {
            break;
        }
        if (Lower(text.substr(open + 1, at - open - 1)) == u"ut") {
            at = Lower(text).find(u"</ut", at);
            if (at == Npos) {
                return TagFault::Kind::CodeElementNotClosed;
            }
        }
        const std::size_t end = text.find(u'>', at);
        if (end == Npos) {
            return TagFault::Kind::TagNotClosed;
        }
        scan.tags.push_back(text.substr(open, end + 1 - open));
        scan.texts.push_back(text.substr(start, open - start));
        start = end + 1;
    }
    scan.texts.push_back(text.substr(start));
    return {};
}

inline std::u16string StripFontAttributes(std::u16string w) {
    std::vector<bool> stack;
    std::set<std::u16string> last;
    std::size_t closeStart = 0, closeEnd = Npos;
    for (std::size_t p = w.find(u'<'), scan; p != Npos; p = w.find(u'<', scan)) {
        const std::size_t nameEnd = std::min(w.find(u' ', p), w.find(u'>', p));
        if (nameEnd == Npos) {
            break;
        }
        const std::u16string name = Lower(w.substr(p + 1, nameEnd - p - 1));
        scan = nameEnd;
        if (name == u"ut") {
            scan = std::min(Lower(w).find(u"</ut", nameEnd), w.size());
        } else if (name.starts_with(u"df")) {
            if (p != closeEnd) {
                last.clear();
            }
            const std::size_t e = w.find(u'>', p);
            if (e == Npos) {
                break;
            }
            const std::u16string part = w.substr(p + 3, e - p - 3);
            auto attributes = ParseDfAttributes(part);
            const auto all = attributes.size();
            const auto fonts = std::erase_if(attributes, [](auto& a) { return a.isFont; });
            std::set<std::u16string> rest;
            for (const DfAttribute& attribute : attributes) {
                rest.insert(std::u16string(attribute.text));
            }
            if (fonts == 0) {
                scan = e;
            } else if (fonts == all) {
                w.erase(p, e + 1 - p);
                stack.push_back(true);
                scan = p;
                continue;
            } else if (rest == last) {
                w.erase(closeStart, e + 1 - closeStart);
                scan = closeStart;
                closeEnd = Npos;
            } else {
                const std::u16string tag = BuildDfTag(attributes);
                w.replace(p, e + 1 - p, tag);
                scan = p + tag.size();
            }
            last = rest;
            stack.push_back(false);
        } else if (name.starts_with(u"/df") && !stack.empty()) {
            if (stack.back()) {
                w.erase(p, nameEnd + 1 - p);
                scan = p;
            } else {
                closeStart = p;
                closeEnd = nameEnd + 1;
            }
            stack.pop_back();
        }
    }
    return w;
}

struct Tag {
    std::u16string text;
    int id = 0;
    bool joinsNext = false, numbered = false;
};
struct Text {
    std::vector<std::u16string> runs;
    std::vector<Tag> tags;

    int Count(int id) const {
        return static_cast<int>(
            std::ranges::count_if(tags, [id](const Tag& tag) { return tag.id == id; }));
    }
};

inline bool PairCanMerge(const Text& t, int a, int b, int countA, int countB) {
    const int x = t.Count(a), y = t.Count(b);
    if ((x == 0 && y == 0) || (x < countA && y < countB)) {
        return true;
    }
    int r = countA;
    for (std::size_t i = 0; i + 1 < t.tags.size(); ++i) {
        if (t.tags[i].id == a) {
            if (t.tags[i].joinsNext && t.tags[i + 1].id == b) {
                return true;
            }
            if (--r <= 0) {
                return false;
            }
        }
    }
    if (!t.tags.empty() && t.tags.back().id == a && r - 1 <= 0) {
        return false;
    }
    return y == 0 || y < countB;
}

inline void MergeNeighbours(std::vector<Text>& texts, int& n) {
    for (Text& own : texts) {
        for (std::size_t j = 0; j < own.tags.size();) {
            const int a = own.tags[j].id;
            const int b = own.tags[j].joinsNext ? own.tags[j + 1].id : 0;
            const int countA = own.Count(a), countB = own.Count(b);
            if (!own.tags[j].joinsNext || !std::ranges::all_of(texts, [&](const Text& t) {
                    return PairCanMerge(t, a, b, countA, countB);
                })) {
                ++j;
                continue;
            }
            ++n;
            for (Text& t : texts) {
                for (std::size_t q = 0; q + 1 < t.tags.size(); ++q) {
                    Tag& tag = t.tags[q];
                    Tag& next = t.tags[q + 1];
                    if (tag.id == a && next.id == b && tag.joinsNext) {
                        tag.text += next.text;
                        tag.joinsNext = next.joinsNext;
                        tag.id = n;
                        t.tags.erase(t.tags.begin() + static_cast<std::ptrdiff_t>(q) + 1);
                        t.runs.erase(t.runs.begin() + static_cast<std::ptrdiff_t>(q) + 1);
                    }
                }
            }
        }
    }
}

/// Gives the marked texts, and the codes by number.
inline std::map<int, std::u16string> SerializeCodes(const std::vector<TagScan>& scans,
                                                    int lastNumber,
                                                    std::vector<std::u16string>& marked) {
    std::vector<Text> texts;
    for (const TagScan& scan : scans) {
        Text& text = texts.emplace_back();
        text.runs.assign(scan.texts.begin(), scan.texts.end());
        for (std::size_t i = 0; i < scan.tags.size(); ++i) {
            if (i > 0 && scan.texts[i].empty()) {
                text.tags.back().joinsNext = true;
            }
            text.tags.push_back({std::u16string(scan.tags[i])});
        }
    }
    int n = lastNumber;
    for (std::size_t t = 0; t < texts.size(); ++t) {
        for (Tag& tag : texts[t].tags) {
            if (tag.id == 0) {
                ++n;
                for (std::size_t later = t; later < texts.size(); ++later) {
                    for (Tag& other : texts[later].tags) {
                        other.id = other.text == tag.text ? n : other.id;
                    }
                }
            }
        }
    }
    MergeNeighbours(texts, n);
    int m = lastNumber;
    std::map<int, std::u16string> codes;
    for (std::size_t t = 0; t < texts.size(); ++t) {
        for (Tag& tag : texts[t].tags) {
            if (tag.numbered) {
                continue;
            }
            const int old = std::exchange(tag.id, ++m);
            codes[m] = tag.text;
            for (std::size_t later = t + 1; later < texts.size(); ++later) {
                const auto claimed = std::ranges::find_if(texts[later].tags, [&](const Tag& other) {
                    return other.id == old && !other.numbered;
                });
                if (claimed != texts[later].tags.end()) {
                    claimed->id = m;
                    claimed->numbered = true;
                }
            }
        }
    }
    for (const Text& text : texts) {
        std::u16string& out = marked.emplace_back(text.runs[0]);
        for (std::size_t i = 0; i < text.tags.size(); ++i) {
            const std::string digits = std::to_string(text.tags[i].id);
            out += u'\x11' + std::u16string(digits.begin(), digits.end()) + u'\x12';
            out += text.runs[i + 1];
        }
    }
    return codes;
}

}  // namespace generalutilities::textbook
