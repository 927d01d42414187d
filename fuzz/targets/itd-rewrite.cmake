generalutilities_fuzz(itd-rewrite LINK gu-itd)
