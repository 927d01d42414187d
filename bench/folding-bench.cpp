// Case folding and accent removal beside ICU and beside copying.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>
#include <generalutilities/text/folding.h>

#include "check.h"
#include "ratios.h"
#include "sample_texts.h"
#include "text/fold_into.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

namespace generalutilities::bench {
namespace {

using benchmark::RegisterBenchmark;
using benchmark::State;

/// A text and room for what becomes of it, kept as long as the program runs.
struct Work {
    std::u16string text;
    std::vector<char16_t> out = std::vector<char16_t>(text.size() * LongestGrowth + 64);
    static constexpr std::size_t LongestGrowth = 4;
};
using SharedWork = std::shared_ptr<Work>;

void RegisterCopy(const std::string& name, const SharedWork& work) {
    RegisterBenchmark((name + "/limit").c_str(), [work](State& state) {
        for (auto _ : state) {
            std::memcpy(work->out.data(), work->text.data(), work->text.size() * 2);
            benchmark::DoNotOptimize(work->out.data());
            benchmark::ClobberMemory();
        }
    });
}

void RegisterFold(const std::string& name, Fold fold, const SharedWork& work) {
    RegisterBenchmark((name + "/ours").c_str(), [work, fold](State& state) {
        Check(FoldedLength(fold, work->text) <= work->out.size(), "a text grows too much");
        for (auto _ : state) {
            benchmark::DoNotOptimize(FoldTo(fold, work->text, work->out.data()));
            benchmark::ClobberMemory();
        }
    });
}

void RegisterIcuFold(const std::string& name, const SharedWork& work) {
    RegisterBenchmark((name + "/peer").c_str(), [work](State& state) {
        for (auto _ : state) {
            UErrorCode error = U_ZERO_ERROR;
            benchmark::DoNotOptimize(u_strFoldCase(
                work->out.data(), static_cast<std::int32_t>(work->out.size()), work->text.data(),
                static_cast<std::int32_t>(work->text.size()), U_FOLD_CASE_DEFAULT, &error));
            Check(U_SUCCESS(error), "folding with ICU fails");
        }
    });
}

/// Decompose, leave the marks out, compose: ICU's way to lose accents, memory taken beforehand.
void RegisterIcuAccents(const std::string& name, const SharedWork& work) {
    RegisterBenchmark((name + "/peer").c_str(), [work](State& state) {
        UErrorCode error = U_ZERO_ERROR;
        const UNormalizer2* decomposer = unorm2_getNFKDInstance(&error);
        const UNormalizer2* composer = unorm2_getNFCInstance(&error);
        std::vector<char16_t> parts(work->out.size());
        const auto room = static_cast<std::int32_t>(work->out.size());
        for (auto _ : state) {
            const std::int32_t length = unorm2_normalize(
                decomposer, work->text.data(), static_cast<std::int32_t>(work->text.size()),
                parts.data(), room, &error);
            std::int32_t kept = 0;
            for (std::int32_t i = 0; i < length; ++i) {
                if ((U_GET_GC_MASK(parts[static_cast<std::size_t>(i)]) & U_GC_M_MASK) == 0) {
                    parts[static_cast<std::size_t>(kept++)] = parts[static_cast<std::size_t>(i)];
                }
            }
            benchmark::DoNotOptimize(
                unorm2_normalize(composer, parts.data(), kept, work->out.data(), room, &error));
            Check(U_SUCCESS(error), "normalizing with ICU fails");
        }
    });
}

/// The whole call of a client, with the new string that it frees.
void RegisterCall(const std::string& name, const std::u16string& text) {
    RegisterBenchmark((name + "/ours").c_str(), [text](State& state) {
        ComPtr<IStringUtils> utils;
        Check(CoCreateInstance(CLSID_StringUtils, nullptr, CLSCTX_INPROC_SERVER, IID_IStringUtils,
                               utils.OutVoid()) == S_OK,
              "no StringUtils");
        const Bstr in(text);
        for (auto _ : state) {
            BSTR out = nullptr;
            utils->ToUpper(in.Get(), &out);
            benchmark::DoNotOptimize(out);
            SysFreeString(out);
        }
    });
    RegisterBenchmark((name + "/limit").c_str(), [text](State& state) {
        std::size_t size = text.size();
        for (auto _ : state) {
            benchmark::DoNotOptimize(size);
            auto* copy = new char16_t[size + 1];
            std::memcpy(copy, text.data(), size * 2);
            copy[size] = 0;
            benchmark::DoNotOptimize(copy);
            benchmark::ClobberMemory();
            delete[] copy;
        }
    });
}

/// The function's whole call, which gives a std::u16string.
void RegisterFunction(const std::string& name, const std::u16string& text) {
    RegisterBenchmark((name + "/ours").c_str(), [text](State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(ToUpper(text));
        }
    });
    RegisterBenchmark((name + "/limit").c_str(), [text](State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(std::u16string(text));
        }
    });
}

struct SampleGoals {
    const char* sample;
    double call;  ///< the part of the speed of allocating and copying 32 units
    double fold1K;
    double fold1M;
    double foldLimit;
    double accents;
    double accentsLimit;
};

constexpr SampleGoals AllGoals[] = {
    {"ASCII", 1 / 1.6, 7, 7, 0.45, 45, 0.65},
    {"accented Latin", 1 / 2.5, 2.2, 2.2, 0.10, 10, 0.06},
    {"Cyrillic", 1 / 2.5, 6, 14, 0.25, 10, 0.06},
    {"Greek", 1 / 2.5, 6, 14, 0.25, 10, 0.06},
    {"CJK", 1 / 2.5, 2.8, 2.8, 0.25, 10, 0.06},
    {"mixed", 1 / 2.5, 2.2, 2.2, 0.10, 10, 0.06},
};

const SampleGoals& GoalsOf(const std::string& sample) {
    for (const SampleGoals& goals : AllGoals) {
        if (sample == goals.sample) {
            return goals;
        }
    }
    std::abort();
}

std::vector<Goal> RegisterAll() {
    std::vector<Goal> goals;
    for (const Sample& sample : Samples(32)) {
        const SampleGoals& goal = GoalsOf(sample.name);
        const std::string call = "ToUpper, whole call, 32 units, " + sample.name;
        RegisterCall(call, sample.text);
        RegisterIcuFold(call, std::make_shared<Work>(Work{sample.text}));
        goals.push_back({"1a", call, 2, goal.call});
        const std::string function = "ToUpper, std::u16string, 32 units, " + sample.name;
        RegisterFunction(function, sample.text);
        RegisterIcuFold(function, std::make_shared<Work>(Work{sample.text}));
        goals.push_back({"1a", function, 2, goal.call});
    }
    for (const std::size_t size : {std::size_t{1} << 10, std::size_t{1} << 20}) {
        const bool large = size > 1024;
        for (const Sample& sample : Samples(size)) {
            const SampleGoals& goal = GoalsOf(sample.name);
            const std::string tail = (large ? ", 1 M, " : ", 1 K, ") + sample.name;
            const auto work = std::make_shared<Work>(Work{sample.text});
            for (const auto& [function, fold] :
                 {std::pair("ToUpper", Fold::Upper), std::pair("ToLower", Fold::Lower)}) {
                RegisterFold(function + tail, fold, work);
                RegisterIcuFold(function + tail, work);
                RegisterCopy(function + tail, work);
                goals.push_back({"1b", function + tail, large ? goal.fold1M : goal.fold1K,
                                 large ? goal.foldLimit : 0});
            }
            RegisterFold("DeAccentString" + tail, Fold::DeAccent, work);
            RegisterIcuAccents("DeAccentString" + tail, work);
            RegisterCopy("DeAccentString" + tail, work);
            goals.push_back(
                {"1c", "DeAccentString" + tail, goal.accents, large ? goal.accentsLimit : 0});
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
