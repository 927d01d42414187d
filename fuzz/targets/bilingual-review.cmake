generalutilities_fuzz(bilingual-review LINK gu-rtf gu-extview gu-text gu-files gu-code-pages)
target_include_directories(fuzz-bilingual-review PRIVATE ${PROJECT_SOURCE_DIR}/tests)
