generalutilities_fuzz(tag-scan LINK gu-tagged)
