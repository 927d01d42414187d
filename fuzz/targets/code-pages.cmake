generalutilities_fuzz(code-pages LINK gu-code-pages)
