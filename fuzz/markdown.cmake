# markdown fuzzers.
