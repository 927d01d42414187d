generalutilities_fuzz(round-trip LINK gu-rtf gu-extview gu-text gu-text-file gu-files gu-code-pages)
target_include_directories(fuzz-round-trip PRIVATE ${PROJECT_SOURCE_DIR}/tests)
