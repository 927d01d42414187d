generalutilities_fuzz(distance LINK gu-text)
