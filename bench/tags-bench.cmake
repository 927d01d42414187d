generalutilities_bench(tags-bench LINK gu-tagged GeneralUtilities)
