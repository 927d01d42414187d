#pragma once

#include "text/detection/cost_table.h"
#include "text/detection/script.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <string_view>
#include <vector>

/// How likely a text is in each language that src/text/tables/letter_sequences.h describes.
namespace generalutilities::detection {

struct Language {
    std::int32_t langId;
    Script script;
    std::uint32_t codePage;  ///< the Windows page for it; 0 when only Unicode holds it
    Cost rareness;           ///< part of what every text costs in it
};

/// What a text costs in every language, in the order of `LetterModel::Languages`.
struct TextCosts {
    std::vector<Cost> languages;
    std::array<std::uint32_t, ScriptCount> letters{};  ///< how many letters of each script

    std::uint32_t LetterCount() const {
        return std::accumulate(letters.begin(), letters.end(), 0U);
    }
};

class LetterModel {
  public:
    /// Built once, when it is first asked for.
    static const LetterModel& Instance();
    ~LetterModel();

    const std::vector<Language>& Languages() const { return languages; }
    TextCosts Rate(std::u16string_view text) const;

  private:
    struct ScriptGroup;
    class Walk;
    LetterModel();

    std::vector<Language> languages;
    std::array<std::unique_ptr<ScriptGroup>, ScriptCount> groups;
    std::unique_ptr<CostTable> symbols;
};

}  // namespace generalutilities::detection
