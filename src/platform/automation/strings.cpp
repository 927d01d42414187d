// BSTRs: one allocation each, laid out so that the text is aligned and its byte length stands in
// the four bytes before it:
//
//     | 4 unused | byte length | code units ... | zero unit |
//                                ^ the BSTR

#include <generalutilities/automation/functions.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

namespace generalutilities {

namespace {

constexpr std::size_t HeaderSize = 8;
constexpr std::uint32_t MaxBytes = std::numeric_limits<std::uint32_t>::max() - 16;

char* BlockOf(BSTR string) {
    return reinterpret_cast<char*>(string) - HeaderSize;
}

std::uint32_t ByteLength(BSTR string) {
    if (string == nullptr) {
        return 0;
    }
    std::uint32_t bytes;
    std::memcpy(&bytes, BlockOf(string) + 4, sizeof bytes);
    return bytes;
}

void SetByteLength(char* block, std::uint32_t bytes) {
    std::memcpy(block + 4, &bytes, sizeof bytes);
    // Two zero bytes end the text; for an odd byte length a third keeps the last unit whole.
    std::memset(block + HeaderSize + bytes, 0, 2);
    if (bytes % 2 != 0) {
        block[HeaderSize + bytes + 2] = 0;
    }
}

/// Space for `bytes` bytes of text, closed by zeros, content undefined; null when memory is out.
BSTR Allocate(std::uint32_t bytes) {
    if (bytes > MaxBytes) {
        return nullptr;
    }
    char* block = static_cast<char*>(std::malloc(HeaderSize + bytes + 3));
    if (block == nullptr) {
        return nullptr;
    }
    SetByteLength(block, bytes);
    return reinterpret_cast<BSTR>(block + HeaderSize);
}

}  // namespace

extern "C" {

BSTR SysAllocString(const char16_t* text) noexcept {
    if (text == nullptr) {
        return nullptr;
    }
    const std::size_t length = std::char_traits<char16_t>::length(text);
    return length > MaxBytes / 2 ? nullptr
                                 : SysAllocStringLen(text, static_cast<std::uint32_t>(length));
}

BSTR SysAllocStringLen(const char16_t* text, std::uint32_t length) noexcept {
    if (length > MaxBytes / 2) {
        return nullptr;
    }
    BSTR string = Allocate(length * 2);
    if (string != nullptr && text != nullptr) {
        std::memcpy(string, text, std::size_t{length} * 2);
    }
    return string;
}

BSTR SysAllocStringByteLen(const char* bytes, std::uint32_t length) noexcept {
    BSTR string = Allocate(length);
    if (string != nullptr && bytes != nullptr) {
        std::memcpy(string, bytes, length);
    }
    return string;
}

std::int32_t SysReAllocStringLen(BSTR* string, const char16_t* text,
                                 std::uint32_t length) noexcept {
    if (string == nullptr || length > MaxBytes / 2) {
        return 0;
    }
    if (text != nullptr) {
        // The new text may lie inside the old string, so that goes last.
        BSTR fresh = SysAllocStringLen(text, length);
        if (fresh == nullptr) {
            return 0;
        }
        SysFreeString(*string);
        *string = fresh;
        return 1;
    }
    char* old = *string == nullptr ? nullptr : BlockOf(*string);
    auto* block = static_cast<char*>(std::realloc(old, HeaderSize + std::size_t{length} * 2 + 3));
    if (block == nullptr) {
        return 0;
    }
    SetByteLength(block, length * 2);
    *string = reinterpret_cast<BSTR>(block + HeaderSize);
    return 1;
}

void SysFreeString(BSTR string) noexcept {
    if (string != nullptr) {
        std::free(BlockOf(string));
    }
}

std::uint32_t SysStringLen(BSTR string) noexcept {
    return ByteLength(string) / 2;
}

std::uint32_t SysStringByteLen(BSTR string) noexcept {
    return ByteLength(string);
}

void* CoTaskMemAlloc(std::size_t size) noexcept {
    return std::malloc(size);
}

void CoTaskMemFree(void* memory) noexcept {
    std::free(memory);
}

}  // extern "C"
}  // namespace generalutilities
