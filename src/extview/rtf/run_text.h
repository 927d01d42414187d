#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace generalutilities::rtf {

/// The characters of a text run. Its memory serves run after run and has room behind the last
/// character, so that whole blocks are written whatever the length: most pieces of text are shorter
/// than the time that a string takes to grow by them.
class RunText {
  public:
    std::u16string_view View() const { return {units.get(), length}; }

    void Clear() { length = 0; }
    /// Also gives the memory back.
    void Release() { *this = RunText(); }

    void Add(char16_t unit) {
        Reserve(1);
        units[length++] = unit;
    }
    void Add(std::u16string_view text) {
        Reserve(text.size());
        std::copy_n(text.data(), text.size(), units.get() + length);
        length += text.size();
    }
    /// Adds each byte as one character, with its sign extended: 0xE9 becomes U+FFE9. Reads up to
    /// `Block` bytes more, which mean nothing.
    void AddSignExtended(std::string_view bytes) {
        Reserve(bytes.size());
        for (std::size_t i = 0; i < bytes.size(); i += Block) {
            Widen(bytes.data() + i, units.get() + length + i);
        }
        length += bytes.size();
    }

    static constexpr std::size_t Block = 16;

  private:
    static void Widen(const char* bytes, char16_t* out) {
#if defined(__SSE2__)
        const __m128i in = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
        const __m128i low = _mm_srai_epi16(_mm_unpacklo_epi8(in, in), 8);
        const __m128i high = _mm_srai_epi16(_mm_unpackhi_epi8(in, in), 8);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), low);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + Block / 2), high);
#else
        for (std::size_t i = 0; i < Block; ++i) {
            out[i] = static_cast<char16_t>(static_cast<signed char>(bytes[i]));
        }
#endif
    }

    /// Makes room for so many more, and for a block.
    void Reserve(std::size_t more) {
        if (capacity - length < more + Block) {
            Grow(more);
        }
    }
    void Grow(std::size_t more) {
        const std::size_t wanted = std::max(2 * capacity, length + more + Block);
        auto larger = std::make_unique_for_overwrite<char16_t[]>(wanted);
        std::copy_n(units.get(), length, larger.get());
        units = std::move(larger);
        capacity = wanted;
    }

    std::unique_ptr<char16_t[]> units;
    std::size_t length = 0;
    std::size_t capacity = 0;
};

}  // namespace generalutilities::rtf
