# Markdown tests.
