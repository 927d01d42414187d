generalutilities_bench(rtf-bench LINK generalutilities-core gu-extview gu-project)
