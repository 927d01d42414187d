#include "text_sources.h"

#include "byte_input.h"
#include "failure.h"
#include "unicode.h"

#include <cstdint>
#include <cstdio>
#include <iostream>
#include <limits>
#include <optional>

namespace generalutilities::cli {
namespace {

std::string NotUtf8(std::uint64_t offset, char byte) {
    char text[80];
    std::snprintf(text, sizeof text, "byte offset %llu, byte 0x%02X: not valid UTF-8",
                  static_cast<unsigned long long>(offset), static_cast<unsigned char>(byte));
    return text;
}

void CheckLength(std::string_view text) {
    if (text.size() > std::numeric_limits<std::int32_t>::max() / 2) {
        throw Failure("a text of " + std::to_string(text.size()) +
                      " bytes is too long for the library; cut it into lines");
    }
}

void ForEachLine(std::istream& input, const std::string& name,
                 const std::function<void(std::string_view)>& use) {
    std::size_t lineNumber = 0;
    std::uint64_t offset = 0;
    for (std::string line; std::getline(input, line);) {
        ++lineNumber;
        const std::uint64_t start = offset;
        offset += line.size() + 1;
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (const auto invalid = FindInvalidUtf8(line)) {
            throw Failure(name + ", line " + std::to_string(lineNumber) + ", " +
                          NotUtf8(start + *invalid, line[*invalid]) +
                          "; convert the text first: genutil codepage convert --help");
        }
        CheckLength(line);
        use(line);
    }
    CheckEnd(input, name, offset);
}

}  // namespace

void AddTextSources(CLI::App* command, TextSources& sources) {
    command
        ->add_option("TEXT", sources.texts,
                     "Texts in UTF-8; without any, the lines of standard input")
        ->type_name("");
    command->add_option("--file,-f", sources.files, "Take the lines of this file; may be repeated")
        ->type_name("FILE")
        ->allow_extra_args(false);  // what stands behind the file is a text
}

void WarnOfZero(Console& console, std::size_t number, std::string_view text) {
    if (const std::size_t zero = text.find('\0'); zero != text.npos) {
        console.Warn("text " + std::to_string(number) + ", byte offset " + std::to_string(zero) +
                     ": the text counts up to this U+0000");
    }
}

void ForEachText(const TextSources& sources, const std::function<void(std::string_view)>& use) {
    for (std::size_t i = 0; i < sources.texts.size(); ++i) {
        const std::string& text = sources.texts[i];
        if (const auto invalid = FindInvalidUtf8(text)) {
            throw UsageError("TEXT " + std::to_string(i + 1) + ", " +
                             NotUtf8(*invalid, text[*invalid]));
        }
        CheckLength(text);
    }
    for (const std::string& text : sources.texts) {
        use(text);
    }
    for (const std::string& file : sources.files) {
        std::ifstream input = OpenInput(file);
        ForEachLine(input, file, use);
    }
    if (sources.texts.empty() && sources.files.empty()) {
        ForEachLine(std::cin, "standard input", use);
    }
}

}  // namespace generalutilities::cli
