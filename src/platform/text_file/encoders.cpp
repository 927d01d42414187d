#include "platform/text_file/encoders.h"

#include <algorithm>

namespace generalutilities::text_file {

namespace {

constexpr char32_t ReplacementCharacter = 0xFFFD;

bool IsLeadSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}
bool IsTrailSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

std::size_t Put(char32_t character, char* bytes) {
    const auto put = [bytes](std::size_t index, char32_t value) {
        bytes[index] = static_cast<char>(static_cast<unsigned char>(value));
    };
    if (character < 0x80) {
        put(0, character);
        return 1;
    }
    if (character < 0x800) {
        put(0, 0xC0 | character >> 6);
        put(1, 0x80 | (character & 0x3F));
        return 2;
    }
    if (character < 0x10000) {
        put(0, 0xE0 | character >> 12);
        put(1, 0x80 | (character >> 6 & 0x3F));
        put(2, 0x80 | (character & 0x3F));
        return 3;
    }
    put(0, 0xF0 | character >> 18);
    put(1, 0x80 | (character >> 12 & 0x3F));
    put(2, 0x80 | (character >> 6 & 0x3F));
    put(3, 0x80 | (character & 0x3F));
    return 4;
}

}  // namespace

EncodedStretch EncodeOneByte(std::u16string_view text, char* bytes, std::size_t room) {
    const std::size_t count = std::min(text.size(), room);
    for (std::size_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<char>(static_cast<unsigned char>(text[i]));
    }
    return {count, count};
}

EncodedStretch Utf8Encoder::Encode(std::u16string_view text, char* bytes, std::size_t room) {
    EncodedStretch done;
    // One unit makes at most 6 bytes: the replacement of a half that waited, and its own three.
    while (done.units < text.size() && room - done.bytes >= MinimumRoom) {
        const char16_t unit = text[done.units++];
        if (unit < 0x80 && waitingLead == 0) {
            bytes[done.bytes++] = static_cast<char>(unit);
            continue;
        }
        if (waitingLead != 0) {
            if (IsTrailSurrogate(unit)) {
                const char32_t character = 0x10000 +
                                           ((static_cast<char32_t>(waitingLead) & 0x3FF) << 10) +
                                           (static_cast<char32_t>(unit) & 0x3FF);
                done.bytes += Put(character, bytes + done.bytes);
                waitingLead = 0;
                continue;
            }
            done.bytes += Finish(bytes + done.bytes);
        }
        if (IsLeadSurrogate(unit)) {
            waitingLead = unit;
        } else {
            done.bytes +=
                Put(IsTrailSurrogate(unit) ? ReplacementCharacter : unit, bytes + done.bytes);
        }
    }
    return done;
}

std::size_t Utf8Encoder::Finish(char* bytes) {
    if (waitingLead == 0) {
        return 0;
    }
    waitingLead = 0;
    return Put(ReplacementCharacter, bytes);
}

}  // namespace generalutilities::text_file
