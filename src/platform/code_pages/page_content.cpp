#include "platform/code_pages/page_content.h"

#include "platform/code_pages/icu_handle.h"

#include <bit>
#include <cerrno>
#include <iconv.h>
#include <string_view>

namespace generalutilities::code_pages {

namespace {

constexpr std::size_t UnitCount = 0x10000;

/// What a converter says of one or two bytes taken as a whole text: a character, `Lead` where more
/// bytes are wanted, or `Undefined`.
class IcuDecoder {
  public:
    explicit IcuDecoder(UConverter& opened) : converter(opened) {}

    char16_t Decode(std::string_view bytes) {
        UErrorCode error = U_ZERO_ERROR;
        char16_t units[4];
        ucnv_resetToUnicode(&converter);
        const std::int32_t length = ucnv_toUChars(&converter, units, 4, bytes.data(),
                                                  static_cast<std::int32_t>(bytes.size()), &error);
        if (error == U_TRUNCATED_CHAR_FOUND) {
            return PageContent::Lead;
        }
        return U_FAILURE(error) || length != 1 ? PageContent::Undefined : units[0];
    }

  private:
    UConverter& converter;
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

    char16_t Decode(std::string_view bytes) {
        char16_t units[4];
        char* in = const_cast<char*>(bytes.data());
        char* out = reinterpret_cast<char*>(units);
        std::size_t inLeft = bytes.size();
        std::size_t outLeft = sizeof units;
        iconv(converter, nullptr, nullptr, nullptr, nullptr);
        if (iconv(converter, &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1)) {
            return errno == EINVAL ? PageContent::Lead : PageContent::Undefined;
        }
        return outLeft != sizeof units - sizeof(char16_t) ? PageContent::Undefined : units[0];
    }

  private:
    iconv_t converter;
};

/// Fills `single` and `pairs`.
template <class Decoder>
void ReadCharacters(Decoder& decoder, bool ownAscii, PageContent& page) {
    char bytes[2] = {'A', 0};
    const bool holdsAscii = decoder.Decode({bytes, 1}) == u'A';
    for (unsigned lead = 0; lead < 0x100; ++lead) {
        bytes[0] = static_cast<char>(lead);
        const bool isControl = lead < 0x20 || lead == 0x7F;
        page.single[lead] = lead < 0x80 && holdsAscii && (isControl || ownAscii)
                                ? static_cast<char16_t>(lead)
                                : decoder.Decode({bytes, 1});
        if (page.single[lead] != PageContent::Lead) {
            continue;
        }
        if (lead < 0x80) {
            page.single[lead] = PageContent::Undefined;
            continue;
        }
        page.pairs.resize(std::size_t{0x80} << 8, PageContent::Undefined);
        for (unsigned trail = 0; trail < 0x100; ++trail) {
            bytes[1] = static_cast<char>(trail);
            const char16_t character = decoder.Decode({bytes, 2});
            if (character != PageContent::Lead) {
                page.pairs[PageContent::PairIndex(static_cast<unsigned char>(lead),
                                                  static_cast<unsigned char>(trail))] = character;
            }
        }
    }
}

/// What a code decodes to.
char16_t CharacterOf(const PageContent& page, std::uint16_t code) {
    if (code < 0x100) {
        return page.single[code];
    }
    return code < 0x8000 || page.pairs.empty() ? PageContent::Undefined
                                               : page.pairs[code - 0x8000u];
}

/// The codes by turning the decoding round; where several bytes make one character, the first do.
void InvertCharacters(PageContent& page) {
    page.codes.assign(UnitCount, PageContent::NoCode);
    const auto enter = [&page](char16_t character, std::size_t code) {
        if (character < PageContent::Undefined && page.codes[character] == PageContent::NoCode) {
            page.codes[character] = static_cast<std::uint16_t>(code);
        }
    };
    for (std::size_t byte = 0; byte < 0x100; ++byte) {
        enter(page.single[byte], byte);
    }
    for (std::size_t pair = 0; pair < page.pairs.size(); ++pair) {
        enter(page.pairs[pair], 0x8000 + pair);
    }
}

/// Whether every character is one byte or a pair of them, without any state.
bool FitsTables(const UConverter& converter) {
    switch (ucnv_getType(&converter)) {
        case UCNV_SBCS:
        case UCNV_LATIN_1:
        case UCNV_US_ASCII:
            return true;
        case UCNV_MBCS:
            return ucnv_getMaxCharSize(&converter) <= 2;
        default:
            return false;
    }
}

/// Skips what is not in the page. The converter's own ways all pass over characters that may be
/// ignored, such as U+200B, as if they were in it.
void SkipForeign(const void*, UConverterFromUnicodeArgs*, const UChar*, std::int32_t, UChar32,
                 UConverterCallbackReason reason, UErrorCode* error) {
    if (reason <= UCNV_IRREGULAR) {
        *error = U_ZERO_ERROR;
    }
}

/// The codes as the converter gives them, which knows best where several bytes make one character.
/// A code that decodes to another character is an approximation and left out: private use
/// characters have them even while fallbacks are off.
void ReadCodes(UConverter& converter, PageContent& page) {
    page.codes.assign(UnitCount, PageContent::NoCode);
    std::vector<char16_t> units;
    for (std::size_t unit = 0; unit < PageContent::Undefined; ++unit) {
        if ((unit & 0xF800) != 0xD800) {
            units.push_back(static_cast<char16_t>(unit));
        }
    }
    UErrorCode error = U_ZERO_ERROR;
    ucnv_setFallback(&converter, false);
    ucnv_setFromUCallBack(&converter, SkipForeign, nullptr, nullptr, nullptr, &error);
    std::vector<char> bytes(units.size() * 2);
    std::vector<std::int32_t> sources(bytes.size());
    const char16_t* source = units.data();
    char* target = bytes.data();
    ucnv_fromUnicode(&converter, &target, bytes.data() + bytes.size(), &source,
                     units.data() + units.size(), sources.data(), true, &error);
    const auto length = static_cast<std::size_t>(target - bytes.data());
    for (std::size_t i = 0; U_SUCCESS(error) && i < length; ++i) {
        const char16_t unit = units[static_cast<std::size_t>(sources[i])];
        std::uint16_t code = static_cast<unsigned char>(bytes[i]);
        if (i + 1 < length && sources[i + 1] == sources[i]) {
            code = static_cast<std::uint16_t>(code << 8 | static_cast<unsigned char>(bytes[++i]));
        }
        if (CharacterOf(page, code) == unit) {
            page.codes[unit] = code;
        }
    }
    for (std::uint16_t byte = 0; byte < 0x80; ++byte) {
        if (page.single[byte] == byte) {
            page.codes[byte] = byte;
        }
    }
}

}  // namespace

std::unique_ptr<const PageContent> ReadIcuPage(const char* converterName) {
    const IcuHandle converter = OpenIcu(converterName);
    if (converter == nullptr || !FitsTables(*converter)) {
        return nullptr;
    }
    // Undefined bytes must stop the converter: some pages substitute a character of their own.
    UErrorCode error = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &error);
    auto page = std::make_unique<PageContent>();
    IcuDecoder decoder(*converter);
    ReadCharacters(decoder, false, *page);
    ReadCodes(*converter, *page);
    return page;
}

std::unique_ptr<const PageContent> ReadIconvPage(const char* charsetName) {
    IconvDecoder decoder(charsetName);
    if (!decoder.IsOpen()) {
        return nullptr;
    }
    auto page = std::make_unique<PageContent>();
    ReadCharacters(decoder, true, *page);
    InvertCharacters(*page);
    return page;
}

std::unique_ptr<const PageContent> SymbolPage() {
    auto page = std::make_unique<PageContent>();
    for (unsigned byte = 0; byte < 0x100; ++byte) {
        page->single[byte] = static_cast<char16_t>(byte < 0x20 ? byte : 0xF000 + byte);
    }
    InvertCharacters(*page);
    return page;
}

}  // namespace generalutilities::code_pages
