generalutilities_fuzz(dialect LINK gu-database)
