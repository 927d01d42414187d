generalutilities_fuzz(returned-text LINK gu-project)
