# The streams that scripts print to: what is written stands in order with the results.

import io
import sys


class Output(io.TextIOBase):
    encoding = "utf-8"

    def __init__(self, descriptor):
        self._descriptor = descriptor

    def write(self, text, /):
        """Writes text to the test results"""
        if not isinstance(text, str):
            raise TypeError(f"write() argument must be str, not {type(text).__name__}")
        write_output(self._descriptor, text)
        return len(text)

    def flush(self):
        """Passes on a line that is not whole yet"""
        flush_output()

    def fileno(self):
        """Descriptor of the process's own stream"""
        return self._descriptor

    def writable(self):
        return True

    def isatty(self):
        return False

    @property
    def buffer(self):
        """The process's own binary stream: bytes go past the results"""
        flush_output()
        return (sys.__stdout__ if self._descriptor == 1 else sys.__stderr__).buffer


def set_streams(are_ours):
    """Lets scripts print to the results, or to the process's own streams."""
    sys.stdout = Output(1) if are_ours else sys.__stdout__
    sys.stderr = Output(2) if are_ours else sys.__stderr__
