import builtins
import os


def main():
    test.verify(not hasattr(builtins, "leaves_traces_left"), "names of all modules")  # @names
    test.verify("TAMRIX_LEFT" not in os.environ, "the environment")  # @environment
    test.compare(os.path.basename(os.getcwd()), "leaves_traces_next", "the folder")  # @folder
    test.verify("test_global" not in globals(), "names of the script")  # @globals
