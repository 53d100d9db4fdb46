"""A module that keeps something."""

counter = 0
