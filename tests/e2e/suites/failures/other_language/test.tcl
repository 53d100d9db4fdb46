proc main {} {}
