generalutilities_fuzz(round-trip LINK gu-rtf gu-extview gu-text gu-text-file gu-files gu-code-pages)
