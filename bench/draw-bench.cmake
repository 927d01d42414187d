find_package(PkgConfig REQUIRED)
pkg_check_modules(PANGOCAIRO REQUIRED IMPORTED_TARGET pangocairo>=1.50)
generalutilities_bench(draw-bench LINK GeneralUtilities gu-files PkgConfig::PANGOCAIRO)
