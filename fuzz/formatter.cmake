# formatter fuzzers.
