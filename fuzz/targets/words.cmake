generalutilities_fuzz(words LINK gu-text)
