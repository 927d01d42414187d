generalutilities_fuzz(segment-text LINK gu-extview gu-text gu-text-file gu-files)
