// Escaping text into RTF beside the loop that anybody would write, unit by unit.

#include "check.h"
#include "extview/rtf_escape.h"
#include "ratios.h"
#include "sample_texts.h"

namespace generalutilities::bench {
namespace {

using benchmark::RegisterBenchmark;
using benchmark::State;

/// The plain loop, for texts without control characters.
void AppendUnitByUnit(std::u16string& output, std::u16string_view text) {
    for (const char16_t unit : text) {
        if (unit >= 0x80) {
            output += u"\\uc0\\u";
            for (const char digit : std::to_string(static_cast<unsigned>(unit))) {
                output += static_cast<char16_t>(digit);
            }
            output += u' ';
        } else {
            if (unit == u'{' || unit == u'}' || unit == u'\\') {
                output += u'\\';
            }
            output += unit;
        }
    }
}

void Register(const std::string& name, const std::u16string& text,
              void (*append)(std::u16string&, std::u16string_view)) {
    RegisterBenchmark(name.c_str(), [text, append](State& state) {
        std::u16string output;
        append(output, text);  // so that there is room, as for all rows of an export but the first
        for (auto _ : state) {
            output.clear();
            append(output, text);
            benchmark::DoNotOptimize(output.data());
        }
    });
}

std::vector<Goal> RegisterAll() {
    std::vector<Goal> goals;
    for (const std::size_t size : {std::size_t{100}, std::size_t{1} << 20}) {
        for (const Sample& sample : Samples(size)) {
            std::u16string ours;
            std::u16string theirs;
            rtf::AppendEscaped(ours, sample.text);
            AppendUnitByUnit(theirs, sample.text);
            Check(ours == theirs, "two ways to escape differ");
            const std::string work =
                "escape, " + std::string(size > 100 ? "1 M, " : "100 units, ") + sample.name;
            Register(work + "/ours", sample.text, rtf::AppendEscaped);
            Register(work + "/peer", sample.text, AppendUnitByUnit);
            goals.push_back({"10b", work, sample.name == "ASCII" ? 7.0 : 2.0});
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
