# Finds nothing of what the test case before has left behind.

import locale
import os
import signal
import sys

import state


def main():
    test.log("results stand at their own line")
    test.compare(state.counter, 0, "modules of the suite are loaded anew")
    test.compare(os.path.basename(os.getcwd()), "2_finds_none", "working directory")
    for name in ("TAMRIX_TEST_LEFT", "TAMRIX_TEST_PUT"):
        test.verify(name not in os.environ, name)
        test.verify(os.popen("echo ${%s-unset}" % name).read() == "unset\n", name)
    test.verify(os.environ["HOME"] != "/nowhere", "HOME")
    test.verify(os.environ.get("PATH"), "PATH")
    test.compare(os.umask(0o022), 0o022, "mask for new files")
    test.verify("/nowhere" not in sys.path, "sys.path")
    test.verify(not any("1_leaves_traces" in entry for entry in sys.path), "sys.path")
    test.compare(len(sys.argv), 1, "sys.argv")
    test.verify("left" not in sys.modules, "sys.modules")
    test.verify("own_global" not in globals(), "globals of the script")
    test.verify(sys.getrecursionlimit() >= 1000, "recursion limit")
    test.compare(signal.getsignal(signal.SIGINT), signal.default_int_handler, "SIGINT")
    test.compare(signal.getsignal(signal.SIGUSR1), signal.SIG_DFL, "SIGUSR1")
    test.compare(os.waitstatus_to_exitcode(os.system("exit 3")), 3, "ends of other programs")
    test.compare(signal.pthread_sigmask(signal.SIG_BLOCK, []), set(), "blocked signals")
    test.compare(signal.alarm(0), 0, "the alarm")
    for descriptor in range(3):
        test.verify(not os.path.isdir("/proc/self/fd/%d" % descriptor), "a standard stream")
        test.verify(os.fstat(descriptor), "a standard stream")
    test.verify(callable(sys.excepthook), "sys.excepthook")
    test.verify(sys.gettrace() is None, "trace function")
    test.exception("left", "builtins")
    test.exception("test.left", "namespace test")
    test.exception("import neighbour", "modules beside the other script")
    test.verify(findFile("scripts", "state.py"), "global functions")
    print("standard output")
    print("standard error", file=sys.stderr)
    test.exception("test.restoreResultContext()", "nothing is fixated")
    test.exception("test.endSection()", "no section is open")
    test.compare(locale.setlocale(locale.LC_CTYPE), "C.UTF-8", "locale")
