// Search beside memmem, string_view::find, ICU's string search, a plain loop over the library's
// tables, and reading the text once; and the folding of digits beside ICU's digit values.

#include <generalutilities/text/digits.h>
#include <generalutilities/text/search.h>

#include "ratios.h"
#include "sample_texts.h"
#include "text/char_tables.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <unicode/uchar.h>
#include <unicode/usearch.h>

namespace generalutilities::bench {
namespace {

using benchmark::RegisterBenchmark;
using benchmark::State;

/// A text that ends with what is sought in it and holds it nowhere else.
struct Work {
    std::u16string text;
    std::u16string sought;
};
using SharedWork = std::shared_ptr<const Work>;

SharedWork MakeWork(const std::u16string& text, std::size_t length) {
    Work work{text, {}};
    work.sought = work.text.substr(work.text.size() / 2, length);
    std::reverse(work.sought.begin(), work.sought.end());
    work.text.replace(work.text.size() - length, length, work.sought);
    return std::make_shared<const Work>(std::move(work));
}

using Search = std::function<std::size_t(const Work&)>;

/// Measures a search that has to find the right place.
void Register(const std::string& name, const SharedWork& work, const Search& search) {
    RegisterBenchmark(name.c_str(), [work, search](State& state) {
        std::size_t found = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(found = search(*work));
        }
        if (found != work->text.size() - work->sought.size()) {
            state.SkipWithError("found at a wrong place");
        }
    });
}

Search Ours(bool matchCase) {
    return [matchCase](const Work& work) {
        const auto match = FindText(work.text, work.sought, 0, {.matchCase = matchCase});
        return match ? match->position : work.text.npos;
    };
}

std::size_t WithFind(const Work& work) {
    return std::u16string_view(work.text).find(work.sought);
}

std::size_t WithMemmem(const Work& work) {
    const void* const found =
        memmem(work.text.data(), work.text.size() * 2, work.sought.data(), work.sought.size() * 2);
    return static_cast<std::size_t>(static_cast<const char16_t*>(found) - work.text.data());
}

std::size_t WithPlainLoop(const Work& work) {
    const std::size_t length = work.sought.size();
    for (std::size_t i = 0; i + length <= work.text.size(); ++i) {
        std::size_t same = 0;
        while (same < length && (work.text[i + same] == work.sought[same] ||
                                 UpperCase(work.text[i + same]) == UpperCase(work.sought[same]))) {
            ++same;
        }
        if (same == length) {
            return i;
        }
    }
    return work.text.npos;
}

/// ICU's way to search without case: a collator of the second strength. It is made beforehand.
void RegisterIcuSearch(const std::string& name, const SharedWork& work) {
    RegisterBenchmark(name.c_str(), [work](State& state) {
        UErrorCode error = U_ZERO_ERROR;
        UCollator* const collator = ucol_open("", &error);
        ucol_setStrength(collator, UCOL_SECONDARY);
        UStringSearch* const search = usearch_openFromCollator(
            work->sought.data(), static_cast<std::int32_t>(work->sought.size()), work->text.data(),
            static_cast<std::int32_t>(work->text.size()), collator, nullptr, &error);
        for (auto _ : state) {
            benchmark::DoNotOptimize(usearch_first(search, &error));
        }
        if (U_FAILURE(error)) {
            state.SkipWithError("ICU's search fails");
        }
        usearch_close(search);
        ucol_close(collator);
    });
}

/// Reads every unit once, with the C library's vectors, in a text of the same length.
void RegisterReadPass(const std::string& name, const SharedWork& work) {
    RegisterBenchmark(name.c_str(), [work](State& state) {
        const std::u16string text(work->text.size(), u'x');
        for (auto _ : state) {
            benchmark::DoNotOptimize(std::memchr(text.data(), 2, text.size() * 2));
        }
    });
}

void RegisterLargeTexts(std::vector<Goal>& goals) {
    for (const Sample& sample : Samples(std::size_t{1} << 20)) {
        const SharedWork work = MakeWork(sample.text, 12);
        const std::string exact = "exact, 1 M, " + sample.name;
        Register(exact + "/ours", work, Ours(true));
        Register(exact + "/peer", work, WithMemmem);
        RegisterReadPass(exact + "/limit", work);
        const std::string besideFind = "exact, 1 M, beside find, " + sample.name;
        Register(besideFind + "/ours", work, Ours(true));
        Register(besideFind + "/peer", work, WithFind);
        const std::string folded = "without case, 1 M, " + sample.name;
        Register(folded + "/ours", work, Ours(false));
        RegisterIcuSearch(folded + "/peer", work);
        RegisterReadPass(folded + "/limit", work);
        const std::string besideLoop = "without case, 1 M, beside a loop, " + sample.name;
        Register(besideLoop + "/ours", work, Ours(false));
        Register(besideLoop + "/peer", work, WithPlainLoop);
        goals.push_back({"3a", exact, 5, 0.6});
        goals.push_back({"3a", besideFind, 8});
        goals.push_back({"3b", folded, 150, 0.15});
        goals.push_back({"3b", besideLoop, 12});
    }
}

void RegisterSegments(std::vector<Goal>& goals) {
    for (const Sample& sample : Samples(64)) {
        const SharedWork work = MakeWork(sample.text, 5);
        const std::string exact = "exact, 64, " + sample.name;
        Register(exact + "/ours", work, Ours(true));
        Register(exact + "/peer", work, WithFind);
        const std::string folded = "without case, 64, " + sample.name;
        Register(folded + "/ours", work, Ours(false));
        Register(folded + "/peer", work, WithPlainLoop);
        goals.push_back({"3c", exact, 1});
        goals.push_back({"3c", folded, 2});
    }
}

void RegisterDigits(std::vector<Goal>& goals) {
    for (const Sample& sample : Samples(std::size_t{1} << 12)) {
        const auto work = std::make_shared<const Work>(Work{sample.text, {}});
        const std::string name = "FoldDigits, 4 K, " + sample.name;
        RegisterBenchmark((name + "/ours").c_str(), [work](State& state) {
            std::u16string out(work->text.size(), u'\0');
            for (auto _ : state) {
                FoldDigitsTo(work->text, true, out.data());
                benchmark::ClobberMemory();
            }
        });
        RegisterBenchmark((name + "/peer").c_str(), [work](State& state) {
            std::u16string out(work->text.size(), u'\0');
            for (auto _ : state) {
                for (std::size_t i = 0; i < out.size(); ++i) {
                    const std::int32_t value = u_charDigitValue(work->text[i]);
                    out[i] = value < 0 ? work->text[i] : static_cast<char16_t>(u'0' + value);
                }
                benchmark::ClobberMemory();
            }
        });
        RegisterBenchmark((name + "/limit").c_str(), [work](State& state) {
            std::u16string out(work->text.size(), u'\0');
            for (auto _ : state) {
                std::memcpy(out.data(), work->text.data(), out.size() * 2);
                benchmark::ClobberMemory();
            }
        });
        goals.push_back({"11", name, 10});
    }
}

std::vector<Goal> RegisterAll() {
    std::vector<Goal> goals;
    RegisterLargeTexts(goals);
    RegisterSegments(goals);
    RegisterDigits(goals);
    return goals;
}

}  // namespace
}  // namespace generalutilities::bench

int main(int argc, char** argv) {
    const auto goals = generalutilities::bench::RegisterAll();
    return generalutilities::bench::Run(argc, argv, goals);
}
