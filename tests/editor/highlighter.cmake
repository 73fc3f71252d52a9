# Colouring engine tests.
