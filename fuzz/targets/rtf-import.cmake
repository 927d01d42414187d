generalutilities_fuzz(rtf-import LINK gu-rtf)
