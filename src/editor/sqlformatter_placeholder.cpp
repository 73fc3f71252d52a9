// Replaced by the formatter's sources.
