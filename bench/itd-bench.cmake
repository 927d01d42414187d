find_package(ZLIB REQUIRED)
generalutilities_bench(itd-bench LINK GeneralUtilities gu-itd ZLIB::ZLIB)
