#include "platform/code_pages/code_pages.h"

#include "platform/code_pages/decode_table.h"

#include <iterator>
#include <mutex>

namespace generalutilities::code_pages {

namespace {

enum class Source { Icu, Iconv, Symbol };

/// A code page that is served, and its table once somebody has asked for it.
struct CodePage {
    std::uint32_t number;
    Source source;
    const char* name;  ///< of the converter
    std::once_flag loaded;
    std::unique_ptr<const DecodeTable>
        table;  ///< null also after loading, without such a converter
};

// The names were chosen by their tables, not by their looks: ICU's `cp874`, `cp949` and `cp950` are
// IBM's pages of these numbers. ICU knows five of the Macintosh pages, and 1361 not at all.
CodePage pages[] = {
    {1252, Source::Icu, "windows-1252", {}, {}},   {1250, Source::Icu, "windows-1250", {}, {}},
    {1251, Source::Icu, "windows-1251", {}, {}},   {1253, Source::Icu, "windows-1253", {}, {}},
    {1254, Source::Icu, "windows-1254", {}, {}},   {1255, Source::Icu, "windows-1255", {}, {}},
    {1256, Source::Icu, "windows-1256", {}, {}},   {1257, Source::Icu, "windows-1257", {}, {}},
    {1258, Source::Icu, "windows-1258", {}, {}},   {874, Source::Icu, "windows-874", {}, {}},
    {932, Source::Icu, "windows-932", {}, {}},     {936, Source::Icu, "windows-936", {}, {}},
    {949, Source::Icu, "windows-949", {}, {}},     {950, Source::Icu, "windows-950", {}, {}},
    {1361, Source::Iconv, "JOHAB", {}, {}},        {42, Source::Symbol, nullptr, {}, {}},
    {437, Source::Icu, "ibm-437", {}, {}},         {850, Source::Icu, "ibm-850", {}, {}},
    {10000, Source::Icu, "windows-10000", {}, {}}, {10006, Source::Icu, "windows-10006", {}, {}},
    {10007, Source::Icu, "windows-10007", {}, {}}, {10029, Source::Icu, "windows-10029", {}, {}},
    {10081, Source::Icu, "windows-10081", {}, {}},
};

std::unique_ptr<const DecodeTable> Load(const CodePage& page) {
    switch (page.source) {
        case Source::Icu:
            return DecodeTable::FromIcu(page.name);
        case Source::Iconv:
            return DecodeTable::FromIconv(page.name);
        case Source::Symbol:
            return DecodeTable::Symbol();
    }
    return nullptr;
}

}  // namespace

bool AppendDecoded(std::uint32_t codePage, std::string_view bytes, std::u16string& text) {
    const std::uint32_t number = codePage == 0 ? SystemAnsiCodePage : codePage;
    for (CodePage& page : pages) {
        if (page.number == number) {
            std::call_once(page.loaded, [&page] { page.table = Load(page); });
            if (!page.table) {
                return false;
            }
            page.table->AppendDecoded(bytes, text);
            return true;
        }
    }
    return false;
}

}  // namespace generalutilities::code_pages
