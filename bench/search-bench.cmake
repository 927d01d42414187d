find_package(ICU 72 REQUIRED COMPONENTS uc i18n)
generalutilities_bench(search-bench LINK gu-text ICU::i18n ICU::uc)
