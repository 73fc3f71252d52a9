# Formatter tests.
