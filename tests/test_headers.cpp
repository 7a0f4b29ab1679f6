// Nothing but the headers that all tests use, read once for all of them.
