def main():
    raise ValueError("in main")  # @main


def cleanup():
    raise ValueError("in cleanup")  # @cleanup
