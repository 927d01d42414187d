#include <generalutilities/error.h>

#include "itd/exchange/forms.h"
#include "platform/files/files.h"
#include "platform/files/utf8.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>

namespace generalutilities {

std::optional<ExchangeForm> FormOfEnding(std::u16string_view path) {
    const std::size_t dot = path.rfind(u'.');
    const std::u16string_view ending = dot == path.npos ? std::u16string_view() : path.substr(dot);
    return ending == u".tsv"                          ? std::optional(ExchangeForm::Tsv)
           : ending == u".jsonl"                      ? std::optional(ExchangeForm::JsonLines)
           : ending == u".xlf" || ending == u".xliff" ? std::optional(ExchangeForm::Xliff)
                                                      : std::nullopt;
}

std::unique_ptr<ExchangeWriter> CreateExchangeWriter(ExchangeForm form, std::ostream& output,
                                                     const ExchangeHeading& heading) {
    return form == ExchangeForm::Tsv         ? CreateTsvWriter(output)
           : form == ExchangeForm::JsonLines ? CreateJsonLinesWriter(output)
                                             : CreateXliffWriter(output, heading);
}

std::unique_ptr<ExchangeReader> OpenExchange(ExchangeForm form, std::u16string_view path) {
    return form == ExchangeForm::Tsv         ? OpenTsv(path)
           : form == ExchangeForm::JsonLines ? OpenJsonLines(path)
                                             : OpenXliff(path);
}

std::string ReadWholeFile(std::u16string_view path) {
    const std::string name = files::ToUtf8Lossy(path);
    const auto file = files::OpenForReading(path);
    if (file == nullptr) {
        throw Error(ErrorFileNotFound, name + ": cannot be opened: " + std::strerror(errno));
    }
    std::string bytes(file->Size(), '\0');
    std::size_t read = 0;
    if (!file->ReadAt(0, bytes.data(), bytes.size(), read)) {
        throw Error(ErrorReadFault, name + ": cannot be read: " + std::strerror(errno));
    }
    bytes.resize(read);
    return bytes;
}

std::string ScoreText(double score) {
    char text[64];
    const auto [end, error] = std::to_chars(text, text + sizeof text, score);
    return {text, end};
}

void ParseCell(std::string_view name, std::u16string_view text, SegmentPieces& pieces,
               std::string& fault) {
    const std::string problem = ParseSegmentText(text, pieces);
    if (!problem.empty() && fault.empty()) {
        fault = std::string(name) + ": " + problem;
    }
}

}  // namespace generalutilities
