generalutilities_bench(distance-bench LINK gu-text)
