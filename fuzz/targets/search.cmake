generalutilities_fuzz(search LINK gu-text)
