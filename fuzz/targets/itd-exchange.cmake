generalutilities_fuzz(itd-exchange LINK gu-itd-exchange)
