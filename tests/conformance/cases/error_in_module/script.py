import error_in_module_helper


def main():
    error_in_module_helper.call(fail)  # @main


def fail():
    raise ValueError("called back")  # @fail
