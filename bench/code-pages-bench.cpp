// Conversion between code pages and UTF-16, beside ICU and iconv. Each piece of work is measured
// against either; all three write into room that is there, with a converter that is open. The limit
// is a copy of the longer side. Texts are words in random order, the ideographs 3,000 or so
// different ones.

#include <generalutilities/code_pages.h>

#include "ratios.h"
#include "sample_texts.h"

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
    bench::Script script;
    bool ideographs = false;  ///< half of the text
};

constexpr bench::Script French = {
    "French",
    u"L’élève a cessé d’être à l’aise dès qu’on "
    u"l’a noté. Certains projets sont très petits, d’autres ont un million de "
    u"lignes; la mémoire garde chaque segment vu par le réviseur — même en "
    u"février."};
constexpr bench::Script Japanese = {"Japanese",
                                    u"語彙はすべての 単語を含む。 "
                                    u"テストと ｶﾅ。 翻訳メモリは"};
constexpr bench::Script Korean = {"Korean",
                                  u"사전에는 그 언어의 모든 단어가 "
                                  u"들어 있다. 번역 메모리"};
constexpr bench::Script Chinese = {"Chinese", u"文字， 句子。 所有的 一"};
constexpr bench::Script Technical = {"Chinese with ASCII",
                                     u"HTML 文字 (dictionary) 句子。 2000 所有的 page"};

constexpr Page Pages[] = {
    {1252, "windows-1252", "CP1252", bench::Ascii},
    {1252, "windows-1252", "CP1252", French},
    {1251, "windows-1251", "CP1251", bench::Cyrillic},
    {1253, "windows-1253", "CP1253", bench::Greek},
    {932, "windows-932", "CP932", Japanese, true},
    {936, "windows-936", "CP936", Chinese, true},
    {949, "windows-949", "UHC", Korean},
    {950, "windows-950", "CP950", Chinese, true},
    {950, "windows-950", "CP950", Technical},
};

/// A text that the page holds, so that no peer stops.
std::u16string TextFor(const Page& page, std::size_t length, CodePageConverter& converter) {
    std::u16string text;
    const std::u16string words = bench::TextMaker(length * 2).Words({page.script});
    const std::u16string ideographs = bench::TextMaker(length * 2).Ideographs();
    for (std::size_t i = 0; text.size() < length; ++i) {
        const bool fromIdeographs = page.ideographs && i / 8 % 2 == 0;
        const char16_t unit = (fromIdeographs ? ideographs : words)[i % words.size()];
        if (converter.FindForeignUnit({&unit, 1}) == CodePageConverter::NotFound) {
            text += unit;
        }
    }
    return text;
}

/// One text in both forms, with room for either, and the three converters.
struct Work {
    explicit Work(const Page& page, std::size_t length) : converter(OpenCodePage(page.number)) {
        text = TextFor(page, length, *converter);
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
            const bool ascii = page.script.name == bench::Ascii.name;
            const auto add = [&](const std::string& what, const char* peer, double goal,
                                 void (*ours)(Work&), void (*theirs)(Work&)) {
                const std::string name = std::to_string(page.number) + " " +
                                         std::string(page.script.name) + ", " + what +
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
