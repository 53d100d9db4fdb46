// Comes with the next commits.
