find_package(absl REQUIRED)
generalutilities_bench(collections-bench LINK gu-collections GeneralUtilities absl::flat_hash_map)
