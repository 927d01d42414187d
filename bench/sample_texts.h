#pragma once

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// Texts to measure with: words of a script in random order, with the punctuation and the capitals
/// of running text, so that no processor learns the text by heart from a few repeated sentences.
/// The same seed gives the same text everywhere.
namespace generalutilities::bench {

struct Script {
    std::string_view name;
    std::u16string_view words;  ///< split at blanks
};

inline constexpr Script Ascii = {
    "ASCII",
    u"The translation memory keeps every segment that a reviewer has seen, and offers it again "
    u"when "
    u"a similar sentence turns up. Most projects are small; some have a million rows. Numbers like "
    u"1,250.75 or 42 stay as they are, Windows paths too: C:\\Data (see page 7)."};
inline constexpr Script Latin = {"accented Latin",
                                 u"Übersetzung größer für später müßte; château où l'élève était "
                                 u"déjà à côté, naïve señor mañana "
                                 u"corazón. Příliš žluťoučký kůň úpěl ďábelské ódy; zażółć gęślą "
                                 u"jaźń Łódź. Việt Nam tiếng người "
                                 u"được những; ça va être prêt à 12,5 % même année"};
inline constexpr Script Cyrillic = {
    "Cyrillic",
    u"Память переводов хранит каждый сегмент, который видел редактор, и предлагает его снова. "
    u"Большинство проектов невелики; некоторые содержат миллион строк. Ещё одно предложение: "
    u"объект найден, йод и ёлка на месте (см. стр. 7)."};
inline constexpr Script Greek = {
    "Greek",
    u"Η μεταφραστική μνήμη κρατά κάθε τμήμα που έχει δει ο επιμελητής και το προτείνει ξανά. Τα "
    u"περισσότερα έργα είναι μικρά· μερικά έχουν ένα εκατομμύριο γραμμές. Όλοι οι αριθμοί μένουν "
    u"όπως είναι, ώστε τους βρίσκεις."};

class TextMaker {
  public:
    explicit TextMaker(std::size_t length) : size(length) {}

    std::u16string Words(const std::vector<Script>& scripts) {
        std::vector<std::u16string_view> words;
        for (const Script& script : scripts) {
            for (std::u16string_view rest = script.words; !rest.empty();) {
                const std::size_t end = std::min(rest.find(u' '), rest.size());
                words.push_back(rest.substr(0, end));
                rest.remove_prefix(std::min(end + 1, rest.size()));
            }
        }
        std::u16string text;
        while (text.size() < size) {
            text += words[random() % words.size()];
            text += u' ';
        }
        text.resize(size);
        return text;
    }

    /// 3,000 different ideographs, with a comma or full stop now and then.
    std::u16string Ideographs() {
        std::u16string text;
        while (text.size() < size) {
            text += random() % 12 == 0 ? u"\uFF0C\u3002"[random() % 2]
                                       : static_cast<char16_t>(0x4E00 + random() % 3000 * 6);
        }
        return text;
    }

  private:
    std::size_t size;
    std::mt19937 random{20240229};
};

struct Sample {
    std::string name;
    std::u16string text;
};

/// One text of `size` units for each kind.
inline std::vector<Sample> Samples(std::size_t size) {
    std::vector<Sample> samples;
    for (const Script& script : {Ascii, Latin, Cyrillic, Greek}) {
        samples.push_back({std::string(script.name), TextMaker(size).Words({script})});
    }
    samples.push_back({"CJK", TextMaker(size).Ideographs()});
    const Script ideographs = {"", u"翻譯記憶 用語集 文節 編集者"};
    samples.push_back(
        {"mixed", TextMaker(size).Words({Ascii, Latin, Cyrillic, Greek, ideographs})});
    return samples;
}

}  // namespace generalutilities::bench
