#pragma once

#include "extview/rtf/rtf_reader.h"
#include "memory_file.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace generalutilities::testing {

/// The calls of a reader's virtual operations, in words: "T6-12[abc]s4" for a text run from 6 to 12
/// in style 4, "C6-12!s4" for a code run with a reported word, "W[cell]s4" for such a word. Style 1
/// is not told. Offsets count from `origin`, and "^" is one before it.
class Events {
  public:
    std::vector<std::string> all;
    std::u16string text;  ///< of all text runs
    std::function<bool()> goOn = [] { return true; };
    std::uint32_t origin = 0;

    bool OnText(std::u16string_view run, std::uint32_t start, std::uint32_t end,
                std::int32_t style) {
        text += run;
        std::string words = "T" + Range(start, end) + "[";
        for (const char16_t unit : run) {
            words += unit >= 0x20 && unit < 0x7F ? std::string(1, static_cast<char>(unit))
                                                 : "<" + std::to_string(unit) + ">";
        }
        return Keep(words + "]", style);
    }
    bool OnCodes(std::uint32_t start, std::uint32_t end, bool saw, std::int32_t style) {
        return Keep("C" + Range(start, end) + (saw ? "!" : ""), style);
    }
    bool OnControlWord(std::string_view word, std::int32_t style) {
        return Keep("W[" + std::string(word) + "]", style);
    }

  private:
    std::string Range(std::uint32_t start, std::uint32_t end) const {
        return (start < origin ? "^" : std::to_string(start - origin)) + "-" +
               std::to_string(end - origin);
    }
    bool Keep(const std::string& words, std::int32_t style) {
        all.push_back(words + (style == 1 ? "" : "s" + std::to_string(style)));
        return goOn();
    }
};

/// Keeps every call, and stops the parse where `events.goOn` says so.
class RecordingReader : public CRTFReader {
  public:
    Events events;

    using CRTFReader::controlWords;
    using CRTFReader::fontCodePages;
    using CRTFReader::styleNames;

  protected:
    bool OnText(std::u16string_view text, std::uint32_t start, std::uint32_t end) override {
        return events.OnText(text, start, end, CurrentStyle());
    }
    bool OnCodes(std::uint32_t start, std::uint32_t end, bool saw) override {
        return events.OnCodes(start, end, saw, CurrentStyle());
    }
    bool OnControlWord(std::string_view word) override {
        return events.OnControlWord(word, CurrentStyle());
    }
};

}  // namespace generalutilities::testing
