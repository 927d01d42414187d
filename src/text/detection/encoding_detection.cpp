// Well-formed UTF-8 is hardly ever anything else, and ASCII reads the same in every page. All else
// is a comparison: what the bytes cost in the best language of each page. The page is right whose
// reading is the likeliest text.

#include <generalutilities/code_pages.h>
#include <generalutilities/text/detection.h>

#include "text/detection/excerpt.h"
#include "text/detection/letter_model.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <span>
#include <string>

namespace generalutilities {

namespace {

using detection::Cost;
using detection::LetterModel;
using detection::TextCosts;

constexpr std::uint32_t Utf8 = 65001;

/// The pages of a kind, and how much less likely a page of this kind is than the usual Windows page
/// of a language.
struct PageKind {
    Cost cost;
    bool withControlsOnly;  ///< tried only where the bytes hold control characters
    std::span<const std::uint32_t> pages;
};

// Within a kind the first of the pages that read the bytes alike stands for all of them.
constexpr std::uint32_t WindowsPages[] = {1252, 1250, 1251, 1253, 1254, 1255, 1256,
                                          1257, 1258, 874,  932,  936,  949,  950};
constexpr std::uint32_t UnixPages[] = {28591, 28592, 28595, 28597, 28599, 28603,
                                       28605, 20866, 21866, 51932, 54936};
constexpr std::uint32_t DosAndMacintoshPages[] = {850, 437,   852,   866,   737,   775,  857,
                                                  862, 10000, 10006, 10007, 10029, 10081};
constexpr std::uint32_t PagesWithControls[] = {1200, 1201, 12000, 12001, 50220, 50225, 50227};

constexpr PageKind Kinds[] = {{30, false, WindowsPages},
                              {60, false, UnixPages},
                              {80, false, DosAndMacintoshPages},
                              {60, true, PagesWithControls}};

/// What costs more than this on average is no text of a language, or no text at all.
constexpr Cost MostPerByteOfLanguage = 65;
constexpr Cost MostPerByte = 75;
constexpr Cost MostPerUnit = 105;

/// Letters are not as independent of each other as their costs make them look, so that the
/// difference of costs overstates how sure one can be.
constexpr double CostPerNat = 40;
constexpr double LeastShare = 0.01;

bool IsAscii(std::string_view bytes) {
    return std::ranges::none_of(bytes, [](char byte) { return (byte & 0x80) != 0; });
}

/// Control characters that a text in bytes has no use for, the escape among them.
bool HasControls(std::string_view bytes) {
    return std::ranges::any_of(bytes, [](char byte) {
        const auto value = static_cast<unsigned char>(byte);
        return value < 0x20 && (value < 0x09 || value > 0x0D);
    });
}

std::u16string Decode(CodePageConverter& converter, std::string_view bytes) {
    std::u16string text(converter.MeasureUnits(bytes), u'\0');
    converter.ToUnits(bytes, text.data());
    return text;
}

/// What the bytes are in one page.
struct Reading {
    std::uint32_t codePage;
    std::u16string text;
    TextCosts costs;
    std::size_t language = 0;  ///< the best one, by its index in the model
    Cost cost = 0;             ///< of that language, and of the page for it
};

class Detector {
  public:
    Detector(std::string_view input, DetectionMode mode, std::uint32_t preferredCodePage)
        : bytes(input), preferred(preferredCodePage) {
        if (mode == DetectionMode::Markup) {
            stripped = detection::MarkupExcerpt(input);
            excerpt = stripped;
        } else {
            excerpt = detection::PlainExcerpt(input);
        }
    }

    Detection Run(std::size_t room) {
        const bool controls = HasControls(excerpt);
        if (IsAscii(bytes) && !controls) {
            return RunAscii(room);
        }
        if (IsWellFormedUtf8()) {
            AddReading(Utf8, 0);
        } else {
            for (const PageKind& kind : Kinds) {
                for (const std::uint32_t page : kind.pages) {
                    if (!kind.withControlsOnly || controls) {
                        AddReading(page, kind.cost);
                    }
                }
            }
        }
        return Rank(room);
    }

  private:
    bool IsWellFormedUtf8() const { return !IsAscii(bytes) && Decodes(*OpenCodePage(Utf8), bytes); }

    static bool Decodes(CodePageConverter& converter, std::string_view input) {
        return converter.FindUndefinedBytes(input) == CodePageConverter::NotFound;
    }

    /// ASCII reads the same in every page: the preferred one is named, or the system's.
    Detection RunAscii(std::size_t room) {
        AddReading(SystemAnsiCodePage, 0);
        Reading& reading = readings.front();
        if (reading.costs.LetterCount() == 0) {
            return {};
        }
        const auto converter = OpenCodePage(preferred);
        if (converter != nullptr && Decode(*converter, excerpt) == reading.text) {
            reading.codePage = preferred;
        }
        return Rank(room);
    }

    void AddReading(std::uint32_t page, Cost pageCost) {
        const auto converter = OpenCodePage(page);
        if (converter == nullptr) {
            return;
        }
        Reading reading{page, Decode(*converter, excerpt), {}, 0, 0};
        const auto same = std::ranges::find(readings, reading.text, &Reading::text);
        reading.costs = same != readings.end() ? same->costs : model.Rate(reading.text);
        ChooseLanguage(reading, pageCost);
        if (same == readings.end()) {
            readings.push_back(std::move(reading));
        } else if (reading.cost < same->cost) {
            *same = std::move(reading);
        }
    }

    void ChooseLanguage(Reading& reading, Cost pageCost) const {
        reading.cost = static_cast<Cost>(-1);
        for (std::size_t i = 0; i < model.Languages().size(); ++i) {
            const std::uint32_t usual = preferred != 0 ? preferred : model.Languages()[i].codePage;
            const Cost cost =
                reading.costs.languages[i] + (reading.codePage == usual ? 0 : pageCost);
            if (cost < reading.cost) {
                reading.cost = cost;
                reading.language = i;
            }
        }
    }

    bool LooksLikeText(const Reading& reading) const {
        return reading.cost <= MostPerByte * excerpt.size() &&
               reading.cost <= MostPerUnit * reading.text.size();
    }

    /// Leaves out what does not decode the whole input, what looks like no text, and what is far
    /// less likely than the best.
    Detection Rank(std::size_t room) {
        std::ranges::stable_sort(readings, {}, &Reading::cost);
        std::vector<const Reading*> kept;
        std::vector<double> weights;
        double sum = 0;
        for (const Reading& reading : readings) {
            const Cost more = kept.empty() ? 0 : reading.cost - kept.front()->cost;
            const double weight = std::exp(-static_cast<double>(more) / CostPerNat);
            if (kept.size() == room || weight < LeastShare || !LooksLikeText(reading)) {
                break;
            }
            if (Decodes(*OpenCodePage(reading.codePage), bytes)) {
                kept.push_back(&reading);
                weights.push_back(weight);
                sum += weight;
            }
        }
        Detection result;
        for (std::size_t i = 0; i < kept.size(); ++i) {
            result.encodings.push_back(Describe(*kept[i], weights[i] / sum));
        }
        if (!kept.empty()) {
            result.status = result.encodings.front().langId != 0 ? DetectionStatus::Language
                                                                 : DetectionStatus::NoLanguage;
        }
        return result;
    }

    DetectedEncoding Describe(const Reading& reading, double share) const {
        const detection::Language& language = model.Languages()[reading.language];
        const std::uint32_t letters = reading.costs.LetterCount();
        const std::uint32_t own = reading.costs.letters[static_cast<std::size_t>(language.script)];
        const bool likely = own != 0 && reading.cost / excerpt.size() <= MostPerByteOfLanguage;
        return {likely ? language.langId : 0, static_cast<std::int32_t>(reading.codePage),
                letters == 0 ? 0 : static_cast<std::int32_t>(std::uint64_t{own} * 100 / letters),
                std::max(1, static_cast<std::int32_t>(std::lround(share * 100)))};
    }

    const LetterModel& model = LetterModel::Instance();
    std::string_view bytes;
    std::uint32_t preferred;
    std::string stripped;
    std::string_view excerpt;
    std::vector<Reading> readings;
};

}  // namespace

Detection DetectEncodings(std::string_view bytes, DetectionMode mode,
                          std::uint32_t preferredCodePage, std::size_t room) {
    return Detector(bytes, mode, preferredCodePage).Run(room);
}

}  // namespace generalutilities
