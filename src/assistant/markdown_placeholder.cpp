// Replaced by the Markdown sources.
