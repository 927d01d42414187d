#include <generalutilities/error.h>
#include <generalutilities/tagged/serialize_codes.h>

#include "tagged/code_tags.h"

#include <charconv>
#include <limits>
#include <unordered_map>

namespace generalutilities {

namespace {

/// Takes scans over, with one id for all tags of the same text.
CodeTags TakeTags(std::span<const TagScan> texts) {
    CodeTags codes;
    std::size_t count = 0;
    for (const TagScan& scan : texts) {
        count += scan.tags.size();
    }
    codes.tags.reserve(count);
    codes.ends.reserve(texts.size());
    std::unordered_map<std::u16string_view, std::size_t> ids;
    for (const TagScan& scan : texts) {
        for (std::size_t i = 0; i < scan.tags.size(); ++i) {
            const std::size_t id = ids.try_emplace(scan.tags[i], ids.size()).first->second;
            const bool joinsNext = i + 1 < scan.tags.size() && scan.texts[i + 1].empty();
            codes.tags.push_back({scan.tags[i], id, joinsNext});
            codes.anyJoined = codes.anyJoined || joinsNext;
        }
        codes.ends.push_back(codes.tags.size());
    }
    codes.idCount = ids.size();
    return codes;
}

/// Gives numbers out. The n-th tag with an id has the same number in every text that has so many,
/// and the first of these texts decides it.
class Numbering {
  public:
    Numbering(std::size_t idCount, std::int32_t lastNumber, SerializedCodes& serialized)
        : rows(idCount), result(serialized) {
        result.lastNumber = lastNumber;
    }

    std::int32_t NumberOf(const CodeTag& tag, std::size_t text) {
        Row& row = rows[tag.id];
        if (row.text != text) {
            row.text = text;
            row.seen = 0;
        }
        if (row.seen == row.numbers.size()) {
            if (result.lastNumber == std::numeric_limits<std::int32_t>::max()) {
                throw Error(E_FAIL, "no number is left for another code");
            }
            row.numbers.push_back(++result.lastNumber);
            result.codes.push_back(tag.text);
        }
        return row.numbers[row.seen++];
    }

  private:
    struct Row {
        std::vector<std::int32_t> numbers;
        std::size_t text = 0;  ///< in which `seen` tags were met
        std::size_t seen = 0;
    };
    std::vector<Row> rows;
    SerializedCodes& result;
};

void AppendMarker(std::u16string& text, std::int32_t number) {
    char digits[16];
    char* const end = std::to_chars(digits, std::end(digits), number).ptr;
    text += CodeMarkerStart;
    text.append(std::begin(digits), end);
    text += CodeMarkerEnd;
}

}  // namespace

SerializedCodes SerializeCodes(std::span<const TagScan> texts, std::int32_t lastNumber) {
    CodeTags codes = TakeTags(texts);
    MergeNeighbours(codes);
    SerializedCodes result;
    result.texts.resize(texts.size());
    Numbering numbering(codes.idCount, lastNumber, result);
    const CodeTag* tag = codes.tags.data();
    for (std::size_t text = 0; text < texts.size(); ++text) {
        const TagScan& scan = texts[text];
        for (std::size_t i = 0; i < scan.tags.size(); ++i, ++tag) {
            result.texts[text] += scan.texts[i];
            if (!tag->absorbed) {
                AppendMarker(result.texts[text], numbering.NumberOf(*tag, text));
            }
        }
        result.texts[text] += scan.texts.back();
    }
    return result;
}

}  // namespace generalutilities
