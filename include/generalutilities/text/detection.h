#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// In which code page bytes are written, and in which language.
///
/// Bytes are read in every page that can decode them, and each reading is rated by how much it
/// looks like a text of the languages that the library knows. docs/code-pages.md says which pages
/// and languages these are, how often the answer is right, and how to measure it. Any bytes are
/// taken.
namespace generalutilities {

/// One way to read the bytes.
struct DetectedEncoding {
    std::int32_t langId;      ///< the likeliest language (LANGID); 0 when none is likely
    std::int32_t codePage;    ///< the page; it decodes the whole input
    std::int32_t docPercent;  ///< 0 to 100: how many of the letters are of the language's script
    std::int32_t confidence;  ///< 1 to 100: how likely this reading is among all that there are
};

/// What is known of the bytes.
enum class DetectionStatus {
    Language,    ///< the best reading has a language
    NoLanguage,  ///< it has none
    Failed       ///< nothing can be said: no bytes, no letters beyond ASCII's other characters, or
                 ///< bytes that look like no text at all
};

/// What a run found.
struct Detection {
    DetectionStatus status = DetectionStatus::Failed;
    std::vector<DetectedEncoding> encodings;  ///< the best first; empty when detection failed
};

/// How the bytes are read.
enum class DetectionMode {
    PlainText,
    Markup  ///< tags, character references, scripts and style sheets do not count
};

/// Ranks the ways to read the bytes, at most `room` of them. Pages that read the bytes as the same
/// text are one way, told by the page that is usual for its language. `preferredCodePage` is taken
/// as the usual one for every language; 0 prefers none.
Detection DetectEncodings(std::string_view bytes, DetectionMode mode,
                          std::uint32_t preferredCodePage, std::size_t room);

/// The results of reading the same bytes in the two modes, without and with a preferred page.
struct DetectionRuns {
    Detection plain;
    Detection markup;
    Detection plainPreferred;
    Detection markupPreferred;
};

/// The page that four runs speak for; `defaultCodePage` where neither mode could say anything.
/// Plain text wins ties; markup wins with fewer readings, or with both a higher confidence and a
/// higher share of the document. Of the runs with a preferred page only the failures count.
std::int32_t ChooseCodePage(const DetectionRuns& runs, std::int32_t defaultCodePage);

/// The page of the bytes, chosen from four runs that prefer `defaultCodePage`.
std::int32_t DetectCodePage(std::string_view bytes, std::int32_t defaultCodePage);

/// The language (LANGID) of the bytes, read as markup; nothing when there is none.
std::optional<std::int32_t> DetectLanguage(std::string_view bytes);

}  // namespace generalutilities
