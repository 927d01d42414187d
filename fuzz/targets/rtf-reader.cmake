generalutilities_fuzz(rtf-reader LINK gu-rtf gu-extview gu-text gu-files gu-code-pages)
target_include_directories(fuzz-rtf-reader PRIVATE ${PROJECT_SOURCE_DIR}/tests)
