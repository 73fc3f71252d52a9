// Replaced by the subsystem's sources.
