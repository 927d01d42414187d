generalutilities_fuzz(rtf-import LINK gu-rtf gu-extview gu-text gu-files gu-code-pages)
target_include_directories(fuzz-rtf-import PRIVATE ${PROJECT_SOURCE_DIR}/tests)
