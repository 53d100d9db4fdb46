# Leaves behind as much as it can.

import builtins
import io
import locale
import os
import signal
import sys
import types

import neighbour
import state

own_global = "left"


def main():
    test.verify(os.getcwd().endswith("1_leaves_traces"))
    state.counter += 1
    os.environ["TAMRIX_TEST_LEFT"] = "left"
    os.environ["HOME"] = "/nowhere"
    os.environ.pop("PATH")
    os.putenv("TAMRIX_TEST_PUT", "left")
    os.umask(0o777)
    os.chdir("/")
    sys.path.insert(0, "/nowhere")
    sys.path_left = True
    sys.argv.append("left")
    sys.modules["left"] = types.ModuleType("left")
    sys.setrecursionlimit(200)
    locale.setlocale(locale.LC_ALL, "C")
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    signal.signal(signal.SIGTERM, signal.SIG_DFL)
    signal.signal(signal.SIGCHLD, signal.SIG_IGN)
    signal.signal(signal.SIGUSR1, print)
    signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGUSR2})
    signal.alarm(1)
    sys.excepthook = None
    builtins.left = "left"
    builtins.len = None
    builtins.findFile = None
    test.compare = None
    test.left = "left"
    for descriptor in range(3):
        os.close(descriptor)
    test.startSection("Never ended")
    test.fixateResultContext(0)
    sys.settrace(lambda *arguments: None)
    sys.stdout = io.StringIO()
    sys.stderr = None
