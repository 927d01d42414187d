generalutilities_fuzz(registry LINK gu-registry)
