#include <generalutilities/code_pages.h>
#include <generalutilities/text/code_page_fit.h>

namespace generalutilities {

namespace {

constexpr std::uint32_t Utf16 = 1200;

// The pages that have a bit in the code page fields of fonts, by bit.
constexpr std::uint32_t ScriptPages[] = {1252, 1250, 1251, 1253, 1254, 1255, 1256, 1257,
                                         1258, 874,  932,  936,  949,  950,  1361};

}  // namespace

bool FitsCodePage(std::u16string_view text, std::uint32_t codePage) {
    const auto converter = OpenCodePage(codePage == 0 ? SystemAnsiCodePage : codePage);
    return converter == nullptr || codePage == Utf16 ||
           converter->FindForeignUnit(text) == CodePageConverter::NotFound;
}

std::vector<std::uint32_t> CodePagesOfText(std::u16string_view text) {
    std::vector<std::uint32_t> result;
    for (const std::uint32_t page : ScriptPages) {
        const auto converter = OpenCodePage(page);
        if (!text.empty() && converter != nullptr &&
            converter->FindForeignUnit(text) == CodePageConverter::NotFound) {
            result.push_back(page);
        }
    }
    return result;
}

}  // namespace generalutilities
