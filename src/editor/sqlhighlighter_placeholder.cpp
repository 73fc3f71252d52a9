// Replaced by the colouring engine's sources.
