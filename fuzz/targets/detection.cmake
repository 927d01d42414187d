generalutilities_fuzz(detection LINK gu-detection)
