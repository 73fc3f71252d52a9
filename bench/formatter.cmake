# formatter benchmarks.
