# Lines of code that break points are for.

def has_line(code, line):
    """Whether the code has instructions of the line, those of functions defined in it excepted."""
    return any(own == line for _, _, own in code.co_lines())
