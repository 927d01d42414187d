generalutilities_fuzz(bilingual-review LINK gu-rtf gu-extview gu-text gu-files gu-code-pages)
