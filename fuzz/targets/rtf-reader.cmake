generalutilities_fuzz(rtf-reader LINK gu-rtf)
