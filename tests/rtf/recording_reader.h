#pragma once

#include "extview/rtf/rtf_reader.h"
#include "memory_file.h"

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace generalutilities::testing {

/// One call of a reader's virtual operations.
struct Event {
    enum class Kind { Text, Codes, Word };
    Kind kind = Kind::Text;
    std::u16string text;  ///< of a text run
    std::string word;
    std::uint32_t start = 0;
    std::uint32_t end = 0;
    bool sawControlWord = false;
    std::int32_t style = 0;  ///< the current style at the call

    friend bool operator==(const Event&, const Event&) = default;
};

inline Event TextEvent(std::u16string_view text, std::uint32_t start, std::uint32_t end,
                       std::int32_t style) {
    return {Event::Kind::Text, std::u16string(text), {}, start, end, false, style};
}
inline Event CodesEvent(std::uint32_t start, std::uint32_t end, bool saw, std::int32_t style) {
    return {Event::Kind::Codes, {}, {}, start, end, saw, style};
}
inline Event WordEvent(std::string_view word, std::int32_t style) {
    return {Event::Kind::Word, {}, std::string(word), 0, 0, false, style};
}

inline void PrintTo(const Event& event, std::ostream* out) {
    *out << "TCW"[static_cast<int>(event.kind)] << "[" << event.word;
    for (const char16_t unit : event.text) {
        if (unit >= 0x20 && unit < 0x7F) {
            *out << static_cast<char>(unit);
        } else {
            *out << "<" << std::hex << static_cast<unsigned>(unit) << std::dec << ">";
        }
    }
    *out << "]" << event.start << "-" << event.end << (event.sawControlWord ? "!" : "") << " s"
         << event.style;
}

/// Keeps every call, and stops the parse where `goesOn` says so.
class RecordingReader : public CRTFReader {
  public:
    std::vector<Event> events;
    std::function<bool(const Event&)> goesOn = [](const Event&) { return true; };

    using CRTFReader::controlWords;
    using CRTFReader::fontCodePages;
    using CRTFReader::styleNames;

    std::u16string Text() const {
        std::u16string text;
        for (const Event& event : events) {
            text += event.text;
        }
        return text;
    }

  protected:
    bool OnText(std::u16string_view text, std::uint32_t start, std::uint32_t end) override {
        return Keep(TextEvent(text, start, end, CurrentStyle()));
    }
    bool OnCodes(std::uint32_t start, std::uint32_t end, bool saw) override {
        return Keep(CodesEvent(start, end, saw, CurrentStyle()));
    }
    bool OnControlWord(std::string_view word) override {
        return Keep(WordEvent(word, CurrentStyle()));
    }

  private:
    bool Keep(Event event) {
        events.push_back(std::move(event));
        return goesOn(events.back());
    }
};

}  // namespace generalutilities::testing
