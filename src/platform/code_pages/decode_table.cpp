#include "platform/code_pages/decode_table.h"

#include <bit>
#include <cerrno>
#include <iconv.h>
#include <optional>
#include <unicode/ucnv.h>

namespace generalutilities::code_pages {

namespace {

/// What a converter says of one or two bytes taken as a whole text.
struct Decoded {
    enum class Kind { Character, Incomplete, Undefined };
    Kind kind = Kind::Undefined;
    char16_t character = 0;
};

class IcuDecoder {
  public:
    explicit IcuDecoder(const char* name) {
        UErrorCode error = U_ZERO_ERROR;
        converter.reset(ucnv_open(name, &error));
        // Undefined bytes must stop the converter: some pages substitute a character of their own.
        ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                            &error);
        if (U_FAILURE(error)) {
            converter.reset();
        }
    }

    bool IsOpen() const { return converter != nullptr; }

    Decoded Decode(std::string_view bytes) {
        UErrorCode error = U_ZERO_ERROR;
        char16_t units[4];
        ucnv_resetToUnicode(converter.get());
        const std::int32_t length = ucnv_toUChars(converter.get(), units, 4, bytes.data(),
                                                  static_cast<std::int32_t>(bytes.size()), &error);
        if (error == U_TRUNCATED_CHAR_FOUND) {
            return {Decoded::Kind::Incomplete};
        }
        if (U_FAILURE(error) || length != 1) {
            return {};
        }
        return {Decoded::Kind::Character, units[0]};
    }

  private:
    struct Closer {
        void operator()(UConverter* opened) const { ucnv_close(opened); }
    };
    std::unique_ptr<UConverter, Closer> converter;
};

class IconvDecoder {
  public:
    explicit IconvDecoder(const char* name)
        : converter(iconv_open(std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE",
                               name)) {}
    ~IconvDecoder() {
        if (IsOpen()) {
            iconv_close(converter);
        }
    }
    IconvDecoder(const IconvDecoder&) = delete;
    IconvDecoder& operator=(const IconvDecoder&) = delete;

    bool IsOpen() const { return converter != reinterpret_cast<iconv_t>(-1); }

    Decoded Decode(std::string_view bytes) {
        char16_t units[4];
        char* in = const_cast<char*>(bytes.data());
        char* out = reinterpret_cast<char*>(units);
        std::size_t inLeft = bytes.size();
        std::size_t outLeft = sizeof units;
        iconv(converter, nullptr, nullptr, nullptr, nullptr);
        if (iconv(converter, &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1)) {
            return {errno == EINVAL ? Decoded::Kind::Incomplete : Decoded::Kind::Undefined};
        }
        if (outLeft != sizeof units - sizeof(char16_t)) {
            return {};
        }
        return {Decoded::Kind::Character, units[0]};
    }

  private:
    iconv_t converter;
};

}  // namespace

template <class Decoder>
std::unique_ptr<const DecodeTable> DecodeTable::Build(Decoder& decoder) {
    if (!decoder.IsOpen()) {
        return nullptr;
    }
    auto table = std::make_unique<DecodeTable>();
    for (unsigned byte = 0; byte < 0x80; ++byte) {
        table->single[byte] = static_cast<char16_t>(byte);
    }
    for (unsigned lead = 0x80; lead < 0x100; ++lead) {
        char bytes[2] = {static_cast<char>(lead), 0};
        const Decoded decoded = decoder.Decode({bytes, 1});
        if (decoded.kind != Decoded::Kind::Incomplete) {
            table->single[lead] =
                decoded.kind == Decoded::Kind::Character ? decoded.character : Replacement;
            continue;
        }
        table->single[lead] = None;
        table->pairs.resize(std::size_t{0x80} << 8, None);
        for (unsigned trail = 0; trail < 0x100; ++trail) {
            bytes[1] = static_cast<char>(trail);
            const Decoded pair = decoder.Decode({bytes, 2});
            if (pair.kind == Decoded::Kind::Character) {
                table->pairs[PairIndex(static_cast<unsigned char>(lead),
                                       static_cast<unsigned char>(trail))] = pair.character;
            }
        }
    }
    return table;
}

std::unique_ptr<const DecodeTable> DecodeTable::FromIcu(const char* converterName) {
    IcuDecoder decoder(converterName);
    return Build(decoder);
}

std::unique_ptr<const DecodeTable> DecodeTable::FromIconv(const char* charsetName) {
    IconvDecoder decoder(charsetName);
    return Build(decoder);
}

std::unique_ptr<const DecodeTable> DecodeTable::Symbol() {
    auto table = std::make_unique<DecodeTable>();
    for (unsigned byte = 0; byte < 0x100; ++byte) {
        table->single[byte] = static_cast<char16_t>(byte < 0x20 ? byte : 0xF000 + byte);
    }
    return table;
}

void DecodeTable::AppendDecoded(std::string_view bytes, std::u16string& text) const {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        char16_t character = single[lead];
        if (character == None) {
            character = Replacement;
            if (i + 1 < bytes.size()) {
                const auto trail = static_cast<unsigned char>(bytes[i + 1]);
                const char16_t pair = pairs[PairIndex(lead, trail)];
                // An undefined pair is one replacement character, except that a second byte below
                // 0x80 is a character of its own and is not swallowed.
                if (pair != None) {
                    character = pair;
                }
                if (pair != None || trail >= 0x80) {
                    ++i;
                }
            }
        }
        text.push_back(character);
    }
}

}  // namespace generalutilities::code_pages
