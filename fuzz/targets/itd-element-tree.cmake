generalutilities_fuzz(itd-element-tree LINK gu-itd)
