generalutilities_fuzz(itd-text-part LINK gu-itd)
