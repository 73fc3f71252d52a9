# highlighter fuzzers.
