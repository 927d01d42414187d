#include "platform/code_pages/code_pages.h"

#include "platform/code_pages/double_byte_page.h"
#include "platform/code_pages/single_byte_page.h"
#include "platform/code_pages/stream_converter.h"

#include <algorithm>
#include <iterator>
#include <mutex>

namespace generalutilities {

namespace {

using Service = CodePageService;

// The names were chosen by their tables, not by their looks: ICU's `cp874`, `cp949` and `cp950` are
// IBM's pages of these numbers.
constexpr CodePageDescription Pages[] = {
    {37, Service::Icu, "ibm-37", "EBCDIC US, Canada"},
    {42, Service::BuiltIn, "", "Symbol"},
    {437, Service::Icu, "ibm-437", "US (DOS)"},
    {500, Service::Icu, "ibm-500", "EBCDIC International"},
    {708, Service::None, "", "Arabic (ASMO 708)"},
    {720, Service::Icu, "ibm-720", "Arabic (DOS)"},
    {737, Service::Icu, "ibm-737", "Greek (DOS)"},
    {775, Service::Icu, "ibm-775", "Baltic (DOS)"},
    {850, Service::Icu, "ibm-850", "Western (DOS)"},
    {852, Service::Icu, "ibm-852", "Central European (DOS)"},
    {855, Service::Icu, "ibm-855", "Cyrillic (DOS)"},
    {857, Service::Icu, "ibm-857", "Turkish (DOS)"},
    {858, Service::Icu, "ibm-858", "Western with euro (DOS)"},
    {860, Service::Icu, "ibm-860", "Portuguese (DOS)"},
    {861, Service::Icu, "ibm-861", "Icelandic (DOS)"},
    {862, Service::Icu, "ibm-862", "Hebrew (DOS)"},
    {863, Service::Icu, "ibm-863", "French Canadian (DOS)"},
    {864, Service::Icu, "ibm-864", "Arabic with forms (DOS)"},
    {865, Service::Icu, "ibm-865", "Nordic (DOS)"},
    {866, Service::Icu, "ibm-866", "Russian (DOS)"},
    {869, Service::Icu, "ibm-869", "Modern Greek (DOS)"},
    {870, Service::Icu, "ibm-870", "EBCDIC Central European"},
    {874, Service::Icu, "windows-874", "Thai (Windows)"},
    {875, Service::Icu, "ibm-875", "EBCDIC Modern Greek"},
    {932, Service::Icu, "windows-932", "Japanese (Windows)"},
    {936, Service::Icu, "windows-936", "Simplified Chinese (Windows)"},
    {949, Service::Icu, "windows-949", "Korean (Windows)"},
    {950, Service::Icu, "windows-950", "Traditional Chinese (Windows)"},
    {1026, Service::Icu, "ibm-1026", "EBCDIC Turkish"},
    {1047, Service::Icu, "ibm-1047", "EBCDIC Latin 1 (open systems)"},
    {1140, Service::Icu, "ibm-1140", "EBCDIC US, Canada with euro"},
    {1141, Service::Icu, "ibm-1141", "EBCDIC German with euro"},
    {1142, Service::Icu, "ibm-1142", "EBCDIC Danish, Norwegian with euro"},
    {1143, Service::Icu, "ibm-1143", "EBCDIC Finnish, Swedish with euro"},
    {1144, Service::Icu, "ibm-1144", "EBCDIC Italian with euro"},
    {1145, Service::Icu, "ibm-1145", "EBCDIC Spanish with euro"},
    {1146, Service::Icu, "ibm-1146", "EBCDIC UK with euro"},
    {1147, Service::Icu, "ibm-1147", "EBCDIC French with euro"},
    {1148, Service::Icu, "ibm-1148", "EBCDIC International with euro"},
    {1149, Service::Icu, "ibm-1149", "EBCDIC Icelandic with euro"},
    {1200, Service::Icu, "UTF-16LE", "UTF-16, little endian"},
    {1201, Service::Icu, "UTF-16BE", "UTF-16, big endian"},
    {1250, Service::Icu, "windows-1250", "Central European (Windows)"},
    {1251, Service::Icu, "windows-1251", "Cyrillic (Windows)"},
    {1252, Service::Icu, "windows-1252", "Western (Windows)"},
    {1253, Service::Icu, "windows-1253", "Greek (Windows)"},
    {1254, Service::Icu, "windows-1254", "Turkish (Windows)"},
    {1255, Service::Icu, "windows-1255", "Hebrew (Windows)"},
    {1256, Service::Icu, "windows-1256", "Arabic (Windows)"},
    {1257, Service::Icu, "windows-1257", "Baltic (Windows)"},
    {1258, Service::Icu, "windows-1258", "Vietnamese (Windows)"},
    {1361, Service::Iconv, "JOHAB", "Korean (Johab)"},
    {10000, Service::Icu, "windows-10000", "Western (Mac)"},
    {10001, Service::None, "", "Japanese (Mac)"},
    {10002, Service::None, "", "Traditional Chinese (Mac)"},
    {10003, Service::None, "", "Korean (Mac)"},
    {10004, Service::None, "", "Arabic (Mac)"},
    {10005, Service::None, "", "Hebrew (Mac)"},
    {10006, Service::Icu, "windows-10006", "Greek (Mac)"},
    {10007, Service::Icu, "windows-10007", "Cyrillic (Mac)"},
    {10008, Service::None, "", "Simplified Chinese (Mac)"},
    {10010, Service::None, "", "Romanian (Mac)"},
    {10017, Service::Iconv, "MAC-UK", "Ukrainian (Mac)"},
    {10021, Service::None, "", "Thai (Mac)"},
    {10029, Service::Icu, "windows-10029", "Central European (Mac)"},
    {10079, Service::Iconv, "MAC-IS", "Icelandic (Mac)"},
    {10081, Service::Icu, "windows-10081", "Turkish (Mac)"},
    {10082, Service::None, "", "Croatian (Mac)"},
    {12000, Service::Icu, "UTF-32LE", "UTF-32, little endian"},
    {12001, Service::Icu, "UTF-32BE", "UTF-32, big endian"},
    {20127, Service::Icu, "US-ASCII", "ASCII"},
    {20273, Service::Icu, "ibm-273", "EBCDIC German"},
    {20277, Service::Icu, "ibm-277", "EBCDIC Danish, Norwegian"},
    {20278, Service::Icu, "ibm-278", "EBCDIC Finnish, Swedish"},
    {20280, Service::Icu, "ibm-280", "EBCDIC Italian"},
    {20284, Service::Icu, "ibm-284", "EBCDIC Spanish"},
    {20285, Service::Icu, "ibm-285", "EBCDIC UK"},
    {20290, Service::Icu, "ibm-290", "EBCDIC Japanese katakana"},
    {20297, Service::Icu, "ibm-297", "EBCDIC French"},
    {20420, Service::Icu, "ibm-420", "EBCDIC Arabic"},
    {20424, Service::Icu, "ibm-424", "EBCDIC Hebrew"},
    {20838, Service::Icu, "ibm-838", "EBCDIC Thai"},
    {20866, Service::Icu, "KOI8-R", "Russian (KOI8-R)"},
    {20871, Service::Icu, "ibm-871", "EBCDIC Icelandic"},
    {20932, Service::Icu, "EUC-JP", "Japanese (JIS X 0208 and 0212)"},
    {20936, Service::Icu, "EUC-CN", "Simplified Chinese (GB 2312)"},
    {20949, Service::Icu, "EUC-KR", "Korean (Wansung)"},
    {21025, Service::Icu, "ibm-1025", "EBCDIC Cyrillic"},
    {21866, Service::Icu, "KOI8-U", "Ukrainian (KOI8-U)"},
    {28591, Service::Icu, "ISO-8859-1", "Western (ISO 8859-1)"},
    {28592, Service::Icu, "ISO-8859-2", "Central European (ISO 8859-2)"},
    {28593, Service::Icu, "ISO-8859-3", "South European (ISO 8859-3)"},
    {28594, Service::Icu, "ISO-8859-4", "Baltic (ISO 8859-4)"},
    {28595, Service::Icu, "ISO-8859-5", "Cyrillic (ISO 8859-5)"},
    {28596, Service::Icu, "ISO-8859-6", "Arabic (ISO 8859-6)"},
    {28597, Service::Icu, "ISO-8859-7", "Greek (ISO 8859-7)"},
    {28598, Service::Icu, "ISO-8859-8", "Hebrew, visual order (ISO 8859-8)"},
    {28599, Service::Icu, "ISO-8859-9", "Turkish (ISO 8859-9)"},
    {28603, Service::Icu, "ISO-8859-13", "Estonian (ISO 8859-13)"},
    {28605, Service::Icu, "ISO-8859-15", "Western with euro (ISO 8859-15)"},
    {38598, Service::Icu, "ISO-8859-8", "Hebrew, logical order (ISO 8859-8)"},
    {50220, Service::Icu, "ISO_2022,locale=ja,version=0", "Japanese (ISO 2022)"},
    {50221, Service::Icu, "ISO_2022,locale=ja,version=1", "Japanese (ISO 2022, escaped katakana)"},
    {50222, Service::Icu, "ISO_2022,locale=ja,version=3", "Japanese (ISO 2022, shifted katakana)"},
    {50225, Service::Icu, "ISO-2022-KR", "Korean (ISO 2022)"},
    {50227, Service::Icu, "ISO-2022-CN", "Simplified Chinese (ISO 2022)"},
    {50229, Service::None, "", "Traditional Chinese (ISO 2022)"},
    {51932, Service::Icu, "EUC-JP", "Japanese (EUC)"},
    {51936, Service::Icu, "EUC-CN", "Simplified Chinese (EUC)"},
    {51949, Service::Icu, "EUC-KR", "Korean (EUC)"},
    {51950, Service::Icu, "EUC-TW", "Traditional Chinese (EUC)"},
    {52936, Service::Icu, "HZ", "Simplified Chinese (HZ)"},
    {54936, Service::Icu, "gb18030", "Chinese (GB 18030)"},
    {57002, Service::Icu, "ISCII,version=0", "Devanagari (ISCII)"},
    {57003, Service::Icu, "ISCII,version=1", "Bengali (ISCII)"},
    {57004, Service::Icu, "ISCII,version=5", "Tamil (ISCII)"},
    {57005, Service::Icu, "ISCII,version=6", "Telugu (ISCII)"},
    {57006, Service::Icu, "ISCII,version=1", "Assamese (ISCII)"},
    {57007, Service::Icu, "ISCII,version=4", "Oriya (ISCII)"},
    {57008, Service::Icu, "ISCII,version=7", "Kannada (ISCII)"},
    {57009, Service::Icu, "ISCII,version=8", "Malayalam (ISCII)"},
    {57010, Service::Icu, "ISCII,version=3", "Gujarati (ISCII)"},
    {57011, Service::Icu, "ISCII,version=2", "Gurmukhi (ISCII)"},
    {65000, Service::Icu, "UTF-7", "UTF-7"},
    {65001, Service::Icu, "UTF-8", "UTF-8"},
};
static_assert(std::ranges::is_sorted(Pages, {}, &CodePageDescription::number));

/// The constants of a page once somebody has asked for it: one of the two tables, or neither.
struct LoadedPage {
    std::once_flag once;
    std::unique_ptr<const code_pages::SingleByteTable> single;
    std::unique_ptr<const code_pages::DoubleByteTable> pairs;
};
LoadedPage loadedPages[std::size(Pages)];

std::unique_ptr<const code_pages::PageContent> Read(const CodePageDescription& page) {
    switch (page.service) {
        case Service::None:
            return nullptr;
        case Service::Icu:
            return code_pages::ReadIcuPage(page.converter);
        case Service::Iconv:
            return code_pages::ReadIconvPage(page.converter);
        case Service::BuiltIn:
            return code_pages::SymbolPage();
    }
    return nullptr;
}

/// The row of a number; null for an unknown one.
const CodePageDescription* FindPage(std::uint32_t number) {
    const auto* const row =
        std::ranges::lower_bound(Pages, number, {}, &CodePageDescription::number);
    return row == std::end(Pages) || row->number != number ? nullptr : row;
}

const LoadedPage& Load(const CodePageDescription& page) {
    LoadedPage& loaded = loadedPages[&page - Pages];
    std::call_once(loaded.once, [&] {
        const auto content = Read(page);
        if (content == nullptr) {
            return;
        }
        if (content->pairs.empty()) {
            loaded.single = std::make_unique<code_pages::SingleByteTable>(*content);
        } else {
            loaded.pairs = std::make_unique<code_pages::DoubleByteTable>(*content);
        }
    });
    return loaded;
}

void Append(CodePageConverter& converter, std::string_view bytes, std::u16string& text) {
    const std::size_t length = text.size();
    text.resize(length + converter.MeasureUnits(bytes));
    converter.ToUnits(bytes, text.data() + length);
}

}  // namespace

std::span<const CodePageDescription> KnownCodePages() {
    return Pages;
}

std::unique_ptr<CodePageConverter> OpenCodePage(std::uint32_t number) {
    const CodePageDescription* const page = FindPage(number);
    if (page == nullptr) {
        return nullptr;
    }
    const LoadedPage& loaded = Load(*page);
    if (loaded.single != nullptr) {
        return std::make_unique<code_pages::SingleByteConverter>(*loaded.single);
    }
    if (loaded.pairs != nullptr) {
        return std::make_unique<code_pages::DoubleByteConverter>(*loaded.pairs);
    }
    return page->service == Service::Icu ? code_pages::StreamConverter::Open(page->converter)
                                         : nullptr;
}

bool code_pages::AppendDecoded(std::uint32_t codePage, std::string_view bytes,
                               std::u16string& text) {
    const CodePageDescription* const page = FindPage(codePage == 0 ? SystemAnsiCodePage : codePage);
    if (page == nullptr) {
        return false;
    }
    // Short runs of bytes come by the million, so the tables are used without an object.
    const LoadedPage& loaded = Load(*page);
    if (loaded.single != nullptr) {
        SingleByteConverter converter(*loaded.single);
        Append(converter, bytes, text);
    } else if (loaded.pairs != nullptr) {
        DoubleByteConverter converter(*loaded.pairs);
        Append(converter, bytes, text);
    } else {
        const auto converter = OpenCodePage(page->number);
        if (converter == nullptr) {
            return false;
        }
        Append(*converter, bytes, text);
    }
    return true;
}

}  // namespace generalutilities
