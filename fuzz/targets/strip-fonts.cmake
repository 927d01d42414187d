generalutilities_fuzz(strip-fonts LINK gu-tagged)
