generalutilities_fuzz(segment-text LINK gu-extview gu-text-file)
