# store benchmarks.
