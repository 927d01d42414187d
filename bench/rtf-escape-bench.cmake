generalutilities_bench(rtf-escape-bench LINK gu-extview)
