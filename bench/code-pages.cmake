generalutilities_bench(code-pages-bench LINK gu-code-pages ICU::uc)
