generalutilities_bench(database-bench LINK generalutilities-core gu-extview gu-project SQLite::SQLite3)
