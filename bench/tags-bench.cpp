// Inline tags: cutting texts beside the finds of the standard library, and numbering the codes of
// segments, from typical ones to what the rules of merging cost.

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>
#include <generalutilities/tagged/font_tags.h>
#include <generalutilities/tagged/serialize_codes.h>

#include "check.h"
#include "ratios.h"
#include "sample_texts.h"

#include <numeric>

namespace generalutilities::bench {
namespace {

using benchmark::RegisterBenchmark;
using benchmark::State;

/// Words with a tag in front of every sixth, in turn a code element, a font tag and its end.
std::u16string TaggedWords(std::size_t length) {
    static constexpr std::u16string_view Tags[] = {u"<ut>&lt;b&gt;</ut>",
                                                   u"<df Font=\"Arial\" Size=\"9\">", u"</df>"};
    std::u16string text;
    std::size_t words = 0;
    for (const char16_t unit : TextMaker(length).Words({Ascii})) {
        text += unit;
        if (unit == u' ' && ++words % 6 == 0) {
            text += Tags[words / 6 % 3];
        }
    }
    return text;
}

/// `ScanTags` in the plain way.
void FindTags(std::u16string_view text, TagScan& scan) {
    scan.texts.clear();
    scan.tags.clear();
    std::size_t start = 0;
    for (std::size_t open; (open = text.find(u'<', start)) != text.npos;) {
        std::size_t end = open;
        while (text[end] != u' ' && text[end] != u'>') {
            ++end;
        }
        if (text.substr(open + 1, end - open - 1) == u"ut") {
            end = text.find(u"</ut", end);
        }
        end = text.find(u'>', end) + 1;
        scan.texts.push_back(text.substr(start, open - start));
        scan.tags.push_back(text.substr(open, end - open));
        start = end;
    }
    scan.texts.push_back(text.substr(start));
}

void RegisterScan(const std::string& work, const std::u16string& text) {
    RegisterBenchmark((work + "/ours").c_str(), [text](State& state) {
        TagScan scan;
        for (auto _ : state) {
            Check(!ScanTags(text, scan), "a text cannot be scanned");
            benchmark::DoNotOptimize(scan.texts.data());
        }
    });
    RegisterBenchmark((work + "/peer").c_str(), [text](State& state) {
        TagScan scan;
        for (auto _ : state) {
            FindTags(text, scan);
            benchmark::DoNotOptimize(scan.texts.data());
        }
    });
    RegisterBenchmark((work + "/limit").c_str(), [text](State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(std::accumulate(text.begin(), text.end(), char16_t{0}));
        }
    });
}

void RegisterStrip(const std::string& work, const std::u16string& text) {
    RegisterBenchmark((work + "/ours").c_str(), [text](State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(StripFontAttributes(text));
        }
    });
    RegisterBenchmark((work + "/limit").c_str(), [text](State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(std::u16string(text));
        }
    });
}

constexpr const char16_t* Segment[] = {
    u"The <b>translation</b> memory keeps every segment that a reviewer has seen",
    u"La m\u00E9moire de <b>traduction</b> garde chaque segment qu'un relecteur a vu hier",
    u"Das <b>Translation-Memory</b> bewahrt jedes Segment, das ein Lektor je gesehen hat",
    u"La <b>memoria</b> guarda cada segmento que ha visto un revisor alguna vez aqu\u00ED"};

/// What a client does for each segment: fill the dictionary, call, free the answers.
void SerializeThroughComponents(State& state) {
    ComPtr<IStringUtils> utils;
    ComPtr<IDictionary> targets;
    Check(CoCreateInstance(CLSID_StringUtils, nullptr, CLSCTX_INPROC_SERVER, IID_IStringUtils,
                           utils.OutVoid()) == S_OK &&
              CoCreateInstance(CLSID_Dictionary, nullptr, CLSCTX_INPROC_SERVER, IID_IDictionary,
                               targets.OutVoid()) == S_OK,
          "no components");
    std::int32_t last = 0;
    for (auto _ : state) {
        for (std::int32_t i = 1; i < 4; ++i) {
            const Bstr text(Segment[i]);
            VARIANT key{}, item{};
            key.vt = VT_I4;
            key.lVal = i;
            item.vt = VT_BSTR;
            item.bstrVal = text.Get();
            targets->put_Item(&key, &item);
        }
        Bstr source(Segment[0]);
        SAFEARRAY* numbers = nullptr;
        SAFEARRAY* contents = nullptr;
        last = 0;
        Check(utils->SerializeCodes(source.InOut(), targets.Get(), &last, &numbers, &contents) ==
                  S_OK,
              "SerializeCodes fails");
        const ArrayPtr ownNumbers(numbers), ownContents(contents);
    }
    state.SetItemsProcessed(state.iterations());
}

/// Texts of one segment; the rate counts tags.
void RegisterSerialize(const std::string& work, const std::vector<std::u16string>& texts) {
    RegisterBenchmark((work + "/ours").c_str(), [texts](State& state) {
        std::vector<TagScan> scans(texts.size());
        std::int64_t tags = 0;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            Check(!ScanTags(texts[i], scans[i]), "a text cannot be scanned");
            tags += static_cast<std::int64_t>(scans[i].tags.size());
        }
        for (auto _ : state) {
            benchmark::DoNotOptimize(SerializeCodes(scans, 0));
        }
        state.SetItemsProcessed(state.iterations() * tags);
    });
}

std::u16string Number(std::size_t number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

std::vector<Goal> RegisterAll() {
    std::vector<Goal> goals;
    const struct {
        const char* size;
        std::size_t length;
        double peer;
    } scans[] = {{"100 units", 100, 2}, {"4 K", 4096, 2}, {"1 M", std::size_t{1} << 20, 2}};
    for (const auto& row : scans) {
        const std::string tagged = std::string("ScanTags, a tag every 6 words, ") + row.size;
        RegisterScan(tagged, TaggedWords(row.length));
        goals.push_back({"11", tagged, row.peer});
        const std::string plain = std::string("ScanTags, no tags, ") + row.size;
        RegisterScan(plain, TextMaker(row.length).Words({Ascii}));
        goals.push_back({"11", plain, row.peer});
    }
    RegisterStrip("StripFontAttributes, a tag every 6 words, 4 K", TaggedWords(4096));
    goals.push_back({"", "StripFontAttributes, a tag every 6 words, 4 K"});
    RegisterBenchmark("SerializeCodes, whole call, 3 targets/ours", SerializeThroughComponents);
    goals.push_back({"", "SerializeCodes, whole call, 3 targets", 0, 0, 0.1});

    for (const std::size_t count : {1000, 10000, 100000}) {
        const std::string tail = ", " + std::to_string(count) + " tags";
        std::u16string apart, together, hostile;
        for (std::size_t i = 0; i < count; ++i) {
            apart += u"<" + Number(i) + u">x";
            together += u"<" + Number(i) + u">";
            hostile += i % 2 == 0 ? u"<p>" : u"<" + Number(i) + u">";
        }
        std::vector<std::u16string> targets(count / 100, u"<p>");
        targets.insert(targets.begin(), hostile);
        RegisterSerialize("SerializeCodes, different tags apart" + tail, {apart});
        RegisterSerialize("SerializeCodes, different tags side by side" + tail,
                          {together, together});
        RegisterSerialize("SerializeCodes, pairs that many targets are asked about" + tail,
                          targets);
        for (const char* work : {"different tags apart", "different tags side by side",
                                 "pairs that many targets are asked about"}) {
            goals.push_back({"", std::string("SerializeCodes, ") + work + tail});
        }
    }
    return goals;
}

}  // namespace
}  // namespace generalutilities::bench

int main(int argc, char** argv) {
    const auto goals = generalutilities::bench::RegisterAll();
    return generalutilities::bench::Run(argc, argv, goals);
}
