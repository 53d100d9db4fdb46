import builtins
import os


def main():
    builtins.leaves_traces_left = True
    os.environ["TAMRIX_LEFT"] = "yes"
    os.chdir("/")
    global test_global
    test_global = 1
    test.startSection("left open")  # @open
