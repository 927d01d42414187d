// Conversion between code pages and UTF-16, beside ICU and iconv. Each piece of work is measured
// against either; all three write into room that is there, with a converter that is open. The limit
// is a copy of the longer side.

#include <generalutilities/code_pages.h>

#include "ratios.h"

#include <cstring>
#include <iconv.h>
#include <memory>
#include <string>
#include <unicode/ucnv.h>

namespace generalutilities {
namespace {

struct Page {
    std::uint32_t number;
    const char* icu;
    const char* iconv;
    const char* name;
    std::u16string_view sample;
};

// Sentences as texts have them, with blanks and full stops; for 1252 and 950 two mixtures.
constexpr Page Pages[] = {
    {1252, "windows-1252", "CP1252", "1252 ASCII",
     u"The conversion of a plain sentence should cost no more than a copy of its bytes does. "},
    {1252, "windows-1252", "CP1252", "1252 French",
     u"L\u2019\u00E9l\u00E8ve a cess\u00E9 d\u2019\u00EAtre \u00E0 l\u2019aise d\u00E8s "
     u"qu\u2019on l\u2019a not\u00E9. "},
    {1251, "windows-1251", "CP1251", "1251 Cyrillic",
     u"\u0421\u043B\u043E\u0432\u0430\u0440\u044C \u0441\u043E\u0434\u0435\u0440\u0436\u0438\u0442 "
     u"\u0432\u0441\u0435 \u0441\u043B\u043E\u0432\u0430 \u044F\u0437\u044B\u043A\u0430. "},
    {932, "windows-932", "CP932", "932",
     u"\u8A9E\u5F59\u306F\u3059\u3079\u3066\u306E\u5358\u8A9E\u3092\u542B\u3080\u3002"
     u"\u30C6\u30B9\u30C8\u3068\uFF76\uFF85\u3002"},
    {936, "windows-936", "CP936", "936",
     u"\u8BCD\u5178\u5305\u542B\u8FD9\u79CD\u8BED\u8A00\u7684\u6240\u6709\u8BCD\u8BED\u3002"},
    {949, "windows-949", "UHC", "949",
     u"\uC0AC\uC804\uC5D0\uB294 \uADF8 \uC5B8\uC5B4\uC758 \uBAA8\uB4E0 \uB2E8\uC5B4\uAC00 "
     u"\uB4E4\uC5B4 \uC788\uB2E4. "},
    {950, "windows-950", "CP950", "950",
     u"\u8FAD\u5178\u5305\u542B\u9019\u7A2E\u8A9E\u8A00\u7684\u6240\u6709\u8A5E\u8A9E\u3002"},
    {950, "windows-950", "CP950", "950 mixed",
     u"HTML \u8FAD\u5178 (dictionary) \u5305\u542B 2000 \u8A5E\u8A9E\u3002 "},
};

/// One text in both forms, with room for either, and the three converters.
struct Work {
    explicit Work(const Page& page, std::size_t length) : converter(OpenCodePage(page.number)) {
        while (text.size() < length) {
            text += page.sample;
        }
        text.resize(length);
        bytes.resize(converter->MeasureBytes(text));
        converter->ToBytes(text, bytes.data());
        unitRoom.resize(text.size());
        byteRoom.resize(bytes.size());
        UErrorCode error = U_ZERO_ERROR;
        icu = ucnv_open(page.icu, &error);
        decoder = iconv_open("UTF-16LE", page.iconv);
        encoder = iconv_open(page.iconv, "UTF-16LE");
    }
    ~Work() {
        ucnv_close(icu);
        iconv_close(decoder);
        iconv_close(encoder);
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    bool IconvRun(iconv_t handle, const void* in, std::size_t inSize, void* out,
                  std::size_t outSize) {
        char* from = const_cast<char*>(static_cast<const char*>(in));
        char* to = static_cast<char*>(out);
        return iconv(handle, &from, &inSize, &to, &outSize) != static_cast<std::size_t>(-1);
    }

    std::unique_ptr<CodePageConverter> converter;
    std::u16string text;
    std::string bytes;
    std::u16string unitRoom;
    std::string byteRoom;
    UConverter* icu = nullptr;
    iconv_t decoder;
    iconv_t encoder;
};

void OursToUnits(Work& work) {
    work.converter->ToUnits(work.bytes, work.unitRoom.data());
}
void OursToBytes(Work& work) {
    work.converter->ToBytes(work.text, work.byteRoom.data());
}
void IcuToUnits(Work& work) {
    UErrorCode error = U_ZERO_ERROR;
    const char* source = work.bytes.data();
    char16_t* target = work.unitRoom.data();
    ucnv_toUnicode(work.icu, &target, target + work.unitRoom.size(), &source,
                   source + work.bytes.size(), nullptr, true, &error);
}
void IcuToBytes(Work& work) {
    UErrorCode error = U_ZERO_ERROR;
    const char16_t* source = work.text.data();
    char* target = work.byteRoom.data();
    ucnv_fromUnicode(work.icu, &target, target + work.byteRoom.size(), &source,
                     source + work.text.size(), nullptr, true, &error);
}
void IconvToUnits(Work& work) {
    work.IconvRun(work.decoder, work.bytes.data(), work.bytes.size(), work.unitRoom.data(),
                  work.unitRoom.size() * 2);
}
void IconvToBytes(Work& work) {
    work.IconvRun(work.encoder, work.text.data(), work.text.size() * 2, work.byteRoom.data(),
                  work.byteRoom.size());
}
void CopyUnits(Work& work) {
    std::memcpy(work.unitRoom.data(), work.text.data(), work.text.size() * 2);
}

void Measure(const std::string& name, const std::shared_ptr<Work>& work, void (*run)(Work&)) {
    benchmark::RegisterBenchmark(name.c_str(), [work, run](benchmark::State& state) {
        for (auto _ : state) {
            run(*work);
            benchmark::DoNotOptimize(work->unitRoom.data());
            benchmark::DoNotOptimize(work->byteRoom.data());
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * work->text.size()));
    });
}

std::vector<bench::Goal> RegisterAll() {
    std::vector<bench::Goal> goals;
    for (const std::size_t length : {std::size_t{4096}, std::size_t{1} << 20}) {
        for (const Page& page : Pages) {
            const auto work = std::make_shared<Work>(page, length);
            const bool single = page.number > 1000;
            const bool ascii = single && work->text[0] < 0x80 && page.name[5] == 'A';
            const auto add = [&](const std::string& what, const char* peer, double goal,
                                 void (*ours)(Work&), void (*theirs)(Work&)) {
                const std::string name = std::string(page.name) + ", " + what +
                                         (length == 4096 ? ", 4 K, " : ", 1 M, ") + peer;
                Measure(name + "/ours", work, ours);
                Measure(name + "/peer", work, theirs);
                if (ascii) {
                    Measure(name + "/limit", work, CopyUnits);
                }
                goals.push_back({single ? "5a" : "5b", name, goal, ascii ? 0.9 : 0});
            };
            add("to units", "ICU", single ? 2.5 : 3, OursToUnits, IcuToUnits);
            add("to bytes", "ICU", single ? 15 : 3, OursToBytes, IcuToBytes);
            add("to units", "iconv", single ? 10 : 3, OursToUnits, IconvToUnits);
            add("to bytes", "iconv", single ? 10 : 3, OursToBytes, IconvToBytes);
        }
    }
    return goals;
}

}  // namespace
}  // namespace generalutilities

int main(int argc, char** argv) {
    return generalutilities::bench::Run(argc, argv, generalutilities::RegisterAll());
}
