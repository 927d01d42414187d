#include <generalutilities/text/detection.h>

namespace generalutilities {

namespace {

constexpr std::size_t RoomForPages = 10;
constexpr std::size_t RoomForLanguages = 100;

bool Failed(const Detection& run) {
    return run.status == DetectionStatus::Failed;
}

bool MarkupWins(const Detection& plain, const Detection& markup) {
    if (markup.encodings.size() != plain.encodings.size()) {
        return markup.encodings.size() < plain.encodings.size();
    }
    const DetectedEncoding& a = plain.encodings.front();
    const DetectedEncoding& b = markup.encodings.front();
    return b.confidence > a.confidence && b.docPercent > a.docPercent;
}

}  // namespace

std::int32_t ChooseCodePage(const DetectionRuns& runs, std::int32_t defaultCodePage) {
    if (Failed(runs.plain)) {
        return Failed(runs.markup) ? defaultCodePage : runs.markup.encodings.front().codePage;
    }
    if (Failed(runs.markup) || Failed(runs.markupPreferred)) {
        return runs.plain.encodings.front().codePage;
    }
    const bool markup = Failed(runs.plainPreferred) || MarkupWins(runs.plain, runs.markup);
    return (markup ? runs.markup : runs.plain).encodings.front().codePage;
}

std::int32_t DetectCodePage(std::string_view bytes, std::int32_t defaultCodePage) {
    const auto run = [bytes](DetectionMode mode, std::int32_t preferred) {
        return DetectEncodings(bytes, mode, static_cast<std::uint32_t>(preferred), RoomForPages);
    };
    return ChooseCodePage({run(DetectionMode::PlainText, 0), run(DetectionMode::Markup, 0),
                           run(DetectionMode::PlainText, defaultCodePage),
                           run(DetectionMode::Markup, defaultCodePage)},
                          defaultCodePage);
}

std::optional<std::int32_t> DetectLanguage(std::string_view bytes) {
    const Detection found = DetectEncodings(bytes, DetectionMode::Markup, 0, RoomForLanguages);
    return found.status == DetectionStatus::Language ? std::optional(found.encodings.front().langId)
                                                     : std::nullopt;
}

}  // namespace generalutilities
