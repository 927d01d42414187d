find_package(ICU 72 REQUIRED COMPONENTS uc i18n)
generalutilities_bench(words-bench LINK gu-text GeneralUtilities ICU::uc)
