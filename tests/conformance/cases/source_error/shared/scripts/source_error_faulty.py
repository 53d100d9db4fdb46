raise ValueError("in the file")
