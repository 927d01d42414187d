// Every code page on any bytes and any text. The first byte chooses the page; the rest is decoded
// as bytes and encoded as text. What a page holds must come back the same, and where the decoded
// bytes are all defined and in the page, so must the text that they make.

#include <generalutilities/code_pages.h>

#include "text_input.h"

#include <cstring>
#include <memory>
#include <vector>

namespace {

using namespace generalutilities;

/// Room of exactly the measured size, so that a byte too many is seen.
template <class Unit>
struct Room {
    explicit Room(std::size_t size) : units(std::make_unique<Unit[]>(size)), length(size) {}
    std::unique_ptr<Unit[]> units;
    std::size_t length;
};

std::u16string Decode(CodePageConverter& page, std::string_view bytes) {
    const Room<char16_t> room(page.MeasureUnits(bytes));
    page.ToUnits(bytes, room.units.get());
    return {room.units.get(), room.length};
}

std::string Encode(CodePageConverter& page, std::u16string_view text) {
    const Room<char> room(page.MeasureBytes(text));
    page.ToBytes(text, room.units.get());
    return {room.units.get(), room.length};
}

void CheckText(CodePageConverter& page, std::u16string_view text, bool isOneToOne) {
    const std::string bytes = Encode(page, text);
    const std::size_t foreign = page.FindForeignUnit(text);
    Require(foreign == CodePageConverter::NotFound || foreign < text.size());
    if (foreign == CodePageConverter::NotFound && isOneToOne) {
        Require(Decode(page, bytes) == text);
        Require(page.FindUndefinedBytes(bytes) == CodePageConverter::NotFound);
    }
    Require(Encode(page, text) == bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const CodePageDescription& description = KnownCodePages()[data[0] % KnownCodePages().size()];
    const auto page = OpenCodePage(description.number);
    if (page == nullptr) {
        return 0;
    }
    // ISCII reads some characters only beside others.
    const bool isOneToOne = description.number / 100 != 570;
    const std::vector<char> copy(data + 1, data + size);
    const std::string_view bytes(copy.data(), copy.size());

    const std::u16string text = Decode(*page, bytes);
    const std::size_t undefined = page->FindUndefinedBytes(bytes);
    Require(undefined == CodePageConverter::NotFound || undefined < bytes.size());
    Require(page->OffsetOfUnit(bytes, text.size()) == bytes.size());
    for (std::size_t i = 0; i < text.size() && i < 40; ++i) {
        Require(page->OffsetOfUnit(bytes, i) < bytes.size());
    }
    Require(Decode(*page, bytes) == text);
    CheckText(*page, text, isOneToOne);
    CheckText(*page, TextFrom(data + 1, size - 1), isOneToOne);
    return 0;
}
