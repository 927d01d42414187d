find_package(ICU 72 REQUIRED COMPONENTS uc i18n)
generalutilities_bench(folding-bench LINK gu-text GeneralUtilities ICU::uc)
