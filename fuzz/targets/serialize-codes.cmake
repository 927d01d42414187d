generalutilities_fuzz(serialize-codes LINK gu-tagged)
