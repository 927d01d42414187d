// Tokens of a text beside ICU's word iterator, and tokens as new strings beside making the strings.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>
#include <generalutilities/text/words.h>

#include "check.h"
#include "ratios.h"
#include "sample_texts.h"

#include <cstring>
#include <unicode/ubrk.h>

namespace generalutilities::bench {
namespace {

using benchmark::RegisterBenchmark;
using benchmark::State;

constexpr std::int32_t EnglishUs = 1033;

std::vector<TextToken> TokensOf(const std::u16string& text) {
    std::vector<TextToken> tokens;
    const WordParser parser(EnglishUs);
    std::size_t at = 0;
    while (const auto token = parser.ParseStep(text, at)) {
        tokens.push_back(*token);
        at = static_cast<std::size_t>(token->end);
    }
    return tokens;
}

void CountTokens(State& state, std::size_t tokens) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(tokens));
}

void RegisterParseAll(const std::string& work, const std::u16string& text) {
    RegisterBenchmark((work + "/ours").c_str(), [text](State& state) {
        const WordParser parser(EnglishUs);
        std::vector<TextToken> tokens;
        for (auto _ : state) {
            parser.ParseAll(text, tokens);
            benchmark::DoNotOptimize(tokens.data());
        }
        CountTokens(state, tokens.size());
    });
    RegisterBenchmark((work + "/peer").c_str(), [text](State& state) {
        UErrorCode error = U_ZERO_ERROR;
        UBreakIterator* words = ubrk_open(UBRK_WORD, "en_US", text.data(),
                                          static_cast<std::int32_t>(text.size()), &error);
        Check(U_SUCCESS(error), "no word iterator");
        for (auto _ : state) {
            // The same text anew, since the iterator remembers the boundaries that it has found.
            ubrk_setText(words, text.data(), static_cast<std::int32_t>(text.size()), &error);
            for (std::int32_t at = ubrk_first(words); at != UBRK_DONE; at = ubrk_next(words)) {
                benchmark::DoNotOptimize(at);
            }
        }
        ubrk_close(words);
    });
}

/// A client's walk: each token a new string, which it frees.
void RegisterParseString(const std::string& work, const std::u16string& text) {
    RegisterBenchmark((work + "/ours").c_str(), [text](State& state) {
        ComPtr<IStringUtils> utils;
        Check(CoCreateInstance(CLSID_StringUtils, nullptr, CLSCTX_INPROC_SERVER, IID_IStringUtils,
                               utils.OutVoid()) == S_OK,
              "no StringUtils");
        const Bstr in(text);
        for (auto _ : state) {
            std::int32_t position = 1;
            for (;;) {
                WordTypeEnum type{};
                BSTR token = nullptr;
                utils->ParseString(&position, in.Get(), EnglishUs, &type, &token);
                if (token == nullptr) {
                    break;
                }
                benchmark::DoNotOptimize(token);
                SysFreeString(token);
            }
        }
        CountTokens(state, TokensOf(text).size());
    });
    RegisterBenchmark((work + "/limit").c_str(), [text](State& state) {
        const std::vector<TextToken> tokens = TokensOf(text);
        for (auto _ : state) {
            for (const TextToken& token : tokens) {
                const auto size = static_cast<std::size_t>(token.end - token.first);
                auto* copy = new char16_t[size + 1];
                std::memcpy(copy, text.data() + token.first, size * 2);
                copy[size] = 0;
                benchmark::DoNotOptimize(copy);
                benchmark::ClobberMemory();
                delete[] copy;
            }
        }
    });
}

std::vector<Goal> RegisterAll() {
    std::vector<Goal> goals;
    for (const std::size_t size : {std::size_t{1} << 12, std::size_t{1} << 20}) {
        const bool large = size > 4096;
        for (const Sample& sample : Samples(size)) {
            const std::string tail = (large ? ", 1 M, " : ", 4 K, ") + sample.name;
            const double peer = sample.name == "CJK" ? 100 : large ? 6 : 9;
            RegisterParseAll("all tokens" + tail, sample.text);
            goals.push_back({"2a", "all tokens" + tail, peer, 0, large ? 0.0 : 250.0});
        }
    }
    for (const std::size_t size : {std::size_t{1} << 12, std::size_t{1} << 20}) {
        for (const Sample& sample : Samples(size)) {
            const std::string work =
                "token by token" + std::string(size > 4096 ? ", 1 M, " : ", 4 K, ") + sample.name;
            RegisterParseString(work, sample.text);
            goals.push_back({"2b", work, 0, 1 / 1.4});
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
