# highlighter benchmarks.
