#include "platform/code_pages/stream_converter.h"

#include <algorithm>
#include <unicode/ucnv_cb.h>
#include <utility>

namespace generalutilities::code_pages {

namespace {

constexpr std::size_t ChunkSize = 1024;
constexpr char16_t Replacement[] = u"\uFFFD";
constexpr char16_t QuestionMark[] = u"?";

void ReplaceUndefined(const void*, UConverterToUnicodeArgs* arguments, const char*, std::int32_t,
                      UConverterCallbackReason reason, UErrorCode* error) {
    if (reason <= UCNV_IRREGULAR) {
        *error = U_ZERO_ERROR;
        ucnv_cbToUWriteUChars(arguments, Replacement, 1, 0, error);
    }
}

/// One mark for each code unit. The converter's own ways all drop characters that may be ignored,
/// such as U+200B.
void ReplaceForeign(const void* mark, UConverterFromUnicodeArgs* arguments, const UChar*,
                    std::int32_t length, UChar32, UConverterCallbackReason reason,
                    UErrorCode* error) {
    if (reason > UCNV_IRREGULAR) {
        return;
    }
    *error = U_ZERO_ERROR;
    for (; length > 0 && U_SUCCESS(*error); --length) {
        const auto* first = static_cast<const char16_t*>(mark);
        ucnv_cbFromUWriteUChars(arguments, &first, first + 1, 0, error);
    }
}

/// Leaves the error as it is, which stops the converter.
void StopAtForeign(const void*, UConverterFromUnicodeArgs*, const UChar*, std::int32_t, UChar32,
                   UConverterCallbackReason, UErrorCode*) {}

/// Decodes from the start and hands out chunk by chunk: units, where each comes from (counted from
/// the start), how many. Until the end, an error, or until `take` says false. Gives the error and
/// how many bytes were read.
template <class Take>
std::pair<UErrorCode, std::size_t> Decode(UConverter& converter, UConverterToUCallback callback,
                                          std::string_view bytes, Take&& take) {
    UErrorCode error = U_ZERO_ERROR;
    ucnv_resetToUnicode(&converter);
    ucnv_setToUCallBack(&converter, callback, nullptr, nullptr, nullptr, &error);
    const char* source = bytes.data();
    const char* const end = source + bytes.size();
    char16_t units[ChunkSize];
    std::int32_t offsets[ChunkSize];
    do {
        // Chunks of the source too, since the offsets are of 32 bits.
        const char* const start = source;
        const char* const stop = start + std::min<std::size_t>(ChunkSize * 4, end - start);
        char16_t* target = units;
        error = U_ZERO_ERROR;
        ucnv_toUnicode(&converter, &target, units + ChunkSize, &source, stop, offsets, stop == end,
                       &error);
        const auto done = static_cast<std::size_t>(start - bytes.data());
        if (!take(units, offsets, static_cast<std::size_t>(target - units), done)) {
            break;
        }
    } while (error == U_BUFFER_OVERFLOW_ERROR || (U_SUCCESS(error) && source != end));
    return {error, static_cast<std::size_t>(source - bytes.data())};
}

/// Encodes from the start and hands out chunk by chunk: bytes, how many. Gives the error and how
/// many units were read.
template <class Take>
std::pair<UErrorCode, std::size_t> Encode(UConverter& converter, UConverterFromUCallback callback,
                                          const char16_t* mark, std::u16string_view text,
                                          Take&& take) {
    UErrorCode error = U_ZERO_ERROR;
    ucnv_resetFromUnicode(&converter);
    ucnv_setFromUCallBack(&converter, callback, mark, nullptr, nullptr, &error);
    const bool closes = ucnv_getType(&converter) != UCNV_HZ;
    const char16_t* source = text.data();
    const char16_t* const end = source + text.size();
    char bytes[ChunkSize];
    do {
        // The converter refuses a source of more than 2^30 units.
        const char16_t* const stop = source + std::min<std::size_t>(ChunkSize * 4, end - source);
        char* target = bytes;
        error = U_ZERO_ERROR;
        ucnv_fromUnicode(&converter, &target, bytes + ChunkSize, &source, stop, nullptr,
                         closes && stop == end, &error);
        take(bytes, static_cast<std::size_t>(target - bytes));
    } while (error == U_BUFFER_OVERFLOW_ERROR || (U_SUCCESS(error) && source != end));
    const auto read = static_cast<std::size_t>(source - text.data());
    if (!closes && U_SUCCESS(error)) {
        // This converter leaves the last shift open. A line end closes it, and is not handed out.
        const char16_t lineEnd[] = u"\n";
        const char16_t* next = lineEnd;
        char* target = bytes;
        ucnv_fromUnicode(&converter, &target, bytes + ChunkSize, &next, lineEnd + 1, nullptr, true,
                         &error);
        if (U_SUCCESS(error)) {
            take(bytes, static_cast<std::size_t>(target - bytes - 1));
        }
    }
    return {error, read};
}

}  // namespace

std::unique_ptr<CodePageConverter> StreamConverter::Open(const char* converterName) {
    IcuHandle opened = OpenIcu(converterName);
    return opened == nullptr ? nullptr : std::make_unique<StreamConverter>(std::move(opened));
}

StreamConverter::StreamConverter(IcuHandle opened)
    : converter(std::move(opened)), mark(QuestionMark) {
    ucnv_setFallback(converter.get(), false);
    if (FindForeignUnit(Replacement) == NotFound) {
        mark = Replacement;
    }
}

std::size_t StreamConverter::MeasureUnits(std::string_view bytes) {
    std::size_t total = 0;
    Decode(*converter, ReplaceUndefined, bytes,
           [&](const char16_t*, const std::int32_t*, std::size_t count, std::size_t) {
               total += count;
               return true;
           });
    return total;
}

void StreamConverter::ToUnits(std::string_view bytes, char16_t* units) {
    Decode(*converter, ReplaceUndefined, bytes,
           [&](const char16_t* chunk, const std::int32_t*, std::size_t count, std::size_t) {
               units = std::copy_n(chunk, count, units);
               return true;
           });
}

std::size_t StreamConverter::MeasureBytes(std::u16string_view text) {
    std::size_t total = 0;
    Encode(*converter, ReplaceForeign, mark, text,
           [&](const char*, std::size_t count) { total += count; });
    return total;
}

void StreamConverter::ToBytes(std::u16string_view text, char* bytes) {
    Encode(*converter, ReplaceForeign, mark, text,
           [&](const char* chunk, std::size_t count) { bytes = std::copy_n(chunk, count, bytes); });
}

std::size_t StreamConverter::FindUndefinedBytes(std::string_view bytes) {
    const auto [error, end] =
        Decode(*converter, UCNV_TO_U_CALLBACK_STOP, bytes,
               [](const char16_t*, const std::int32_t*, std::size_t, std::size_t) { return true; });
    if (U_SUCCESS(error)) {
        return NotFound;
    }
    char invalid[32];
    std::int8_t length = sizeof invalid;
    UErrorCode ignored = U_ZERO_ERROR;
    ucnv_getInvalidChars(converter.get(), invalid, &length, &ignored);
    return end - std::min<std::size_t>(end, static_cast<std::size_t>(length));
}

std::size_t StreamConverter::FindForeignUnit(std::u16string_view text) {
    const auto [error, end] =
        Encode(*converter, StopAtForeign, nullptr, text, [](const char*, std::size_t) {});
    if (U_SUCCESS(error)) {
        return NotFound;
    }
    char16_t invalid[32];
    std::int8_t length = 32;
    UErrorCode ignored = U_ZERO_ERROR;
    ucnv_getInvalidUChars(converter.get(), invalid, &length, &ignored);
    return end - std::min<std::size_t>(end, static_cast<std::size_t>(length));
}

std::size_t StreamConverter::OffsetOfUnit(std::string_view bytes, std::size_t index) {
    std::size_t offset = bytes.size();
    std::size_t before = 0;
    Decode(*converter, ReplaceUndefined, bytes,
           [&](const char16_t*, const std::int32_t* offsets, std::size_t count, std::size_t done) {
               if (index - before < count) {
                   // A character that began in the chunk before has a negative offset.
                   const std::ptrdiff_t within = offsets[index - before];
                   offset = within < 0 && done < static_cast<std::size_t>(-within)
                                ? 0
                                : done + static_cast<std::size_t>(within);
                   return false;
               }
               before += count;
               return true;
           });
    return offset;
}

}  // namespace generalutilities::code_pages
