#include <generalutilities/text/random_text.h>

namespace generalutilities {

void GenerateText(CharSet& set, RandomSource& random, char16_t* out, std::size_t length) {
    const auto scale = static_cast<float>(set.Count() - 1);
    for (char16_t* const end = out + length; out < end; ++out) {
        const double place = random.Next() / static_cast<double>(RandomSource::Largest);
        *out = static_cast<char16_t>(set.At(static_cast<std::uint32_t>(place * scale)));
    }
}

}  // namespace generalutilities
