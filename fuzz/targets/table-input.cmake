generalutilities_fuzz(table-input LINK gu-project)
