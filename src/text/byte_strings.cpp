#include <generalutilities/text/byte_strings.h>

#include <new>

namespace generalutilities {

namespace {

/// Bytes on their way, with nothing written before they are.
struct ByteBuffer {
    explicit ByteBuffer(std::size_t size)
        : bytes(std::make_unique_for_overwrite<char[]>(size)), length(size) {}
    std::string_view View() const { return {bytes.get(), length}; }

    std::unique_ptr<char[]> bytes;
    std::size_t length;
};

template <class Unit>
Unit* Given(Unit* room) {
    if (room == nullptr) {
        throw std::bad_alloc();
    }
    return room;
}

bool Decode(CodePageConverter& converter, std::string_view bytes,
            const ByteStringConversion::RoomForUnits& room) {
    const std::size_t units = converter.MeasureUnits(bytes);
    if (units == 0) {
        return false;
    }
    converter.ToUnits(bytes, Given(room(units)));
    return true;
}

ByteBuffer Encode(CodePageConverter& converter, std::u16string_view text) {
    ByteBuffer buffer(converter.MeasureBytes(text));
    converter.ToBytes(text, buffer.bytes.get());
    return buffer;
}

}  // namespace

CodePageConverter* ByteStringConversion::Converter(std::int32_t codePage) {
    if (const auto known = converters.find(codePage); known != converters.end()) {
        return known->second.get();
    }
    auto converter = OpenCodePage(static_cast<std::uint32_t>(codePage));
    return converter == nullptr
               ? nullptr
               : converters.emplace(codePage, std::move(converter)).first->second.get();
}

bool ByteStringConversion::ToUnicode(std::int32_t codePage, std::string_view bytes,
                                     const RoomForUnits& room) {
    CodePageConverter* const converter = Converter(codePage);
    return converter != nullptr && Decode(*converter, bytes, room);
}

bool ByteStringConversion::ToUnicode(std::int32_t codePage, std::u16string_view byteText,
                                     ByteTextForm form, const RoomForUnits& room) {
    CodePageConverter* const converter = Converter(codePage);
    if (converter == nullptr) {
        return false;
    }
    if (form == ByteTextForm::AnsiText) {
        CodePageConverter* const ansi = Converter(SystemAnsiCodePage);
        return ansi != nullptr && Decode(*converter, Encode(*ansi, byteText).View(), room);
    }
    const ByteBuffer buffer(byteText.size());
    for (std::size_t i = 0; i < byteText.size(); ++i) {
        buffer.bytes[i] = static_cast<char>(byteText[i] & 0xFF);
    }
    return Decode(*converter, buffer.View(), room);
}

bool ByteStringConversion::FromUnicode(std::int32_t codePage, std::u16string_view text,
                                       const RoomForBytes& room) {
    CodePageConverter* const converter = Converter(codePage);
    const std::size_t bytes = converter == nullptr ? 0 : converter->MeasureBytes(text);
    if (bytes == 0) {
        return false;
    }
    converter->ToBytes(text, Given(room(bytes)));
    return true;
}

bool ByteStringConversion::FromUnicode(std::int32_t codePage, std::u16string_view text,
                                       ByteTextForm form, const RoomForUnits& room) {
    CodePageConverter* const converter = Converter(codePage);
    if (converter == nullptr) {
        return false;
    }
    const ByteBuffer buffer = Encode(*converter, text);
    if (form == ByteTextForm::AnsiText) {
        CodePageConverter* const ansi = Converter(SystemAnsiCodePage);
        return ansi != nullptr && Decode(*ansi, buffer.View(), room);
    }
    if (buffer.length == 0) {
        return false;
    }
    char16_t* const units = Given(room(buffer.length));
    for (std::size_t i = 0; i < buffer.length; ++i) {
        units[i] = static_cast<unsigned char>(buffer.bytes[i]);
    }
    return true;
}

}  // namespace generalutilities
