generalutilities_fuzz(invoke LINK gu-text-components)
