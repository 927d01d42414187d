generalutilities_fuzz(itd-envelope LINK gu-itd)
