// Replaced by the store's sources.
